#include "ShaderCache.h"
#include "DataShaderPool.h"
#include "DataTexturePool.h"
#include "KVTDemosys.h"
#include "ShaderInstance.h"

#include <gtest/gtest.h>

// Lookups that fail are programming errors: each stops the program naming the engine source,
// the function, its fixed line and the condition.
TEST(ShaderCacheDeathTest, LookupFailuresStopWithTheirAssertions) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    ShaderCache cache;
    cache.addShaderInstance("lit", new ShaderInstance);
    EXPECT_TRUE(cache.shaderInstanceExists("lit"));
    EXPECT_FALSE(cache.shaderInstanceExists("unlit"));
    EXPECT_DEATH(cache.addShaderInstance("lit", nullptr),
                 "demosys/ShaderCache, addShaderInstance \\(line 50\\): 0");
    EXPECT_DEATH(cache.getShaderInstance("unlit"),
                 "demosys/ShaderCache, getShaderInstance \\(line 40\\): 0");

    DataShaderPool shaders;
    DataTexturePool textures;
    KVTDemosys::shaderDataPool = &shaders;
    KVTDemosys::textureDataPool = &textures;
    EXPECT_DEATH(cache.GetShader("standard_light"), "GetShader \\(line 65\\): shader != NULL");
    EXPECT_DEATH(cache.GetTexture("logo"), "GetTexture \\(line 72\\): tex!=NULL");
    KVTDemosys::shaderDataPool = nullptr;
    KVTDemosys::textureDataPool = nullptr;
}
