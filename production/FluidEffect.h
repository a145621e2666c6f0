#pragma once

#include "Effect.h"
#include "Vector.h"

#include <cstdint>

// A two-dimensional stable-fluids simulation on the GPU, one step per drawn frame, whose
// coloured dye is laid over another effect's image. The velocity lives in two 64 x 64
// half-float framebuffers (u and v), the dye in a 256 x 256 RGB half-float one. The "source"
// track picks a scene: a dye picture (a member's name or a logo) and a pair of velocity
// pictures that stir it; a change of mode restarts the fluid on that very frame.
//
// Every pass draws a full-screen quad through its shader into a scratch framebuffer (tmp:
// m_v_tmp at velocity resolution, m_d_tmp at dye resolution) and then copies the scratch into
// its destination, so no pass ever reads the framebuffer it writes.
class FluidEffect : public Effect {
public:
    Effect* getInstance() override { return new FluidEffect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    // Clears the previous-step fields and seeds the dye and the velocity from the pictures
    // of the mode (compared exactly); a mode without pictures seeds nothing.
    void resetBuffers(float mode);
    void setDensitySource(Texture* picture);
    void setVelocitiesUSource(Texture* picture);
    void setVelocitiesVSource(Texture* picture);
    // kind 1 works at velocity resolution, anything else at dye resolution.
    void addSource(FBO* source, FBO* destination, unsigned int kind);
    void advect(FBO* previous, FBO* destination, FBO* velocitiesU, FBO* velocitiesV,
                unsigned int kind);
    void density_pass();
    void velocity_pass();
    // Makes the velocity (nearly) divergence-free: divergence, eight pressure relaxations
    // from zero, then the pressure gradient subtracted from u and v.
    void project();
    // Walls on buffer: boundaryKind 0 for u and scalar fields, 1 for v, 2 for a field with no
    // component across the walls. The caller's values are replaced by the effect's own limit.
    void drawConstantBoundaries(Vector<float, 4> values, FBO* buffer, unsigned int boundaryKind,
                                unsigned int kind);

    uint32_t stepCounter = 0;
    float currentTime = 0.0f;
    float resetScale = 1.0f;
    float sourceMode = 0.0f;
    float previousSourceMode = 0.0f;

    Shader* addSourceShader = nullptr;
    Shader* advectShader = nullptr;
    Shader* divergenceShader = nullptr;
    Shader* pressureShader = nullptr;
    Shader* gradientUShader = nullptr;
    Shader* gradientVShader = nullptr;
    Shader* boundariesShader = nullptr;
    Shader* normalizeShader = nullptr;
    Shader* screenOpacityShader = nullptr;

    Texture* uSource = nullptr;
    Texture* vSource = nullptr;
    Texture* uSource2 = nullptr;
    Texture* vSource2 = nullptr;
    Texture* uSource3 = nullptr;
    Texture* vSource3 = nullptr;
    Texture* vaskSmall = nullptr;
    Texture* lumoSmall = nullptr;
    Texture* orinSmall = nullptr;
    Texture* quilletSmall = nullptr;
    Texture* korvathlogoSmall = nullptr;
    Texture* brinovalogoSmall = nullptr;

    FBO* m_densities_source = nullptr;
    FBO* m_velocities_u_source = nullptr;
    FBO* m_velocities_v_source = nullptr;
    FBO* m_densities = nullptr;
    FBO* m_densities_prev = nullptr;
    FBO* m_velocities_u = nullptr;
    FBO* m_velocities_v = nullptr;
    FBO* m_velocities_u_prev = nullptr;
    FBO* m_velocities_v_prev = nullptr;
    FBO* tmp = nullptr;
    FBO* m_d_tmp = nullptr;
    FBO* m_v_tmp = nullptr;
    FBO* staging0 = nullptr;
    FBO* staging1 = nullptr;

    TrackInterpolate* source = nullptr;
    TrackInterpolate* timeStep = nullptr;
    TrackInterpolate* xpos = nullptr;
    TrackInterpolate* ypos = nullptr;
    TrackInterpolate* opacity = nullptr;

private:
    // Points tmp at the scratch framebuffer of the kind's resolution.
    void selectScratch(unsigned int kind);
    // Binds and clears tmp and makes the pass shader current; its uniforms follow.
    void beginPass(Shader* shader);
    // Draws the pass into tmp and copies tmp over destination.
    void finishPass(Shader* shader, FBO* destination);
    // Overwrites a velocity component with the velocities its picture stands for.
    void setVelocitySource(Texture* picture, FBO* pictureBuffer, FBO* velocities);
    void seedPictures(float mode);
    void clearAllFields();
    float timeStepNow() const;
    // The dye over staging0, straight into target.
    void composite(unsigned int time, FBO* target);
};
