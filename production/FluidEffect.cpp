#include "FluidEffect.h"

#include "FBO.h"
#include "Geometry.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"

#include <GL/glew.h>

#include <utility>

namespace {

// The velocity grid's side, as the projection shaders see it.
const float VELOCITY_GRID = 64.0f;
const int PRESSURE_RELAXATIONS = 8;
// What the boundaries shader receives as "values": the largest magnitude a field may hold.
const float FIELD_LIMIT = 10.5f;
// The dye picture covers a third of the screen's width and a little over half its height.
const float DYE_SCALE_X = 3.0f;
const float DYE_SCALE_Y = 1.8f;

// The dye is placed on the screen for modes 1 to 6; a mode between two of them seeds nothing
// but keeps the dye it has where it was.
bool isPictureMode(float mode) {
    return mode >= 1.0f && mode <= 6.0f;
}

Texture* colourOf(FBO* fbo) {
    return FBO::getColorBuffer(fbo, 0);
}

// How a field is sampled from its next bind on: smoothly between texels, or texel by texel
// (which costs the software renderer a quarter of the reads).
void sampleSmoothly(FBO* field, bool smooth) {
    colourOf(field)->setInterpolation(smooth ? GL_LINEAR : GL_NEAREST);
}

} // namespace

void FluidEffect::registerTracks() {
    addTrack("source", source);
    addTrack("time_step", timeStep);
    addTrack("xpos", xpos);
    addTrack("ypos", ypos);
    addTrack("opacity", opacity);
}

// Dye reads past the edge repeat the edge; velocity reads past it see the border colour,
// zero, so the fluid outside the grid stands still.
void FluidEffect::init() {
    for (FBO* dye : {m_densities, m_densities_prev, m_d_tmp}) {
        colourOf(dye)->setTextureWrap(GL_CLAMP_TO_EDGE);
    }
    for (FBO* velocity :
         {m_velocities_u, m_velocities_v, m_velocities_u_prev, m_velocities_v_prev, m_v_tmp}) {
        colourOf(velocity)->setTextureWrap(GL_CLAMP_TO_BORDER);
    }
    // The passes read texel by texel (the advection blends the field for itself), except
    // where the advection traces the velocity and where the composite scales the dye onto the
    // screen.
    for (FBO* field : {m_densities, m_densities_prev, m_d_tmp, m_velocities_u, m_velocities_v,
                       m_velocities_u_prev, m_velocities_v_prev, m_v_tmp}) {
        sampleSmoothly(field, false);
    }
    clearAllFields();
    sourceMode = 0.0f;
    previousSourceMode = 0.0f;
    resetBuffers(0.0f);
}

// New framebuffers hold whatever the driver left in them: the simulation starts from still
// water without dye.
void FluidEffect::clearAllFields() {
    for (FBO* field : {m_densities_source, m_velocities_u_source, m_velocities_v_source,
                       m_densities, m_densities_prev, m_velocities_u, m_velocities_v,
                       m_velocities_u_prev, m_velocities_v_prev, m_d_tmp, m_v_tmp}) {
        FBO::clearNow(field);
    }
}

void FluidEffect::resetBuffers(float mode) {
    FBO::clearNow(m_densities_prev);
    FBO::clearNow(m_velocities_u_prev);
    FBO::clearNow(m_velocities_v_prev);
    stepCounter = 0;
    resetScale = 1.0f;
    seedPictures(mode);
}

// "u_source" and "v_source" belong to no mode.
void FluidEffect::seedPictures(float mode) {
    struct Seed {
        float mode;
        Texture* dye;
        Texture* u;
        Texture* v;
    };
    const Seed seeds[] = {
        {1.0f, korvathlogoSmall, uSource3, vSource3}, {2.0f, brinovalogoSmall, uSource2, vSource2},
        {3.0f, vaskSmall, uSource2, vSource2},        {4.0f, lumoSmall, uSource3, vSource2},
        {5.0f, orinSmall, uSource3, vSource3},        {6.0f, quilletSmall, uSource2, vSource3},
    };
    for (const Seed& seed : seeds) {
        if (seed.mode == mode) {
            setDensitySource(seed.dye);
            setVelocitiesUSource(seed.u);
            setVelocitiesVSource(seed.v);
            return;
        }
    }
}

void FluidEffect::setDensitySource(Texture* picture) {
    FBO::bind(m_densities_source);
    picture->drawQuadFS();
    FBO::bind(m_densities);
    colourOf(m_densities_source)->drawQuadFS();
}

void FluidEffect::setVelocitiesUSource(Texture* picture) {
    setVelocitySource(picture, m_velocities_u_source, m_velocities_u);
}

void FluidEffect::setVelocitiesVSource(Texture* picture) {
    setVelocitySource(picture, m_velocities_v_source, m_velocities_v);
}

void FluidEffect::setVelocitySource(Texture* picture, FBO* pictureBuffer, FBO* velocities) {
    FBO::bind(pictureBuffer);
    picture->drawQuadFS();
    FBO::bind(velocities);
    normalizeShader->use();
    normalizeShader->setTextureUnit0("source", colourOf(pictureBuffer));
    Geometry::drawUnitQuadFullscreen();
    normalizeShader->release();
}

void FluidEffect::selectScratch(unsigned int kind) {
    tmp = kind == 1 ? m_v_tmp : m_d_tmp;
}

void FluidEffect::beginPass(Shader* shader) {
    FBO::bind(tmp);
    FBO::clearNow(tmp);
    shader->use();
}

void FluidEffect::finishPass(Shader* shader, FBO* destination) {
    Geometry::drawUnitQuadFullscreen();
    shader->release();
    FBO::bind(destination);
    colourOf(tmp)->drawQuadFS();
}

float FluidEffect::timeStepNow() const {
    return timeStep->getValue(static_cast<unsigned int>(currentTime));
}

void FluidEffect::addSource(FBO* sourceField, FBO* destination, unsigned int kind) {
    selectScratch(kind);
    beginPass(addSourceShader);
    addSourceShader->setTextureUnit0("source", colourOf(sourceField));
    addSourceShader->setTextureUnit1("destination", colourOf(destination));
    addSourceShader->setUniform1f("time_step", timeStepNow());
    finishPass(addSourceShader, destination);
}

void FluidEffect::advect(FBO* previous, FBO* destination, FBO* velocitiesU, FBO* velocitiesV,
                         unsigned int kind) {
    selectScratch(kind);
    sampleSmoothly(velocitiesU, true);
    sampleSmoothly(velocitiesV, true);
    beginPass(advectShader);
    advectShader->setTextureUnit0("velocities_u", colourOf(velocitiesU));
    advectShader->setTextureUnit1("velocities_v", colourOf(velocitiesV));
    advectShader->setTextureUnit2("prev_densities", colourOf(previous));
    advectShader->setUniform1f("time_step", timeStepNow());
    finishPass(advectShader, destination);
    sampleSmoothly(velocitiesU, false);
    sampleSmoothly(velocitiesV, false);
}

// The dye just given its sources is carried along the velocity into the other buffer.
void FluidEffect::density_pass() {
    addSource(m_densities_prev, m_densities, 0);
    std::swap(m_densities, m_densities_prev);
    advect(m_densities_prev, m_densities, m_velocities_u, m_velocities_v, 0);
}

// One projection before the advection; both components move with the field as it was
// before either of them moved.
void FluidEffect::velocity_pass() {
    addSource(m_velocities_u_prev, m_velocities_u, 1);
    addSource(m_velocities_v_prev, m_velocities_v, 1);
    project();
    std::swap(m_velocities_u, m_velocities_u_prev);
    std::swap(m_velocities_v, m_velocities_v_prev);
    advect(m_velocities_u_prev, m_velocities_u, m_velocities_u_prev, m_velocities_v_prev, 1);
    advect(m_velocities_v_prev, m_velocities_v, m_velocities_u_prev, m_velocities_v_prev, 1);
}

// The previous-step buffers serve as scratch here: u_prev holds the pressure, v_prev the
// divergence.
void FluidEffect::project() {
    // What every wall pass is handed; drawConstantBoundaries puts its own values in.
    const Vector<float, 4> wallValues(0.0f, 0.0f, -0.025f, 0.0f);

    beginPass(divergenceShader);
    divergenceShader->setTextureUnit0("velocities_u", colourOf(m_velocities_u));
    divergenceShader->setTextureUnit1("velocities_v", colourOf(m_velocities_v));
    divergenceShader->setUniform1f("buffer_size", VELOCITY_GRID);
    finishPass(divergenceShader, m_velocities_v_prev);

    FBO::clearNow(m_velocities_u_prev);
    drawConstantBoundaries(wallValues, m_velocities_u_prev, 0, 1);
    drawConstantBoundaries(wallValues, m_velocities_v_prev, 1, 1);

    for (int i = 0; i < PRESSURE_RELAXATIONS; ++i) {
        beginPass(pressureShader);
        pressureShader->setTextureUnit0("source0", colourOf(m_velocities_u_prev));
        pressureShader->setTextureUnit1("source1", colourOf(m_velocities_v_prev));
        pressureShader->setUniform1f("buffer_size", VELOCITY_GRID);
        finishPass(pressureShader, m_velocities_u_prev);
        drawConstantBoundaries(wallValues, m_velocities_u_prev, 0, 1);
    }

    beginPass(gradientUShader);
    gradientUShader->setTextureUnit0("velocities_u", colourOf(m_velocities_u));
    gradientUShader->setTextureUnit1("velocities_u_prev", colourOf(m_velocities_u_prev));
    gradientUShader->setUniform1f("buffer_size", VELOCITY_GRID);
    finishPass(gradientUShader, m_velocities_u);
    drawConstantBoundaries(wallValues, m_velocities_u, 0, 1);

    beginPass(gradientVShader);
    gradientVShader->setTextureUnit0("velocities_v", colourOf(m_velocities_v));
    gradientVShader->setTextureUnit1("velocities_u_prev", colourOf(m_velocities_u_prev));
    gradientVShader->setUniform1f("buffer_size", VELOCITY_GRID);
    finishPass(gradientVShader, m_velocities_v);
    drawConstantBoundaries(wallValues, m_velocities_v, 1, 1);
}

void FluidEffect::drawConstantBoundaries(Vector<float, 4> values, FBO* buffer,
                                         unsigned int boundaryKind, unsigned int kind) {
    selectScratch(kind);
    // Whatever the caller asks for, the shader gets the limit of every field.
    values = Vector<float, 4>(FIELD_LIMIT, FIELD_LIMIT, FIELD_LIMIT, FIELD_LIMIT);
    Geometry::PushAllMatices();
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);

    beginPass(boundariesShader);
    boundariesShader->setTextureUnit0("buffer", colourOf(buffer));
    boundariesShader->setUniform4fv("values", values);
    boundariesShader->setUniform1f("buffer_size", static_cast<float>(FBO::getWidth(buffer)));
    if (boundaryKind <= 2) {
        boundariesShader->setUniform1f("boundaries", static_cast<float>(boundaryKind));
    }
    finishPass(boundariesShader, buffer);

    glPopAttrib();
    Geometry::PopAllMatrices();
}

void FluidEffect::draw(unsigned int time, unsigned int, FBO* target) {
    glPushAttrib(GL_ENABLE_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_BLEND);

    sourceMode = source->getValue(time);
    if (sourceMode != previousSourceMode) {
        resetBuffers(sourceMode);
        previousSourceMode = sourceMode;
    }
    currentTime = static_cast<float>(time);
    velocity_pass();
    density_pass();
    composite(time, target);

    glPopAttrib();
}

void FluidEffect::composite(unsigned int time, FBO* target) {
    sampleSmoothly(m_densities, true);
    FBO::bind(target);
    FBO::clearLater(target);
    screenOpacityShader->use();
    screenOpacityShader->setTextureUnit0("source0", colourOf(m_densities));
    screenOpacityShader->setTextureUnit1("source1", colourOf(staging0));
    screenOpacityShader->setUniform1f("source0_opacity", opacity->getValue(time));
    screenOpacityShader->setUniform1f("source1_opacity", 1.0f);
    if (isPictureMode(sourceMode)) {
        screenOpacityShader->setUniform2f("position", xpos->getValue(time), ypos->getValue(time));
        screenOpacityShader->setUniform2f("scale", DYE_SCALE_X, DYE_SCALE_Y);
    }
    Geometry::drawUnitQuadFullscreen();
    screenOpacityShader->release();
    sampleSmoothly(m_densities, false);
}
