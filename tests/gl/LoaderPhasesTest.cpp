// The loader's phases against the registry: progress counting, shared picture files,
// effect instancing and track data, disposal, the assertions that stop at missing resources;
// and the camera controller.
#include "Animation.h"
#include "AnimationCameraController.h"
#include "DataEffectPool.h"
#include "DataTexturePool.h"
#include "Demo.h"
#include "Effect.h"
#include "GLTestSupport.h"
#include "KVTDemosys.h"
#include "Keyframe.h"
#include "PictureFiles.h"
#include "ProgressBar.h"
#include "ResourceDefinition.h"
#include "ResourceLoader.h"
#include "ScreenMetrics.h"
#include "TrackInterpolate.h"
#include "TrackSystem.h"

#include <GL/glew.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

// Counts what the loader asks of the progress bar, without drawing.
class CountingProgressBar : public ProgressBar {
public:
    void draw() override { ++draws; }
    void loadData() override { ++loads; }
    int draws = 0;
    int loads = 0;
};

class ParameterEffect : public Effect {
public:
    Effect* getInstance() override { return new ParameterEffect; }
    void registerTracks() override { addTrack("level", level); }
    void init() override { ++initialised; }
    void draw(unsigned int, unsigned int, FBO*) override {}
    TrackInterpolate* level = nullptr;
    int initialised = 0;
};

// Two texture entries share one file; two instances of one effect class, one untracked.
class SharingResources : public ResourceDefinition {
public:
    void DefineResouces() override {
        AddTexture({"first", "Shared.png", GL_TEXTURE_2D, false});
        AddTexture({"second", "Shared.png", GL_TEXTURE_2D, false});
    }
    void DefineEffects() override { AddEffect("ParameterEffect", new ParameterEffect); }
    void DefineEffectInstances() override {
        CreateEffectInstance("ParameterEffect", "tracked_one", true);
        CreateEffectInstance("ParameterEffect", "untracked_one", false);
    }
};

class LoaderPhases : public ::testing::Test {
protected:
    void SetUp() override {
        previous = std::filesystem::current_path();
        std::string folder = testpictures::freshFolder();
        std::filesystem::create_directories(folder + "resources/graphics");
        std::filesystem::create_directories(folder + "resources/tracks");
        testpictures::writeFile(
            folder + "resources/graphics/Shared.png",
            testpictures::encodePng(2, 2, 3, std::vector<unsigned char>(12, 200)));
        // A track pack with no records: every track is an empty dummy.
        testpictures::writeFile(folder + "resources/tracks/index.list", std::string(4, '\0'));
        testpictures::writeFile(folder + "resources/tracks/track.data", std::string());
        std::filesystem::current_path(folder);
        gltest::clearDeclarations();
        bar = new CountingProgressBar;
        KVTDemosys::pBar = bar;
        KVTDemosys::resources = &resources;
        loader.createDataPools();
    }
    void TearDown() override {
        testing::internal::CaptureStdout();
        loader.dispose();
        testing::internal::GetCapturedStdout();
        KVTDemosys::resources = nullptr;
        gltest::clearDeclarations();
        std::filesystem::current_path(previous);
    }

    std::filesystem::path previous;
    SharingResources resources;
    ResourceLoader loader;
    CountingProgressBar* bar = nullptr;
};

} // namespace

TEST_F(LoaderPhases, ASharedFileLoadsOnceAndAdvancesTheBarForEachEntry) {
    testing::internal::CaptureStdout();
    ASSERT_TRUE(loader.loadDataFiles()) << loader.getErrorMessage();
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(bar->getTicks(), 2 + 3) << "two textures plus three";
    EXPECT_EQ(bar->getTicksDone(), 2);
    EXPECT_EQ(bar->loads, 1);
    EXPECT_NE(KVTDemosys::textureDataPool->getTexture("first"), nullptr);
    EXPECT_EQ(KVTDemosys::textureDataPool->getTexture("second"), nullptr)
        << "the second key of a shared file is never added";
    EXPECT_EQ(out.find("Load : resources/graphics/Shared.png"),
              out.rfind("Load : resources/graphics/Shared.png"));
    EXPECT_NE(out.find("[Defining Resources]\n[Define Effects]\n"), std::string::npos);
    EXPECT_NE(KVTDemosys::shaderCache, nullptr) << "the default shader cache is installed";
}

TEST_F(LoaderPhases, OnlyTrackedInstancesGetTrackGroupsAndEveryInstanceIsInitialised) {
    testing::internal::CaptureStdout();
    ASSERT_TRUE(loader.loadDataFiles());
    ASSERT_TRUE(loader.createEffectObjects());
    ASSERT_TRUE(loader.createTrackData()) << loader.getErrorMessage();
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(KVTDemosys::tracks->size(), 1);
    EXPECT_NE(KVTDemosys::tracks->getTrackGroupByName("tracked_one"), nullptr);
    EXPECT_EQ(KVTDemosys::tracks->getRowRate(), 20);
    auto* tracked =
        static_cast<ParameterEffect*>(KVTDemosys::effectDataPool->getEffect("tracked_one"));
    auto* untracked =
        static_cast<ParameterEffect*>(KVTDemosys::effectDataPool->getEffect("untracked_one"));
    EXPECT_TRUE(tracked->isTracked());
    EXPECT_FALSE(untracked->isTracked());
    EXPECT_NE(tracked->level, untracked->level) << "instances have their own tracks";
    EXPECT_EQ(tracked->initialised, 1);
    EXPECT_EQ(untracked->initialised, 1);
    EXPECT_NE(out.find("[Initializing Effect Instances]\n-> Initializing tracked_one\n"),
              std::string::npos)
        << out;
    delete untracked->level;
}

TEST_F(LoaderPhases, DisposalDeletesEverythingInOrder) {
    testing::internal::CaptureStdout();
    ASSERT_TRUE(loader.loadDataFiles());
    loader.dispose();
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("[Deleting Pools]\n[Dispose objectPool]\n[Dispose texturePool]\n"),
              std::string::npos)
        << out;
    EXPECT_EQ(KVTDemosys::pBar, nullptr);
    EXPECT_EQ(KVTDemosys::textureDataPool, nullptr);
    EXPECT_EQ(KVTDemosys::shaderCache, nullptr);
    loader.createDataPools();
}

TEST(LoaderProgress, AnEmptyListStillCountsThreeSteps) {
    gltest::clearDeclarations();
    ResourceDefinition nothing;
    KVTDemosys::resources = &nothing;
    auto* bar = new CountingProgressBar;
    KVTDemosys::pBar = bar;
    ResourceLoader loader;
    testing::internal::CaptureStdout();
    loader.createDataPools();
    EXPECT_TRUE(loader.loadDataFiles());
    EXPECT_EQ(bar->getTicks(), 3);
    loader.dispose();
    testing::internal::GetCapturedStdout();
    KVTDemosys::resources = nullptr;
}

// A definition that requires one extension the driver has and one it cannot have.
class DemandingResources : public ResourceDefinition {
public:
    void DefineResouces() override {
        RequireExtension("GL_ARB_texture_float");
        RequireExtension("GL_BRINOVA_imaginary_feature");
    }
};

TEST_F(LoaderPhases, AMissingRequiredExtensionStopsLoadingAndIsNamed) {
    DemandingResources demanding;
    KVTDemosys::resources = &demanding;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(loader.loadDataFiles());
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(loader.getErrorMessage(),
              "Error: Your OpenGL implementation is missing the following extensions :\n"
              " - GL_BRINOVA_imaginary_feature\n");
}

TEST(ResourceDefinitionDeathTest, MissingResourcesStopWithTheirAssertions) {
    ResourceLoader loader;
    testing::internal::CaptureStdout();
    loader.createDataPools();
    testing::internal::GetCapturedStdout();
    ResourceDefinition definition;
    EXPECT_DEATH(definition.CreateEffectInstance("NoSuchEffect", "x", true),
                 "demosys/ResourceDefinition.*CreateEffectInstance.*effect != NULL");
    EXPECT_DEATH(definition.GetTexture("missing"), "tex!=NULL");
    // An effect's look-ups name their fixed lines.
    Effect effect;
    EXPECT_DEATH(effect.GetShader("x"), "demosys/Effect, GetShader \\(line 54\\): shader != NULL");
    EXPECT_DEATH(effect.GetTexture("x"), "demosys/Effect, GetTexture \\(line 61\\): tex!=NULL");
    EXPECT_DEATH(effect.GetFBO("x"), "demosys/Effect, GetFBO \\(line 68\\): fbo != NULL");
    EXPECT_DEATH(effect.GetScene("x"), "demosys/Effect, GetScene \\(line 75\\): scene != NULL");
    EXPECT_DEATH(effect.GetBinary("x"), "demosys/Effect, GetBinary \\(line 82\\): bin != NULL");
    EXPECT_DEATH(effect.GetAnimation("x"),
                 "demosys/Effect, GetAnimation \\(line 89\\): anim != NULL");
    EXPECT_DEATH(effect.GetEffect("x"), "demosys/Effect, GetEffect \\(line 96\\): effect != NULL");
    Demo demo(0, nullptr);
    ScreenMetrics metrics;
    EXPECT_DEATH(demo.load(&metrics, 0),
                 "demosys/Demo, load \\(line 37\\): KVTDemosys::resources != NULL");
    testing::internal::CaptureStdout();
    loader.dispose();
    testing::internal::GetCapturedStdout();
}

TEST(AnimationCameraController, FliesTheCameraWithinItsSpanOnly) {
    Animation path;
    path.addKeyframe(new Keyframe(Vector<float, 3>(0, 0, 0), 0.0f, 0.0f));
    path.addKeyframe(new Keyframe(Vector<float, 3>(10, 0, 0), 20.0f, 40.0f));
    std::unique_ptr<AnimationCameraController> controller(path.getCameraController());
    controller->setStartTime(KVTTime(0, 1, 0));
    controller->setEndTime(KVTTime(0, 3, 0));
    KVTDemosys::camera.reset();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    controller->animate(500);
    EXPECT_EQ(KVTDemosys::camera.getPosition().x(), 0.0f) << "before the span nothing moves";
    controller->animate(2000);
    EXPECT_FLOAT_EQ(KVTDemosys::camera.getPosition().x(), 5.0f);
    EXPECT_FLOAT_EQ(KVTDemosys::camera.getPitch(), 10.0f);
    EXPECT_FLOAT_EQ(KVTDemosys::camera.getHeading(), 20.0f);
    float modelView[16];
    glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
    EXPECT_NE(modelView[12], 0.0f) << "the camera's matrices were loaded";
    controller->animate(3500);
    EXPECT_FLOAT_EQ(KVTDemosys::camera.getPosition().x(), 5.0f) << "after the span nothing moves";
}
