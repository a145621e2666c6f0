// The production's whole resource list loaded from the built program's folder at each
// quality level: every framebuffer at its size and format, every effect instance holding the
// very resources the pools hold under the keys it is handed.
#include "BrinovaResources.h"
#include "CreditsEffect.h"
#include "DataEffectPool.h"
#include "DataFBOPool.h"
#include "DataShaderPool.h"
#include "DataTexturePool.h"
#include "FBO.h"
#include "FluidEffect.h"
#include "GLTestSupport.h"
#include "GlowEffect.h"
#include "KVTDemosys.h"
#include "ParticleCreatures2Effect.h"
#include "ParticleCreaturesEffect.h"
#include "PostProcessEffect.h"
#include "ProgressBar.h"
#include "RadialBlurEffect.h"
#include "ResourceLoader.h"
#include "ScreenMetrics.h"
#include "Texture.h"
#include "UnderwaterEffect.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

class QuietBar : public ProgressBar {
public:
    void draw() override {}
};

GLint internalFormatOf(FBO* fbo) {
    GLint format = 0;
    glBindTexture(GL_TEXTURE_2D, FBO::getColorBuffer(fbo, 0)->getID());
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &format);
    glBindTexture(GL_TEXTURE_2D, 0);
    return format;
}

class BrinovaResourceList : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        previous = std::filesystem::current_path();
        std::filesystem::current_path(BRINOVA_BIN_DIR);
        metrics = *KVTDemosys::screenMetrics;
        KVTDemosys::screenMetrics->setResolution(1280, 720);
        KVTDemosys::screenMetrics->setQuality(GetParam());
        gltest::clearDeclarations();
        KVTDemosys::resources = &resources;
        KVTDemosys::pBar = new QuietBar;
        testing::internal::CaptureStdout();
        loaded = loader.createDataPools() && loader.loadDataFiles() && loader.createEffectObjects();
        testing::internal::GetCapturedStdout();
    }
    void TearDown() override {
        testing::internal::CaptureStdout();
        loader.dispose();
        testing::internal::GetCapturedStdout();
        KVTDemosys::resources = nullptr;
        gltest::clearDeclarations();
        *KVTDemosys::screenMetrics = metrics;
        std::filesystem::current_path(previous);
    }

    static FBO* fbo(const std::string& key) { return KVTDemosys::fboDataPool->getFBO(key); }
    static Shader* shader(const std::string& key) {
        return KVTDemosys::shaderDataPool->getShader(key);
    }
    static Texture* texture(const std::string& key) {
        return KVTDemosys::textureDataPool->getTexture(key);
    }
    template <typename T> static T* instance(const std::string& name) {
        return dynamic_cast<T*>(KVTDemosys::effectDataPool->getEffect(name));
    }

    std::filesystem::path previous;
    ScreenMetrics metrics;
    BrinovaResources resources;
    ResourceLoader loader;
    bool loaded = false;
};

TEST_P(BrinovaResourceList, FramebuffersFollowTheQualityTable) {
    ASSERT_TRUE(loaded) << loader.getErrorMessage();
    const int sides[4][2] = {{256, 128}, {512, 256}, {1024, 512}, {1280, 1024}};
    const int main = sides[GetParam()][0];
    const int half = sides[GetParam()][1];
    for (const char* key : {"offscreen0", "offscreen1", "staging0", "staging1", "glow_pre"}) {
        EXPECT_EQ(FBO::getWidth(fbo(key)), main) << key;
        EXPECT_EQ(FBO::getHeight(fbo(key)), main) << key;
        EXPECT_EQ(FBO::getDepthBuffer(fbo(key)) != nullptr, std::string(key) != "glow_pre") << key;
        EXPECT_EQ(internalFormatOf(fbo(key)), GL_RGBA) << key;
    }
    for (const char* key : {"blur_pre", "blurx", "blury"}) {
        EXPECT_EQ(FBO::getWidth(fbo(key)), half) << key;
        EXPECT_EQ(FBO::getDepthBuffer(fbo(key)), nullptr) << key;
    }
    for (const char* key : {"m_densities_source", "m_densities", "m_densities_prev", "m_d_tmp"}) {
        EXPECT_EQ(FBO::getWidth(fbo(key)), 256) << key;
        EXPECT_EQ(internalFormatOf(fbo(key)), GL_RGB16F) << key;
    }
    for (const char* key :
         {"m_velocities_u_source", "m_velocities_v_source", "m_velocities_u", "m_velocities_v",
          "m_velocities_u_prev", "m_velocities_v_prev", "m_v_tmp"}) {
        EXPECT_EQ(FBO::getWidth(fbo(key)), 64) << key;
        EXPECT_EQ(internalFormatOf(fbo(key)), GL_R16F) << key;
        EXPECT_TRUE(FBO::isValid(fbo(key))) << key;
    }
    EXPECT_EQ(KVTDemosys::fboDataPool->size(), 8 + 11);
}

TEST_P(BrinovaResourceList, EachInstanceHoldsTheResourcesItIsHanded) {
    ASSERT_TRUE(loaded) << loader.getErrorMessage();
    EXPECT_EQ(KVTDemosys::MusicFile, "brinova_final_c.mp3");
    EXPECT_EQ(KVTDemosys::ShaderList.size(), 22u);
    EXPECT_EQ(texture("threshold")->getType(), static_cast<unsigned int>(GL_TEXTURE_1D));
    EXPECT_TRUE(texture("ocean_surface_texture")->isMipmapped());

    auto* underwater = instance<UnderwaterEffect>("underwater_effect");
    ASSERT_NE(underwater, nullptr);
    EXPECT_EQ(underwater->floorShader, shader("point_light"));
    EXPECT_EQ(underwater->sceneTarget, fbo("offscreen0"));
    EXPECT_EQ(underwater->filterTarget, fbo("offscreen1"));
    EXPECT_EQ(underwater->debrisTexture, texture("puff_particle"));

    auto* post = instance<PostProcessEffect>("postprocess_effect");
    ASSERT_NE(post, nullptr);
    EXPECT_EQ(post->thresholdTexture, texture("threshold"));
    EXPECT_EQ(post->shader, shader("post_process_shader"));
    EXPECT_EQ(post->source, fbo("staging0"));

    auto* glow = instance<GlowEffect>("glow_effect");
    ASSERT_NE(glow, nullptr);
    EXPECT_EQ(glow->blurred, fbo("blur_pre"));
    EXPECT_EQ(glow->horizontal, fbo("blury"));
    EXPECT_EQ(glow->source, fbo("glow_pre"));
    EXPECT_EQ(glow->kernel, texture("gaussian_kernel"));

    for (const char* name : {"particle_creatures_effect", "particle_creatures2_effect"}) {
        Effect* creature = KVTDemosys::effectDataPool->getEffect(name);
        auto* jellyfish = dynamic_cast<ParticleCreaturesEffect*>(creature);
        auto* siphonophore = dynamic_cast<ParticleCreatures2Effect*>(creature);
        ASSERT_TRUE(jellyfish != nullptr || siphonophore != nullptr) << name;
        EXPECT_EQ(jellyfish ? jellyfish->shader : siphonophore->shader,
                  shader("particlesprite_shader"));
        EXPECT_EQ(jellyfish ? jellyfish->sprite : siphonophore->sprite, texture("particle2"));
    }

    auto* fluid = instance<FluidEffect>("fluid_effect");
    ASSERT_NE(fluid, nullptr);
    EXPECT_EQ(fluid->m_densities_source, fbo("m_densities_source"));
    EXPECT_EQ(fluid->m_v_tmp, fbo("m_v_tmp"));
    EXPECT_EQ(fluid->brinovalogoSmall, texture("brinovalogo_small"));
    EXPECT_EQ(fluid->screenOpacityShader, shader("screen_opacity"));

    EXPECT_NE(KVTDemosys::effectDataPool->getEffect("camera"), nullptr);

    auto* credits = instance<CreditsEffect>("credits_effect");
    ASSERT_NE(credits, nullptr);
    EXPECT_EQ(credits->pictures[0], texture("vask"));
    EXPECT_EQ(credits->pictures[5], texture("brinovalogo"));
    EXPECT_EQ(credits->offscreen, fbo("staging1"));

    auto* radial = instance<RadialBlurEffect>("radial_blur_effect");
    ASSERT_NE(radial, nullptr);
    EXPECT_EQ(radial->scene, fbo("offscreen0"));
    EXPECT_EQ(radial->accumulator, fbo("blurx"));
    EXPECT_EQ(radial->work, fbo("blury"));
}

INSTANTIATE_TEST_SUITE_P(Quality, BrinovaResourceList, testing::Values(0, 1, 2, 3));

} // namespace
