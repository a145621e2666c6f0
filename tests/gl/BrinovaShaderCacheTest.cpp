// The production's shader cache hands the standard lighting to every object of every scene.
#include "BrinovaShaderCache.h"
#include "DataObjectPool.h"
#include "DataShaderPool.h"
#include "KVTDemosys.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "Shader.h"
#include "ShaderInstance.h"

#include <gtest/gtest.h>

namespace {

class BrinovaShaderCacheTest : public testing::Test {
protected:
    void SetUp() override {
        testing::internal::CaptureStdout();
        KVTDemosys::shaderDataPool = &shaders;
        KVTDemosys::sceneDataPool = &scenes;
        shaders.addShader("standard_light", new Shader);
    }
    void TearDown() override {
        KVTDemosys::shaderDataPool = nullptr;
        KVTDemosys::sceneDataPool = nullptr;
        testing::internal::GetCapturedStdout();
    }

    static KVTScene* sceneOf(int objectCount) {
        auto* scene = new KVTScene;
        for (int i = 0; i < objectCount; ++i) {
            scene->AddObject(new KVTObject(static_cast<unsigned int>(i)));
        }
        return scene;
    }

    DataShaderPool shaders;
    DataObjectPool scenes;
};

TEST_F(BrinovaShaderCacheTest, EveryObjectOfEverySceneSharesTheStandardLight) {
    KVTScene* first = sceneOf(3);
    KVTScene* second = sceneOf(2);
    scenes.addObject("first", first);
    scenes.addObject("empty", sceneOf(0));
    scenes.addObject("second", second);
    BrinovaShaderCache cache;
    cache.init();
    ShaderInstance* shared = first->getObject(0)->getShaderInstance();
    ASSERT_NE(shared, nullptr);
    EXPECT_EQ(shared->getShader(), shaders.getShader("standard_light"));
    for (KVTScene* scene : {first, second}) {
        for (int i = 0; i < scene->countObjects(); ++i) {
            EXPECT_EQ(scene->getObject(i)->getShaderInstance(), shared);
        }
    }
    EXPECT_FALSE(cache.shaderInstanceExists("standard_light")) << "not a named instance";
}

} // namespace
