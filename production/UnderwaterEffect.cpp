#include "UnderwaterEffect.h"

#include "FBO.h"
#include "KVTDemosys.h"
#include "KVTMesh.h"
#include "ParticleSystem.h"
#include "Ribbon.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackSystem.h"
#include "VBODynamic.h"

#include <GL/glew.h>
#include <libnoise/module/perlin.h>
#include <libnoise/module/voronoi.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

// The floor's height at an integer grid corner: broad Perlin hills three units high with
// flat Voronoi terraces of up to 1.5 units on them.
class FloorNoise {
public:
    FloorNoise() {
        hills.SetFrequency(0.02);
        hills.SetOctaveCount(1);
        terraces.SetFrequency(0.2);
        terraces.SetDisplacement(-1.5);
        terraces.EnableDistance(false);
    }

    float height(int column, int row) const {
        return static_cast<float>(hills.GetValue(column, 0.0, row) * 3.0 +
                                  terraces.GetValue(column, 0.0, row));
    }

private:
    noise::module::Perlin hills;
    noise::module::Voronoi terraces;
};

} // namespace

UnderwaterEffect::UnderwaterEffect() = default;

UnderwaterEffect::~UnderwaterEffect() = default;

void UnderwaterEffect::registerTracks() {
    addTrack("wave_time", wave_time);
    addTrack("ribbons_noise_offset", ribbons_noise_offset);
    addTrack("num_ribs", num_ribs);
    addTrack("num_ribs_verts", num_ribs_verts);
    addTrack("deb_size", deb_size);
}

void UnderwaterEffect::init() {
    std::fill(std::begin(scroll), std::end(scroll), 0.0f);
    worldSize = WORLD_SIZE;
    lightAmbient = Vector<float, 4>(0.0f, 0.0f, 0.0f, 1.0f);
    lightDiffuse = Vector<float, 4>(1.0f, 1.0f, 1.0f, 1.0f);
    lightSpecular = Vector<float, 4>(1.0f, 1.0f, 1.0f, 1.0f);
    lightPosition = Vector<float, 4>(0.0f, 0.0f, 0.0f, 0.0f);
    materialAmbient = Vector<float, 4>(0.0f, 0.0f, 0.0f, 1.0f);
    materialDiffuse = Vector<float, 4>(1.0f, 1.0f, 1.0f, 1.0f);
    materialSpecular = Vector<float, 4>(1.0f, 1.0f, 1.0f, 1.0f);
    shininess[0] = 127.0f;
    generateDebris();
    for (Texture* texture : {waveNormals0, waveNormals1, waveNormals2, oceanSurfaceTexture}) {
        texture->setTextureWrap(GL_REPEAT);
    }
    generateOceanSurface();
    generateOceanFloor();
    initWeed();
}

float UnderwaterEffect::rnd_in_float(float lo, float hi) {
    const int r = std::rand();
    return lo + std::fmod(static_cast<float>(r % 10000) * 0.0001f, hi - lo);
}

// The debris fills a slab 200 units square and 10 high whose bottom is 2 units above the
// model origin, each speck a grey of its own. The draws keep their order (a, b, c, then the
// grey) so that a seeded rand() always gives the same field.
void UnderwaterEffect::generateDebris() {
    debris = std::make_unique<ParticleSystem>(DEBRIS_WIDTH, DEBRIS_HEIGHT, 1.0f, 0.0f, 0.0f, 0.0f);
    debris->openColorBuffer(GL_WRITE_ONLY);
    debris->openVertexBuffer(GL_WRITE_ONLY);
    float* position = debris->getVertexPointer();
    float* colour = debris->getColorPointer();
    for (int i = 0; i < debris->getCount(); ++i) {
        const float a = rnd_in_float(-0.5f, 0.5f);
        const float b = rnd_in_float(0.0f, 1.0f);
        const float c = rnd_in_float(-0.5f, 0.5f);
        position[i * 3 + 0] = c * 200.0f;
        position[i * 3 + 1] = b * 10.0f + 2.0f;
        position[i * 3 + 2] = a * 200.0f;
        const float grey = rnd_in_float(0.0f, 1.0f);
        colour[i * 4 + 0] = grey;
        colour[i * 4 + 1] = grey;
        colour[i * 4 + 2] = grey;
        colour[i * 4 + 3] = 1.0f;
    }
    debris->closeColorBuffer();
    debris->closeVertexBuffer();
}

// Both meshes are uploaded once and never change: static buffers.
void UnderwaterEffect::generateOceanSurface() {
    gridSize = SURFACE_CELLS;
    surfaceMesh = makeOceanSurface(gridSize, worldSize);
    surfaceBuffer = std::make_unique<VBODynamic>(surfaceMesh.get(), GL_STATIC_DRAW);
}

void UnderwaterEffect::generateOceanFloor() {
    gridSize = FLOOR_CELLS;
    floorMesh = makeOceanFloor(gridSize, worldSize);
    floorBuffer = std::make_unique<VBODynamic>(floorMesh.get(), GL_STATIC_DRAW);
}

// Row r runs from z = S/2 backwards, column c from x = -S/2 rightwards; the last row and
// column stop one cell short of the far edges, and so do the texture coordinates.
std::unique_ptr<KVTMesh> UnderwaterEffect::makeOceanSurface(int cells, int size) {
    const int n = cells;
    const float s = static_cast<float>(size);
    const float d = s / static_cast<float>(n);
    auto mesh = std::make_unique<KVTMesh>(n * n, (n - 1) * (n - 1), 4, true, true, true);
    Vector<float, 3>* positions = mesh->getVertexPointer();
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c) {
            const int i = r * n + c;
            positions[i] = Vector<float, 3>(-s / 2 + c * d, 0.0f, s / 2 - r * d);
            mesh->setTexCoord(
                i, Vector<float, 2>(static_cast<float>(c) / n, static_cast<float>(r) / n));
        }
    }
    int face = 0;
    for (int r = 0; r < n - 1; ++r) {
        for (int c = 0; c < n - 1; ++c) {
            const int i = r * n + c;
            mesh->setQuad(face++, i, i + n, i + n + 1, i + 1);
        }
    }
    mesh->calcFNormals(positions);
    mesh->calcVNormals(mesh->getVertexNormalPointer());
    return mesh;
}

// Every cell has its own four corners, so each quad is lit as one flat facet. The corner
// heights depend only on the grid corner, so neighbouring cells meet without cracks; they
// are computed once per corner.
std::unique_ptr<KVTMesh> UnderwaterEffect::makeOceanFloor(int cells, int size) {
    const int n = cells;
    const float s = static_cast<float>(size);
    const float d = s / static_cast<float>(n);
    const FloorNoise noise;
    std::vector<float> heights(static_cast<std::size_t>(n + 1) * (n + 1));
    for (int r = 0; r <= n; ++r) {
        for (int c = 0; c <= n; ++c) {
            heights[static_cast<std::size_t>(r) * (n + 1) + c] = noise.height(c, r);
        }
    }
    const auto h = [&heights, n](int c, int r) {
        return heights[static_cast<std::size_t>(r) * (n + 1) + c];
    };
    auto mesh = std::make_unique<KVTMesh>(n * n * 4, n * n, 4, true, true, false);
    Vector<float, 3>* positions = mesh->getVertexPointer();
    for (int r = 0; r < n; ++r) {
        const float z = s / 2 - r * d;
        for (int c = 0; c < n; ++c) {
            const float x = -s / 2 + c * d;
            const int k = r * n + c;
            positions[4 * k + 0] = Vector<float, 3>(x, h(c, r + 1), z - d);
            positions[4 * k + 1] = Vector<float, 3>(x, h(c, r), z);
            positions[4 * k + 2] = Vector<float, 3>(x + d, h(c + 1, r), z);
            positions[4 * k + 3] = Vector<float, 3>(x + d, h(c + 1, r + 1), z - d);
            mesh->setQuad(k, 4 * k, 4 * k + 1, 4 * k + 2, 4 * k + 3);
        }
    }
    mesh->calcFNormals(positions);
    mesh->calcVNormals(mesh->getVertexNormalPointer());
    return mesh;
}

void UnderwaterEffect::initWeed() {
    numWeeds = NUM_WEEDS;
    weedVertices = WEED_VERTICES;
    weeds.clear();
    for (int i = 0; i < numWeeds; ++i) {
        weeds.push_back(std::make_unique<Ribbon>(Vector<float, 3>(0.0f, 0.0f, 0.0f), 0.01f,
                                                 weedVertices, std::rand()));
    }
}

// Each strand grows straight up from the origin, WEED_RISE per segment, and its sideways
// sway is the ribbon's x and z scaled by the height reached. The half-width keeps growing
// over every segment of every strand, so later strands are a little wider.
const std::vector<Vector<float, 3>>& UnderwaterEffect::buildWeedQuads(unsigned int time) {
    weedQuads.clear();
    const int count = std::min(numWeeds, static_cast<int>(num_ribs->getValue(time)));
    const int segments =
        std::min(std::max(static_cast<int>(num_ribs_verts->getValue(time)), 2), weedVertices) - 2;
    const float t = static_cast<float>(time);
    const float twice = ribbons_noise_offset->getValue(static_cast<unsigned int>(2.0f * t));
    const float half = ribbons_noise_offset->getValue(static_cast<unsigned int>(t / 2.0f));
    const float now = ribbons_noise_offset->getValue(time);
    float w = WEED_HALF_WIDTH;
    for (int i = 0; i < count; ++i) {
        Ribbon& weed = *weeds[static_cast<std::size_t>(i)];
        weed.recalcVertices(Vector<float, 3>(now, half, twice));
        const float* v = weed.getVertices();
        float s = 0.0f;
        for (int j = 0; j < segments; ++j) {
            const float* p = v + 3 * j;
            const float* q = p + 3;
            weedQuads.emplace_back((p[0] - w) * s, s, p[2] * s);
            weedQuads.emplace_back((p[0] + w) * s, s, p[2] * s);
            s += WEED_RISE;
            weedQuads.emplace_back((q[0] + w) * s, s, q[2] * s);
            weedQuads.emplace_back((q[0] - w) * s, s, q[2] * s);
            w += WEED_WIDENING;
        }
        const float* last = v + 3 * segments;
        const float* tip = last + 3;
        weedQuads.emplace_back((last[0] - w) * s, s, last[2] * s);
        weedQuads.emplace_back((last[0] + w) * s, s, last[2] * s);
        s += WEED_RISE;
        weedQuads.emplace_back(tip[0] * s, s, tip[2] * s);
        weedQuads.emplace_back(tip[0] * s, s, tip[2] * s);
    }
    return weedQuads;
}

void UnderwaterEffect::drawWeed(unsigned int time) {
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
    glDisable(GL_CULL_FACE);
    glBegin(GL_QUADS);
    for (const Vector<float, 3>& corner : buildWeedQuads(time)) {
        glVertex3fv(corner.data());
    }
    glEnd();
    glEnable(GL_CULL_FACE);
}

void UnderwaterEffect::draw(unsigned int time, unsigned int frameTime, FBO* target) {
    FBO::bind(sceneTarget);
    FBO::clearLater(sceneTarget);
    setLightAndMaterial();
    glEnable(GL_DEPTH_TEST);
    applyCamera();

    glTranslatef(0.0f, -1.5f, 0.0f);
    drawFloor(time);
    glTranslatef(0.0f, 5.5f, 0.0f);
    drawSurface();
    advanceScroll(frameTime);
    glTranslatef(0.0f, -7.0f, 0.0f);
    drawWeedInWater(time);

    glDisable(GL_DEPTH_TEST);
    filterInto(target);
    drawDebris(time, target);
}

// The light sits at the eye (its position is set before any view transform) and fades with
// distance through the linear attenuation, like a diver's lamp in murky water.
void UnderwaterEffect::setLightAndMaterial() {
    glLightfv(GL_LIGHT0, GL_AMBIENT, lightAmbient.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, lightDiffuse.data());
    glLightfv(GL_LIGHT0, GL_SPECULAR, lightSpecular.data());
    glLightfv(GL_LIGHT0, GL_POSITION, lightPosition.data());
    glLightf(GL_LIGHT0, GL_CONSTANT_ATTENUATION, 0.0f);
    glLightf(GL_LIGHT0, GL_LINEAR_ATTENUATION, 0.5f);
    glLightf(GL_LIGHT0, GL_QUADRATIC_ATTENUATION, 0.0f);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, materialAmbient.data());
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, materialDiffuse.data());
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, materialSpecular.data());
    glMaterialfv(GL_FRONT_AND_BACK, GL_SHININESS, shininess);
}

void UnderwaterEffect::applyCamera() {
    const TrackSystem* tracks = KVTDemosys::tracks;
    if (tracks != nullptr && tracks->isEffectActive("camera")) {
        KVTDemosys::camera.setGLMatrixes();
    }
}

// The weed is drawn without a shader; fixed-function fog fades it into the water with
// distance, as the floor and surface shaders do.
void UnderwaterEffect::drawWeedInWater(unsigned int time) {
    const float water[4] = {0.03f, 0.22f, 0.27f, 1.0f};
    glPushAttrib(GL_FOG_BIT);
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_EXP);
    glFogf(GL_FOG_DENSITY, 0.03f);
    glFogfv(GL_FOG_COLOR, water);
    drawWeed(time);
    glPopAttrib();
}

void UnderwaterEffect::drawFloor(unsigned int time) {
    floorShader->use();
    floorShader->setUniform1f("wave_time", wave_time->getValue(time));
    floorBuffer->drawPolygons(GL_QUADS, 0, 0);
    floorShader->release();
}

void UnderwaterEffect::drawSurface() {
    wavesShader->use();
    wavesShader->setTextureUnit0("tex0", waveNormals0);
    wavesShader->setTextureUnit1("tex1", waveNormals1);
    wavesShader->setTextureUnit2("tex2", waveNormals2);
    wavesShader->setTextureUnit3("tex3", oceanSurfaceTexture);
    wavesShader->setUniform1f("scroll0", scroll[0]);
    wavesShader->setUniform1f("scroll1", scroll[1]);
    wavesShader->setUniform1f("scroll2", scroll[2]);
    surfaceBuffer->drawPolygons(GL_QUADS, 0, 0);
    wavesShader->release();
}

// The sums run in double precision, as the frame time is an unsigned count of ms.
void UnderwaterEffect::advanceScroll(unsigned int frameTime) {
    const double dt = frameTime;
    scroll[0] = static_cast<float>(scroll[0] + dt * 0.00002);
    scroll[1] = static_cast<float>(scroll[1] + dt * -0.0001);
    scroll[2] = static_cast<float>(scroll[2] + dt * 0.00004);
}

void UnderwaterEffect::filterInto(FBO* target) {
    FBO::bind(filterTarget);
    FBO::clearLater(filterTarget);
    laplaceShader->use();
    laplaceShader->setTextureUnit0("Texture", FBO::getColorBuffer(sceneTarget, 0));
    laplaceShader->setUniform1f("viewportStep", VIEWPORT_STEP);
    laplaceShader->setUniform1f("contrast", 2.0f);
    laplaceShader->setUniform3f("color", 1.0f, 1.0f, 1.0f);
    FBO::draw(sceneTarget);
    laplaceShader->release();

    FBO::bind(target);
    FBO::clearLater(target);
    dilateShader->use();
    dilateShader->setTextureUnit0("Texture", FBO::getColorBuffer(filterTarget, 0));
    dilateShader->setUniform1f("viewportStep", VIEWPORT_STEP);
    FBO::draw(filterTarget);
    dilateShader->release();
}

void UnderwaterEffect::drawDebris(unsigned int time, FBO* target) {
    debris->setPointSize(deb_size->getValue(time), FBO::getWidth(target));
    debris->drawPointSprites(spriteShader, debrisTexture, -1.0f);
}
