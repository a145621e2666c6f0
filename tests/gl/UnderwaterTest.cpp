// The underwater scene, its shaders and the point-sprite particle system, drawn in a real
// context and read back. Renders are left in /tmp as underwater_*.png to look at.
#include "FBO.h"
#include "GLTestSupport.h"
#include "Geometry.h"
#include "KVTDemosys.h"
#include "ParticleSystem.h"
#include "ProductionFiles.h"
#include "ScreenMetrics.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackGroup.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"
#include "UnderwaterEffect.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using Picture = std::vector<unsigned char>;

// Drives the system camera the way the production's camera instance does: in predraw.
class CameraRig : public Effect {
public:
    void predraw(unsigned int) override {
        KVTDemosys::camera.setPitch(pitch);
        KVTDemosys::camera.setHeading(heading);
        KVTDemosys::camera.setPosition(position);
    }
    void draw(unsigned int, unsigned int, FBO*) override {}

    float pitch = 0.0f;
    float heading = 0.0f;
    Vector<float, 3> position;
};

void addActiveGroup(TrackSystem& system, const std::string& name, Effect* effect, FBO* target) {
    auto* startStop = new TrackStartStop(system.size());
    auto* start = new TrackStartStopKeyFrame(0, TrackKeyFrame::START);
    start->fbo = target;
    startStop->insertInterval(start, new TrackStartStopKeyFrame(100000, TrackKeyFrame::STOP));
    auto* group = new TrackGroup(name);
    group->setStartStopTrack(startStop);
    group->effect = effect;
    system.addTrackGroup(group);
}

// Pixels whose colour differs by more than a few steps in any channel.
int changedPixels(const Picture& a, const Picture& b, std::size_t end = SIZE_MAX) {
    int changed = 0;
    for (std::size_t i = 0; i < std::min(a.size(), end); i += 4) {
        changed += std::abs(a[i] - b[i]) > 6 || std::abs(a[i + 1] - b[i + 1]) > 6 ||
                   std::abs(a[i + 2] - b[i + 2]) > 6;
    }
    return changed;
}

struct Summary {
    double r = 0, g = 0, b = 0, spread = 0;
};

// The mean colour and the standard deviation of the brightness.
Summary summarise(const Picture& picture) {
    Summary s;
    double squares = 0;
    const double count = double(picture.size() / 4);
    for (std::size_t i = 0; i < picture.size(); i += 4) {
        s.r += picture[i] / count;
        s.g += picture[i + 1] / count;
        s.b += picture[i + 2] / count;
        const double y = 0.3 * picture[i] + 0.59 * picture[i + 1] + 0.11 * picture[i + 2];
        squares += y * y / count;
    }
    const double mean = 0.3 * s.r + 0.59 * s.g + 0.11 * s.b;
    s.spread = std::sqrt(squares - mean * mean);
    return s;
}

// Blue-green, lit and with something to see.
void expectDeepWater(const Picture& picture, const std::string& name) {
    const Summary s = summarise(picture);
    EXPECT_GT(s.g, s.r * 1.5) << name;
    EXPECT_GT(s.b, s.r * 1.5) << name;
    EXPECT_GT(s.g, 40.0) << name;
    EXPECT_GT(s.spread, 10.0) << name;
}

// One effect, built once for the suite: the floor alone is 262,144 vertices.
class UnderwaterScene : public testing::Test {
protected:
    struct Resources {
        std::unique_ptr<Shader> floor = gltest::productionShader("point_light");
        std::unique_ptr<Shader> laplace = gltest::productionShader("Laplacian");
        std::unique_ptr<Shader> dilate = gltest::productionShader("Dilate");
        std::unique_ptr<Shader> waves = gltest::productionShader("Waves");
        std::unique_ptr<Shader> sprite = gltest::productionShader("particlesprite");
        std::unique_ptr<Texture> surface = picture("OceanSurface.png", true);
        std::unique_ptr<Texture> normals0 = picture("Waves1Normals.png");
        std::unique_ptr<Texture> normals1 = picture("Waves2Normals.png");
        std::unique_ptr<Texture> normals2 = picture("Waves3Normals.png");
        std::unique_ptr<Texture> puff = picture("Puff.png");

        static std::unique_ptr<Texture> picture(const char* file, bool mipmap = false) {
            return gltest::productionPicture(file, GL_TEXTURE_2D, mipmap);
        }
    };

    static void SetUpTestSuite() {
        resources = new Resources;
        effect = new UnderwaterEffect;
        effect->floorShader = resources->floor.get();
        effect->laplaceShader = resources->laplace.get();
        effect->dilateShader = resources->dilate.get();
        effect->wavesShader = resources->waves.get();
        effect->spriteShader = resources->sprite.get();
        effect->oceanSurfaceTexture = resources->surface.get();
        effect->waveNormals0 = resources->normals0.get();
        effect->waveNormals1 = resources->normals1.get();
        effect->waveNormals2 = resources->normals2.get();
        effect->debrisTexture = resources->puff.get();
        std::srand(2024);
        effect->init();
    }

    static void TearDownTestSuite() {
        delete effect;
        delete resources;
    }

    void SetUp() override {
        ASSERT_NE(resources->floor, nullptr);
        ASSERT_NE(resources->puff, nullptr);
        gltest::resetState(64, 64);
        glPushAttrib(GL_LIGHTING_BIT);
        KVTDemosys::screenMetrics->setNear(1.0f);
        KVTDemosys::screenMetrics->setFar(200.0f);
        setTracks(3.0f, 20.0f, 6.0f);
        look(-4.0f, 0.0f, 0.0f, 1.5f, 30.0f);
    }

    void TearDown() override {
        KVTDemosys::camera = Camera();
        glPopAttrib();
        gltest::resetState(64, 64);
    }

    void setTracks(float waveTime, float ribs, float debrisSize) {
        tracks.set(effect->wave_time, waveTime);
        tracks.set(effect->ribbons_noise_offset, 1.0f);
        tracks.set(effect->num_ribs, ribs);
        tracks.set(effect->num_ribs_verts, 100.0f);
        tracks.set(effect->deb_size, debrisSize);
    }

    void look(float pitch, float heading, float x, float y, float z) {
        rig.pitch = pitch;
        rig.heading = heading;
        rig.position = Vector<float, 3>(x, y, z);
    }

    // One frame as the demo's loop draws it: screen bound, the screen's projection, identity
    // model-view, then the track system with the effect (and the camera rig when asked).
    Picture renderFrame(int width, int height, bool withCamera, unsigned int frameTime = 0) {
        auto scene =
            std::make_unique<FBO>(width, height, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
        std::unique_ptr<FBO> between = gltest::rgbaTarget(width, height);
        std::unique_ptr<FBO> target = gltest::rgbaTarget(width, height);
        effect->sceneTarget = scene.get();
        effect->filterTarget = between.get();
        FBO::clearNow(scene.get());

        TrackSystem system;
        if (withCamera) {
            addActiveGroup(system, "camera", &rig, nullptr);
        }
        addActiveGroup(system, "underwater_effect", effect, target.get());
        system.createPrioritySystem();
        TrackSystem* previous = KVTDemosys::tracks;
        KVTDemosys::tracks = &system;
        FBO::bind(nullptr);
        glEnable(GL_CULL_FACE);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        KVTDemosys::screenMetrics->setView();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        system.processSystem(20000, 400, frameTime);
        KVTDemosys::tracks = previous;

        FBO::bind(target.get());
        Picture picture = gltest::readRgba(0, 0, width, height);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        FBO::bind(nullptr);
        return picture;
    }

    static Resources* resources;
    static UnderwaterEffect* effect;
    gltest::TrackValues tracks;
    CameraRig rig;
};

UnderwaterScene::Resources* UnderwaterScene::resources = nullptr;
UnderwaterEffect* UnderwaterScene::effect = nullptr;

} // namespace

// Views along the camera path of the opening and the outro, and the view without the camera.
TEST_F(UnderwaterScene, TheCameraInstanceSwitchesTheView) {
    struct View {
        const char* name;
        float pitch, heading, x, y, z;
    };
    const View views[] = {{"opening", 8.0f, 0.0f, 0.0f, 3.2f, 72.0f},
                          {"beat", -15.0f, 10.0f, 0.0f, 2.0f, 18.0f},
                          {"rising", -35.0f, 15.0f, 0.0f, 1.0f, 12.0f},
                          {"outro", -40.0f, -20.0f, -8.0f, 2.2f, 20.0f}};
    const Picture withoutCamera = renderFrame(640, 360, false);
    gltest::savePng("/tmp/underwater_origin.png", 640, 360, withoutCamera);
    expectDeepWater(withoutCamera, "origin");
    for (const View& view : views) {
        look(view.pitch, view.heading, view.x, view.y, view.z);
        const Picture picture = renderFrame(640, 360, true);
        gltest::savePng(std::string("/tmp/underwater_") + view.name + ".png", 640, 360, picture);
        expectDeepWater(picture, view.name);
        EXPECT_GT(changedPixels(picture, withoutCamera), 640 * 360 / 2) << view.name;
    }
}

// Each part is switched or moved on its own and must change the picture where it is seen.
TEST_F(UnderwaterScene, FloorSurfaceWeedAndDebrisEachShow) {
    look(12.0f, 0.0f, 0.0f, 6.0f, 28.0f);
    const Picture scene = renderFrame(640, 360, true);
    setTracks(3.0f, 0.0f, 6.0f);
    EXPECT_GT(changedPixels(scene, renderFrame(640, 360, true)), 640 * 360 / 50) << "weed";
    setTracks(3.0f, 20.0f, 0.0f);
    const int debris = changedPixels(scene, renderFrame(640, 360, true));
    EXPECT_GT(debris, 200) << "the debris";
    EXPECT_LT(debris, 640 * 360 / 10) << "specks, not a veil";
    setTracks(4.0f, 20.0f, 6.0f);
    EXPECT_GT(changedPixels(scene, renderFrame(640, 360, true), 640 * 180 * 4), 640 * 180 / 20)
        << "the caustics on the floor, in the lower half, move with the wave time";

    // Looking up: the wave maps scroll by the frame time, after the frame that drew them.
    look(-30.0f, 0.0f, 0.0f, 0.0f, 20.0f);
    setTracks(3.0f, 0.0f, 0.0f);
    const Picture before = renderFrame(640, 360, true, 4000);
    const Picture after = renderFrame(640, 360, true);
    gltest::savePng("/tmp/underwater_surface.png", 640, 360, after);
    EXPECT_GT(changedPixels(before, after), 640 * 360 / 4) << "the surface";
}

// The debris size is deb_size pixels of a 1024-wide picture, whatever the target's width.
TEST_F(UnderwaterScene, DebrisSizeFollowsTheTargetWidth) {
    setTracks(3.0f, 20.0f, 12.0f);
    renderFrame(640, 360, true);
    EXPECT_FLOAT_EQ(effect->debris->getPointSize(), 12.0f * 640 / 1024);
    const Picture small = renderFrame(160, 90, true);
    gltest::savePng("/tmp/underwater_small.png", 160, 90, small);
    expectDeepWater(small, "small");
    EXPECT_FLOAT_EQ(effect->debris->getPointSize(), 12.0f * 160 / 1024);
}

namespace {

class PointSprites : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(64, 64);
        ASSERT_NE(shader, nullptr);
    }
    void TearDown() override { gltest::resetState(64, 64); }

    // Lit pixels across the middle row of a square target after drawing one particle at
    // (0, 0, z) with identity matrices and an opaque white sprite.
    int spriteWidth(float size, int width, float z, float attenuation) {
        ParticleSystem particle(1, 1, 1.0f, 0.0f, 0.0f, z);
        std::unique_ptr<FBO> target = gltest::rgbaTarget(width, width);
        FBO::clearNow(target.get());
        particle.setPointSize(size, FBO::getWidth(target.get()));
        particle.drawPointSprites(shader.get(), white.get(), attenuation);
        const Picture row = gltest::readRgba(0, width / 2, width, 1);
        FBO::bind(nullptr);
        int lit = 0;
        for (std::size_t i = 0; i < row.size(); i += 4) {
            lit += row[i] > 0;
        }
        return lit;
    }

    std::unique_ptr<Shader> shader = gltest::productionShader("particlesprite");
    const std::vector<unsigned char> texels = std::vector<unsigned char>(8 * 8 * 4, 255);
    std::unique_ptr<Texture> white =
        std::make_unique<Texture>(8, 8, GL_TEXTURE_2D, GL_RGBA, GL_RGBA, texels.data());
};

} // namespace

TEST_F(PointSprites, KeepTheirShareOfThePictureAtAnyWidth) {
    EXPECT_EQ(spriteWidth(32.0f, 256, 0.0f, -1.0f), 8);
    EXPECT_EQ(spriteWidth(32.0f, 128, 0.0f, -1.0f), 4);
    EXPECT_EQ(spriteWidth(0.0f, 256, 0.0f, -1.0f), 0) << "size zero draws nothing";
    // Half a unit away an attenuation of 2 halves the size; 0 leaves it.
    EXPECT_EQ(spriteWidth(32.0f, 256, -0.5f, 2.0f), 4);
    EXPECT_EQ(spriteWidth(32.0f, 256, -0.5f, 0.0f), 8);
}

TEST_F(PointSprites, AddTheirColourWithoutWritingDepthAndRestoreTheState) {
    ParticleSystem particle(1, 1, 1.0f, 0.0f, 0.0f, 0.0f);
    particle.openColorBuffer(GL_WRITE_ONLY);
    const float colour[4] = {0.5f, 0.25f, 1.0f, 0.5f};
    std::copy(colour, colour + 4, particle.getColorPointer());
    particle.closeColorBuffer();
    auto target = std::make_unique<FBO>(64, 64, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    FBO::bind(target.get());
    glClearColor(0.2f, 0.2f, 0.2f, 1.0f);
    glClearDepth(0.75);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glClearDepth(1.0);
    glEnable(GL_DEPTH_TEST);
    particle.setPointSize(160.0f, 64); // 10 pixels
    particle.drawPointSprites(shader.get(), white.get(), -1.0f);

    const gltest::Rgba centre = gltest::pixelAt(32, 32); // the colour times its alpha, added
    EXPECT_NEAR(centre.r, 51 + 64, 2);
    EXPECT_NEAR(centre.g, 51 + 32, 2);
    EXPECT_NEAR(centre.b, 51 + 128, 2);
    float depth = 0;
    glReadPixels(32, 32, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    EXPECT_NEAR(depth, 0.75f, 1e-3f);
    GLboolean depthWrites = GL_FALSE;
    glGetBooleanv(GL_DEPTH_WRITEMASK, &depthWrites);
    EXPECT_TRUE(depthWrites);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_FALSE(glIsEnabled(GL_BLEND) || glIsEnabled(GL_POINT_SPRITE) ||
                 glIsEnabled(GL_VERTEX_PROGRAM_POINT_SIZE));
    FBO::bind(nullptr);
}

TEST(ParticleSystemBuffers, HoldWhatWasWrittenThroughTheMappedPointers) {
    gltest::resetState(64, 64);
    ParticleSystem grid(4, 3, 0.5f, 1.0f, 2.0f, 3.0f);
    ASSERT_EQ(grid.getCount(), 12);
    grid.openVertexBuffer(GL_READ_ONLY);
    const float* made = grid.getVertexPointer() + (2 * 4 + 3) * 3; // column 3, row 2
    EXPECT_EQ((std::vector<float>(made, made + 3)), (std::vector<float>{2.5f, 3.0f, 3.0f}));
    grid.closeVertexBuffer();
    EXPECT_EQ(grid.getVertexPointer(), nullptr) << "no pointer outlives its mapping";

    std::vector<float> positions(36), colours(48);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        colours[i] = static_cast<float>(i) / 48.0f;
        positions[i % 36] = static_cast<float>(i) * 0.25f - 4.0f;
    }
    grid.openVertexBuffer(GL_WRITE_ONLY);
    grid.openColorBuffer(GL_WRITE_ONLY);
    std::copy(positions.begin(), positions.end(), grid.getVertexPointer());
    std::copy(colours.begin(), colours.end(), grid.getColorPointer());
    grid.closeVertexBuffer();
    grid.closeColorBuffer();

    grid.openVertexBuffer(GL_READ_ONLY);
    grid.openColorBuffer(GL_READ_ONLY);
    EXPECT_EQ(std::vector<float>(grid.getVertexPointer(), grid.getVertexPointer() + 36), positions);
    EXPECT_EQ(std::vector<float>(grid.getColorPointer(), grid.getColorPointer() + 48), colours);
    grid.closeColorBuffer();
    grid.closeVertexBuffer();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

namespace {

// The two screen passes on 32 x 32 made-up pictures, one texel per viewportStep.
class UnderwaterScreenPasses : public testing::Test {
protected:
    static constexpr int SIZE = 32;

    void SetUp() override { gltest::resetState(64, 64); }
    void TearDown() override { gltest::resetState(64, 64); }

    // A grey picture of the given alpha, its texels from grey(x, y).
    template <typename Grey> static std::unique_ptr<Texture> picture(Grey grey, int alpha = 255) {
        std::vector<unsigned char> texels;
        for (int i = 0; i < SIZE * SIZE; ++i) {
            const auto v = static_cast<unsigned char>(std::lround(grey(i % SIZE, i / SIZE) * 255));
            texels.insert(texels.end(), {v, v, v, static_cast<unsigned char>(alpha)});
        }
        return std::make_unique<Texture>(SIZE, SIZE, GL_TEXTURE_2D, GL_RGBA, GL_RGBA,
                                         texels.data());
    }

    Picture run(Shader* shader, Texture* input, float contrast = 2.0f, float tint = 1.0f) {
        std::unique_ptr<FBO> target = gltest::rgbaTarget(SIZE, SIZE);
        FBO::bind(target.get());
        shader->use();
        shader->setTextureUnit0("Texture", input);
        shader->setUniform1f("viewportStep", 1.0f / SIZE);
        if (shader == laplace.get()) {
            shader->setUniform1f("contrast", contrast);
            shader->setUniform3f("color", tint, tint, tint);
        }
        Geometry::drawUnitQuadFullscreen();
        shader->release();
        Picture result = gltest::readRgba(0, 0, SIZE, SIZE);
        FBO::bind(nullptr);
        return result;
    }

    static int grey(const Picture& p, int x, int y) { return p[(y * SIZE + x) * 4]; }

    std::unique_ptr<Shader> laplace = gltest::productionShader("Laplacian");
    std::unique_ptr<Shader> dilate = gltest::productionShader("Dilate");
};

} // namespace

TEST_F(UnderwaterScreenPasses, TheLaplacianSharpensEdgesAndShowsWaterWhereNothingWasDrawn) {
    const auto edge = picture([](int x, int) { return x < SIZE / 2 ? 0.25f : 0.75f; });
    const Picture sharp = run(laplace.get(), edge.get());
    EXPECT_NEAR(grey(sharp, 4, 10), 64, 2) << "flat stays flat";
    EXPECT_NEAR(grey(sharp, 28, 10), 191, 2);
    EXPECT_LT(grey(sharp, 15, 10), 64 - 40) << "the dark side of the edge darkens";
    EXPECT_GT(grey(sharp, 16, 10), 191 + 40) << "the bright side brightens";
    EXPECT_NEAR(grey(run(laplace.get(), edge.get(), 2.0f, 0.0f), 15, 10), 64, 2) << "color";
    EXPECT_GT(grey(run(laplace.get(), edge.get(), 0.5f), 15, 10), grey(sharp, 15, 10))
        << "contrast";

    const auto empty = picture([](int, int) { return 0.0f; }, 0);
    const Picture water = run(laplace.get(), empty.get());
    const int top = (SIZE - 2) * SIZE * 4;
    EXPECT_GT(water[top + 1], 30) << "blue-green water, not black";
    EXPECT_GT(water[top + 2], water[top]);
    EXPECT_GT(water[top + 1], water[1]) << "lighter towards the surface";
}

TEST_F(UnderwaterScreenPasses, DilationSpreadsBrightTexelsAndKeepsFlatAreas) {
    const auto dot = picture([](int x, int y) { return x == 16 && y == 16 ? 1.0f : 0.0f; });
    const Picture spread = run(dilate.get(), dot.get());
    EXPECT_GT(grey(spread, 16, 16), 128);
    EXPECT_GT(grey(spread, 17, 16), 20);
    EXPECT_GT(grey(spread, 15, 17), 20);
    EXPECT_GT(grey(spread, 18, 16), 10) << "two texels out";
    EXPECT_EQ(grey(spread, 20, 16), 0);
    const auto flat = picture([](int, int) { return 0.4f; });
    EXPECT_NEAR(grey(run(dilate.get(), flat.get()), 9, 21), 102, 1);
}

namespace {

// A quad with the given normal filling the view at depth z, under the scene-object lighting.
gltest::Rgba litQuad(Shader* shader, float z, float nx, float nz) {
    auto target = std::make_unique<FBO>(8, 8, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    FBO::clearNow(target.get());
    shader->use();
    glBegin(GL_QUADS);
    glNormal3f(nx, 0.0f, nz);
    glVertex3f(z, z, z);
    glVertex3f(-z, z, z);
    glVertex3f(-z, -z, z);
    glVertex3f(z, -z, z);
    glEnd();
    shader->release();
    const gltest::Rgba centre = gltest::pixelAt(4, 4);
    FBO::bind(nullptr);
    return centre;
}

} // namespace

TEST(SceneObjectLighting, LightsFacesTowardsTheLightAndHazesDistance) {
    gltest::resetState(64, 64);
    std::unique_ptr<Shader> shader = gltest::productionShader("standard_light");
    ASSERT_NE(shader, nullptr);
    const float black[4] = {0, 0, 0, 1};
    const float red[4] = {1, 0, 0, 1};
    const float towardsTheViewer[4] = {0, 0, 1, 0};
    glPushAttrib(GL_LIGHTING_BIT);
    glLightfv(GL_LIGHT0, GL_AMBIENT, black);
    glLightfv(GL_LIGHT0, GL_SPECULAR, black);
    glLightfv(GL_LIGHT0, GL_POSITION, towardsTheViewer);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, red);
    glMatrixMode(GL_PROJECTION);
    glFrustum(-1, 1, -1, 1, 1, 300);
    glMatrixMode(GL_MODELVIEW);

    const gltest::Rgba facing = litQuad(shader.get(), -2.0f, 0.0f, 1.0f);
    EXPECT_GT(facing.r, 230);
    EXPECT_LT(facing.g, 20);
    EXPECT_LT(litQuad(shader.get(), -2.0f, 1.0f, 0.0f).r, 20) << "a face edge-on to the light";
    const gltest::Rgba far = litQuad(shader.get(), -150.0f, 0.0f, 1.0f);
    EXPECT_LT(far.r, 40) << "far away the water colour takes over";
    EXPECT_GT(far.b, far.r);
    glPopAttrib();
    gltest::resetState(64, 64);
}
