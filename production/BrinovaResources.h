#pragma once

#include "ResourceDefinition.h"

// Brinova's resource list: the music, the part of it played and the pictures. The shaders,
// framebuffers and effects join as the effects are written.
class BrinovaResources : public ResourceDefinition {
public:
    void DefineDemoParameters(ScreenMetrics* metrics) override;
    void DefineResouces() override;
};
