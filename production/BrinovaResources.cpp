#include "BrinovaResources.h"

#include "CameraLensEffect.h"
#include "CreditsEffect.h"
#include "FBO.h"
#include "FluidEffect.h"
#include "GlowEffect.h"
#include "KVTDemosys.h"
#include "ParticleCreatures2Effect.h"
#include "ParticleCreaturesEffect.h"
#include "PostProcessEffect.h"
#include "RadialBlurEffect.h"
#include "ScreenMetrics.h"
#include "UnderwaterEffect.h"

#include <GL/glew.h>

#include <iterator>

namespace {

struct Picture {
    const char* key;
    const char* file;
};

// Two-dimensional pictures without mipmaps; the ocean surface and the tone curve differ.
const Picture Pictures[] = {
    {"wave_normals0", "Waves1Normals.png"},
    {"wave_normals1", "Waves2Normals.png"},
    {"wave_normals2", "Waves3Normals.png"},
    {"overlay", "FrameOverlay.png"},
    {"color_noise", "Noise.png"},
    {"gaussian_kernel", "Kernel.png"},
    {"particle", "light.png"},
    {"particle2", "Particle.png"},
    {"puff_particle", "Puff.png"},
    {"u_source", "Velocities.png"},
    {"v_source", "Velocities2.png"},
    {"u_source2", "Velocities3.png"},
    {"v_source2", "Velocities4.png"},
    {"u_source3", "Velocities5.png"},
    {"v_source3", "Velocities6.png"},
    {"vask", "Vask.png"},
    {"lumo", "Lumo.png"},
    {"orin", "Orin.png"},
    {"quillet", "Quillet.png"},
    {"korvathlogo", "KorvathLogo.png"},
    {"brinovalogo", "BrinovaLogo.png"},
    {"vask_small", "VaskSmall.png"},
    {"lumo_small", "LumoSmall.png"},
    {"orin_small", "OrinSmall.png"},
    {"quillet_small", "QuilletSmall.png"},
    {"korvathlogo_small", "KorvathLogoSmall.png"},
    {"brinovalogo_small", "BrinovaLogoSmall.png"},
};

struct ShaderFile {
    const char* key;
    const char* file;
};

// In the order they are loaded.
const ShaderFile Shaders[] = {
    {"standard_light", "standard_light"},
    {"point_light", "point_light"},
    {"laplace", "Laplacian"},
    {"dilate", "Dilate"},
    {"waves", "Waves"},
    {"b_n_c_shader", "BrightnessContrast"},
    {"blur_x", "Gaussian_x"},
    {"blur_y", "Gaussian_y"},
    {"copy", "Copy"},
    {"screen", "Screen"},
    {"screen_opacity", "ScreenOpacity"},
    {"post_process_shader", "PostProcess"},
    {"particlesprite_shader", "particlesprite"},
    {"add_source_shader", "AddSource"},
    {"advect_shader", "Advect"},
    {"project_pass0_shader", "ProjectPass0"},
    {"project_pass1_shader", "ProjectPass1"},
    {"project_pass2u_shader", "ProjectPass2u"},
    {"project_pass2v_shader", "ProjectPass2v"},
    {"boundaries_shader", "Boundaries"},
    {"normalize_shader", "Normalize"},
    {"zoom_blend", "ZoomBlend"},
};

FBO* screenBuffer(int side, bool depth) {
    return new FBO(side, side, depth, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
}

// The fluid's fields: dye is RGB half floats at 256, velocity components R half floats at 64.
struct FluidField {
    const char* key;
    bool dye;
};

const FluidField FluidFields[] = {
    {"m_densities_source", true},
    {"m_velocities_u_source", false},
    {"m_velocities_v_source", false},
    {"m_densities", true},
    {"m_densities_prev", true},
    {"m_velocities_u", false},
    {"m_velocities_v", false},
    {"m_velocities_u_prev", false},
    {"m_velocities_v_prev", false},
    {"m_d_tmp", true},
    {"m_v_tmp", false},
};

FBO* fluidBuffer(bool dye) {
    return dye ? new FBO(256, 256, false, false, GL_RGB16F, GL_RGB, GL_FLOAT)
               : new FBO(64, 64, false, false, GL_R16F, GL_RED, GL_FLOAT);
}

} // namespace

BrinovaResources::ScreenBufferSizes BrinovaResources::screenBufferSizes(int quality,
                                                                        int screenWidth) {
    switch (quality) {
    case 0:
        return {256, 128};
    case 1:
        return {512, 256};
    case 2:
        return {1024, 512};
    default:
        return {screenWidth, 1024};
    }
}

void BrinovaResources::DefineDemoParameters(ScreenMetrics* metrics) {
    metrics->setNear(1.0f);
    metrics->setFar(200.0f);
    KVTDemosys::DemoStartTime.setTimeAsString("00:00:00");
    KVTDemosys::DemoEndTime.setTimeAsString("02:30:850");
    SetTempo(120.0);
    AddSection("intro", "00:00:000");
    AddSection("beat", "00:16:000");
    AddSection("break", "00:48:000");
    AddSection("fluid", "01:04:000");
    AddSection("climax", "01:36:000");
    AddSection("outro", "02:08:000");
}

void BrinovaResources::DefineResouces() {
    SetMusic("brinova_final_c.mp3");
    defineTextures();
    defineShaders();
    // Every effect draws through framebuffers; the fluid simulates in float R and RGB ones.
    RequireExtension("GL_EXT_framebuffer_object");
    RequireExtension("GL_ARB_texture_float");
    RequireExtension("GL_ARB_texture_rg");
    defineScreenFramebuffers();
    for (const FluidField& field : FluidFields) {
        AddFBO(field.key, fluidBuffer(field.dye));
    }
}

void BrinovaResources::defineTextures() {
    AddTexture({"ocean_surface_texture", "OceanSurface.png", GL_TEXTURE_2D, true});
    for (const Picture& picture : Pictures) {
        AddTexture({picture.key, picture.file, GL_TEXTURE_2D, false});
    }
    AddTexture({"threshold", "Threshold.png", GL_TEXTURE_1D, true});
}

void BrinovaResources::defineShaders() {
    for (const ShaderFile& shader : Shaders) {
        AddShader({shader.key, shader.file, {}});
    }
}

void BrinovaResources::defineScreenFramebuffers() {
    const ScreenMetrics* metrics = KVTDemosys::screenMetrics;
    const ScreenBufferSizes size = screenBufferSizes(metrics->getQuality(), metrics->getWidth());
    AddFBO("offscreen0", screenBuffer(size.main, true));
    AddFBO("offscreen1", screenBuffer(size.main, true));
    AddFBO("staging0", screenBuffer(size.main, true));
    AddFBO("staging1", screenBuffer(size.main, true));
    AddFBO("glow_pre", screenBuffer(size.main, false));
    AddFBO("blur_pre", screenBuffer(size.half, false));
    AddFBO("blurx", screenBuffer(size.half, false));
    AddFBO("blury", screenBuffer(size.half, false));
}

void BrinovaResources::DefineEffects() {
    AddEffect("UnderwaterEffect", new UnderwaterEffect);
    AddEffect("PostProcessEffect", new PostProcessEffect);
    AddEffect("GlowEffect", new GlowEffect);
    AddEffect("ParticleCreaturesEffect", new ParticleCreaturesEffect);
    AddEffect("ParticleCreatures2Effect", new ParticleCreatures2Effect);
    AddEffect("FluidEffect", new FluidEffect);
    AddEffect("CameraLensEffect", new CameraLensEffect);
    AddEffect("CreditsEffect", new CreditsEffect);
    AddEffect("RadialBlurEffect", new RadialBlurEffect);
}

void BrinovaResources::DefineEffectInstances() {
    defineUnderwater();
    definePostProcess();
    defineGlow();
    defineCreatures();
    defineFluid();
    CreateEffectInstance("CameraLensEffect", "camera", true);
    defineCredits();
    defineRadialBlur();
}

void BrinovaResources::defineUnderwater() {
    auto* underwater = static_cast<UnderwaterEffect*>(
        CreateEffectInstance("UnderwaterEffect", "underwater_effect", true));
    underwater->floorShader = GetShader("point_light");
    underwater->laplaceShader = GetShader("laplace");
    underwater->dilateShader = GetShader("dilate");
    underwater->wavesShader = GetShader("waves");
    underwater->spriteShader = GetShader("particlesprite_shader");
    underwater->sceneTarget = GetFBO("offscreen0");
    underwater->filterTarget = GetFBO("offscreen1");
    underwater->oceanSurfaceTexture = GetTexture("ocean_surface_texture");
    underwater->waveNormals0 = GetTexture("wave_normals0");
    underwater->waveNormals1 = GetTexture("wave_normals1");
    underwater->waveNormals2 = GetTexture("wave_normals2");
    underwater->particleTexture = GetTexture("particle");
    underwater->debrisTexture = GetTexture("puff_particle");
}

void BrinovaResources::definePostProcess() {
    auto* post = static_cast<PostProcessEffect*>(
        CreateEffectInstance("PostProcessEffect", "postprocess_effect", true));
    post->overlayTexture = GetTexture("overlay");
    post->noiseTexture = GetTexture("color_noise");
    post->thresholdTexture = GetTexture("threshold");
    post->shader = GetShader("post_process_shader");
    post->source = GetFBO("staging0");
}

void BrinovaResources::defineGlow() {
    auto* glow = static_cast<GlowEffect*>(CreateEffectInstance("GlowEffect", "glow_effect", true));
    glow->blurred = GetFBO("blur_pre");
    glow->blurX = GetFBO("blurx");
    glow->horizontal = GetFBO("blury");
    glow->source = GetFBO("glow_pre");
    glow->blurXShader = GetShader("blur_x");
    glow->blurYShader = GetShader("blur_y");
    glow->screenShader = GetShader("screen");
    glow->brightnessContrastShader = GetShader("b_n_c_shader");
    glow->kernel = GetTexture("gaussian_kernel");
}

void BrinovaResources::defineCreatures() {
    auto* jellyfish = static_cast<ParticleCreaturesEffect*>(
        CreateEffectInstance("ParticleCreaturesEffect", "particle_creatures_effect", true));
    jellyfish->shader = GetShader("particlesprite_shader");
    jellyfish->sprite = GetTexture("particle2");
    auto* siphonophore = static_cast<ParticleCreatures2Effect*>(
        CreateEffectInstance("ParticleCreatures2Effect", "particle_creatures2_effect", true));
    siphonophore->shader = GetShader("particlesprite_shader");
    siphonophore->sprite = GetTexture("particle2");
}

void BrinovaResources::defineFluid() {
    auto* fluid =
        static_cast<FluidEffect*>(CreateEffectInstance("FluidEffect", "fluid_effect", true));
    fluid->addSourceShader = GetShader("add_source_shader");
    fluid->advectShader = GetShader("advect_shader");
    fluid->divergenceShader = GetShader("project_pass0_shader");
    fluid->pressureShader = GetShader("project_pass1_shader");
    fluid->gradientUShader = GetShader("project_pass2u_shader");
    fluid->gradientVShader = GetShader("project_pass2v_shader");
    fluid->boundariesShader = GetShader("boundaries_shader");
    fluid->normalizeShader = GetShader("normalize_shader");
    fluid->uSource = GetTexture("u_source");
    fluid->vSource = GetTexture("v_source");
    fluid->uSource2 = GetTexture("u_source2");
    fluid->vSource2 = GetTexture("v_source2");
    fluid->uSource3 = GetTexture("u_source3");
    fluid->vSource3 = GetTexture("v_source3");
    fluid->vaskSmall = GetTexture("vask_small");
    fluid->lumoSmall = GetTexture("lumo_small");
    fluid->orinSmall = GetTexture("orin_small");
    fluid->quilletSmall = GetTexture("quillet_small");
    fluid->korvathlogoSmall = GetTexture("korvathlogo_small");
    fluid->brinovalogoSmall = GetTexture("brinovalogo_small");
    FBO** fields[] = {&fluid->m_densities_source,
                      &fluid->m_velocities_u_source,
                      &fluid->m_velocities_v_source,
                      &fluid->m_densities,
                      &fluid->m_densities_prev,
                      &fluid->m_velocities_u,
                      &fluid->m_velocities_v,
                      &fluid->m_velocities_u_prev,
                      &fluid->m_velocities_v_prev,
                      &fluid->m_d_tmp,
                      &fluid->m_v_tmp};
    for (std::size_t i = 0; i < std::size(fields); ++i) {
        *fields[i] = GetFBO(FluidFields[i].key);
    }
    fluid->screenOpacityShader = GetShader("screen_opacity");
    fluid->staging0 = GetFBO("staging0");
    fluid->staging1 = GetFBO("staging1");
}

void BrinovaResources::defineCredits() {
    auto* credits =
        static_cast<CreditsEffect*>(CreateEffectInstance("CreditsEffect", "credits_effect", true));
    const char* names[CreditsEffect::PICTURE_COUNT] = {"vask",    "lumo",        "orin",
                                                       "quillet", "korvathlogo", "brinovalogo"};
    for (int i = 0; i < CreditsEffect::PICTURE_COUNT; ++i) {
        credits->pictures[i] = GetTexture(names[i]);
    }
    credits->shader = GetShader("screen_opacity");
    credits->background = GetFBO("staging0");
    credits->offscreen = GetFBO("staging1");
}

void BrinovaResources::defineRadialBlur() {
    auto* radial = static_cast<RadialBlurEffect*>(
        CreateEffectInstance("RadialBlurEffect", "radial_blur_effect", true));
    radial->source = GetFBO("staging0");
    radial->scene = GetFBO("offscreen0");
    radial->accumulator = GetFBO("blurx");
    radial->work = GetFBO("blury");
    radial->zoomBlendShader = GetShader("zoom_blend");
    radial->screenShader = GetShader("screen");
}
