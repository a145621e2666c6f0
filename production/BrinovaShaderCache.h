#pragma once

#include "ShaderCache.h"

#include <memory>

// Brinova's shader cache: every object of every loaded scene is lit by the production's
// standard lighting shader, through one instance they all share.
class BrinovaShaderCache : public ShaderCache {
public:
    BrinovaShaderCache();
    ~BrinovaShaderCache() override;

    // Needs the shader "standard_light" loaded.
    void init() override;

private:
    // Handed to the scene objects, which only refer to it: the cache deletes it.
    std::unique_ptr<ShaderInstance> standardLight;
};
