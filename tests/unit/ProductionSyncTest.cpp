// The production's sync text read against the tracks its effects really declare, so a
// renamed track or instance fails here rather than leaving a parameter at 0 in the demo.
#include "CameraLensEffect.h"
#include "CreditsEffect.h"
#include "FluidEffect.h"
#include "GlowEffect.h"
#include "ParticleCreatures2Effect.h"
#include "ParticleCreaturesEffect.h"
#include "PostProcessEffect.h"
#include "RadialBlurEffect.h"
#include "SyncText.h"
#include "TrackInterpolate.h"
#include "UnderwaterEffect.h"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <sstream>
#include <utility>
#include <vector>

TEST(ProductionSync, EveryInstanceAndTrackItNamesExists) {
    std::vector<std::pair<const char*, std::unique_ptr<Effect>>> instances;
    instances.emplace_back("underwater_effect", std::make_unique<UnderwaterEffect>());
    instances.emplace_back("postprocess_effect", std::make_unique<PostProcessEffect>());
    instances.emplace_back("glow_effect", std::make_unique<GlowEffect>());
    instances.emplace_back("particle_creatures_effect",
                           std::make_unique<ParticleCreaturesEffect>());
    instances.emplace_back("particle_creatures2_effect",
                           std::make_unique<ParticleCreatures2Effect>());
    instances.emplace_back("fluid_effect", std::make_unique<FluidEffect>());
    instances.emplace_back("camera", std::make_unique<CameraLensEffect>());
    instances.emplace_back("credits_effect", std::make_unique<CreditsEffect>());
    instances.emplace_back("radial_blur_effect", std::make_unique<RadialBlurEffect>());

    synctext::Schema schema;
    std::vector<std::unique_ptr<TrackInterpolate>> tracks;
    for (auto& [name, effect] : instances) {
        effect->registerTracks();
        std::set<std::string>& names = schema[name];
        for (int i = 0; i < effect->getTrackCount(); ++i) {
            tracks.emplace_back(effect->getTrackPointer(i));
            names.insert(tracks.back()->getName());
        }
    }

    std::ifstream file(PRODUCTION_SYNC);
    ASSERT_TRUE(file) << PRODUCTION_SYNC;
    std::stringstream text;
    text << file.rdbuf();
    synctext::Document document;
    std::string error;
    EXPECT_TRUE(synctext::parse(text.str(), PRODUCTION_SYNC, &schema, document, error)) << error;
    EXPECT_EQ(document.effects.size(), instances.size()) << "every instance is choreographed";
}
