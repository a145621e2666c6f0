#include "ShaderCache.h"
#include "DataShaderPool.h"
#include "DataTexturePool.h"
#include "KVTDemosys.h"
#include "ShaderInstance.h"

#include <gtest/gtest.h>

// Lookups that fail are programming errors: each stops the program naming the engine source,
// the function and the condition.
TEST(ShaderCacheDeathTest, LookupFailuresStopWithTheirAssertions) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    ShaderCache cache;
    cache.addShaderInstance("lit", new ShaderInstance);
    EXPECT_TRUE(cache.shaderInstanceExists("lit"));
    EXPECT_FALSE(cache.shaderInstanceExists("unlit"));
    EXPECT_DEATH(cache.addShaderInstance("lit", nullptr),
                 "demosys/ShaderCache, addShaderInstance \\(line [0-9]+\\): 0");
    EXPECT_DEATH(cache.getShaderInstance("unlit"),
                 "demosys/ShaderCache, getShaderInstance \\(line [0-9]+\\): 0");

    DataShaderPool shaders;
    DataTexturePool textures;
    KVTDemosys::shaderDataPool = &shaders;
    KVTDemosys::textureDataPool = &textures;
    EXPECT_DEATH(cache.GetShader("standard_light"), "GetShader .*: shader != NULL");
    EXPECT_DEATH(cache.GetTexture("logo"), "GetTexture .*: tex!=NULL");
    KVTDemosys::shaderDataPool = nullptr;
    KVTDemosys::textureDataPool = nullptr;
}
