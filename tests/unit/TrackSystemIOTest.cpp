#include "TrackSystemIO.h"
#include "File.h"
#include "KVTDemosys.h"
#include "RecordingEffect.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace fs = std::filesystem;

namespace {

// An effect with two parameter tracks, as a production's effect declares them.
class FadeEffect : public RecordingEffect {
public:
    FadeEffect(std::string name, std::vector<std::string>* log) : RecordingEffect(name, log) {}
    void registerTracks() override {
        addTrack("alpha", alpha);
        addTrack("speed", speed);
    }
    TrackInterpolate* alpha = nullptr;
    TrackInterpolate* speed = nullptr;
};

std::string readAll(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeAll(const fs::path& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

class TrackSystemIOTest : public ::testing::Test {
protected:
    void SetUp() override {
        dir = fs::path(::testing::TempDir()) /
              ("brinova_tracks_" +
               std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(dir);
        fs::create_directories(dir);
        base = dir.string() + "/";
    }
    void TearDown() override {
        KVTDemosys::tracks = nullptr;
        fs::remove_all(dir);
    }

    // Two effects, "fade" keyed fully and "glow" with only an interval, as an author saves.
    std::unique_ptr<TrackSystem> authoredSystem() {
        auto system = std::make_unique<TrackSystem>();
        auto* fade = new TrackGroup("fade");
        auto* fadeStartStop = new TrackStartStop(1);
        fadeStartStop->insertInterval(new TrackStartStopKeyFrame(10, TrackKeyFrame::START),
                                      new TrackStartStopKeyFrame(50, TrackKeyFrame::STOP));
        fade->setStartStopTrack(fadeStartStop);
        auto* alpha = new TrackInterpolate("alpha");
        alpha->addKeyframe(new TrackKeyFrameInterpolate(10, TrackInterpolate::EASE_IN, 0.0f));
        alpha->addKeyframe(new TrackKeyFrameInterpolate(30, TrackInterpolate::LINEAR, 0.75f));
        fade->addInterpolateTrack(alpha);
        fade->addInterpolateTrack(new TrackInterpolate("speed"));
        auto* glow = new TrackGroup("glow");
        auto* glowStartStop = new TrackStartStop(0);
        glowStartStop->insertInterval(new TrackStartStopKeyFrame(0, TrackKeyFrame::START),
                                      new TrackStartStopKeyFrame(5, TrackKeyFrame::STOP));
        glow->setStartStopTrack(glowStartStop);
        glow->addInterpolateTrack(new TrackInterpolate("alpha"));
        glow->addInterpolateTrack(new TrackInterpolate("speed"));
        system->addTrackGroup(fade);
        system->addTrackGroup(glow);
        return system;
    }

    std::unique_ptr<TrackSystem> loadPackFor(TrackSystemIO& io,
                                             std::vector<std::string> instanceNames) {
        names = instanceNames;
        effectObjects.clear();
        effects.clear();
        for (const std::string& name : names) {
            effectObjects.push_back(std::make_unique<FadeEffect>(name, &log));
            effectObjects.back()->registerTracks();
            effects.push_back(effectObjects.back().get());
        }
        return std::unique_ptr<TrackSystem>(io.loadPack(names, effects));
    }

    fs::path dir;
    std::string base;
    std::vector<std::string> log;
    std::vector<std::string> names;
    std::vector<std::unique_ptr<FadeEffect>> effectObjects;
    std::vector<Effect*> effects;
};

} // namespace

TEST_F(TrackSystemIOTest, PackRoundTripRestoresIntervalsKeysAndOrder) {
    TrackSystemIO io(base);
    ASSERT_TRUE(io.savePack(authoredSystem().get()));

    testing::internal::CaptureStdout();
    auto loaded = loadPackFor(io, {"fade", "glow"});
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Loading 'fade.track' (1)\n"), std::string::npos);
    EXPECT_NE(out.find("Loading 'fade.alpha'\n"), std::string::npos);

    ASSERT_EQ(loaded->size(), 2);
    EXPECT_EQ(loaded->getSortedTrackGroup(0)->getName(), "glow");
    EXPECT_EQ(loaded->getSortedTrackGroup(1)->getName(), "fade");
    TrackGroup* fade = loaded->getTrackGroupByName("fade");
    EXPECT_EQ(fade->effect, effects[0]);
    EXPECT_TRUE(fade->isActive(0, 50));
    EXPECT_FALSE(fade->isActive(0, 51));
    KVTDemosys::tracks = loaded.get();
    EXPECT_FLOAT_EQ(effectObjects[0]->alpha->getValue(1500), 0.75f);
    EXPECT_EQ(effectObjects[0]->alpha->getKeyframe(10) != nullptr, true);
    EXPECT_EQ(static_cast<TrackKeyFrameInterpolate*>(effectObjects[0]->alpha->getKeyframe(10))
                  ->interpolation,
              TrackInterpolate::EASE_IN);
    EXPECT_EQ(fade->getInterpolateTrackByName("alpha"), effectObjects[0]->alpha);
    EXPECT_EQ(effectObjects[0]->speed->size(), 0u);
    EXPECT_EQ(loaded->countAllTracks(), 6);
    EXPECT_TRUE(io.getErrors().empty());

    TrackSystemIO again(dir.string() + "/again/");
    fs::create_directories(dir / "again");
    ASSERT_TRUE(again.savePack(loaded.get()));
    ASSERT_TRUE(io.savePack(authoredSystem().get()));
    EXPECT_EQ(readAll(dir / "again" / "track.data"), readAll(dir / "track.data"));
    EXPECT_EQ(readAll(dir / "again" / "index.list"), readAll(dir / "index.list"));
}

TEST_F(TrackSystemIOTest, IndexCountsGroupsAndTheirTracks) {
    TrackSystemIO io(base);
    ASSERT_TRUE(io.savePack(authoredSystem().get()));
    File index(base + "index.list", File::READ);
    EXPECT_EQ(index.readInt(), 6);
    EXPECT_EQ(index.readString(), "fade.track");
    EXPECT_EQ(index.readInt(), 0);
    EXPECT_EQ(index.readString(), "fade.alpha.track");
    EXPECT_EQ(index.readInt(), 8 + 2 * 8 + 1);
}

TEST_F(TrackSystemIOTest, MissingRecordsBecomeDummiesThatNeverRun) {
    TrackSystemIO io(base);
    ASSERT_TRUE(io.savePack(authoredSystem().get()));
    io.setVerbose(true);
    testing::internal::CaptureStdout();
    auto loaded = loadPackFor(io, {"fade", "newcomer"});
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Track 'newcomer' do not exit. Creating dummy.\n"), std::string::npos);
    EXPECT_NE(out.find("-> 'newcomer.alpha.track' do not exit. Keeping dummy.\n"),
              std::string::npos);
    EXPECT_EQ(out.find("-> 'fade.speed.track' do not exit."), std::string::npos)
        << "an empty track saved in the pack is not missing";
}

TEST_F(TrackSystemIOTest, ADummyGroupTakesTheFirstPosition) {
    TrackSystemIO io(base);
    ASSERT_TRUE(io.savePack(authoredSystem().get()));
    auto loaded = loadPackFor(io, {"fade", "newcomer"});
    TrackGroup* newcomer = loaded->getTrackGroupByName("newcomer");
    EXPECT_EQ(loaded->getSortedTrackGroup(0), newcomer);
    EXPECT_EQ(newcomer->getStartStopTrack()->priority, 0);
    EXPECT_EQ(newcomer->getStartStopTrack()->size(), 0u);
    loaded->processSystem(0, 0, 0);
    EXPECT_FALSE(loaded->isEffectActive("newcomer"));
}

TEST_F(TrackSystemIOTest, ScreenTargetsAreSavedEmptyAndReadBackAsScreen) {
    TrackSystemIO io(base);
    ASSERT_TRUE(io.savePack(authoredSystem().get()));
    io.setVerbose(true);
    testing::internal::CaptureStdout();
    auto loaded = loadPackFor(io, {"glow"});
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Raw string = 'Object'\n"), std::string::npos);
    EXPECT_NE(out.find("keyframe 0 : 1, screen\n"), std::string::npos);
    auto* start = static_cast<TrackStartStopKeyFrame*>(
        loaded->getTrackGroupByName("glow")->getStartStopTrack()->getKeyframe(0));
    EXPECT_EQ(start->target, "screen");
    EXPECT_EQ(start->fbo, nullptr);
}

TEST_F(TrackSystemIOTest, LooseFilesRoundTrip) {
    TrackSystemIO io(dir.string());
    ASSERT_TRUE(io.save(authoredSystem().get()));
    EXPECT_TRUE(fs::exists(dir / "fade.track"));
    EXPECT_TRUE(fs::exists(dir / "fade.alpha.track"));
    names = {"fade"};
    auto effect = std::make_unique<FadeEffect>("fade", &log);
    effect->registerTracks();
    effects = {effect.get()};
    std::unique_ptr<TrackSystem> loaded(io.load(names, effects));
    EXPECT_TRUE(loaded->getTrackGroupByName("fade")->isActive(0, 10));
    EXPECT_EQ(effect->alpha->size(), 2u);
}

TEST_F(TrackSystemIOTest, UnreadablePackGivesEveryGroupADummy) {
    TrackSystemIO io(base);
    auto loaded = loadPackFor(io, {"fade"});
    EXPECT_EQ(loaded->getTrackGroupByName("fade")->getStartStopTrack()->size(), 0u);
    EXPECT_EQ(effectObjects[0]->alpha->size(), 0u);
}

TEST_F(TrackSystemIOTest, CorruptRecordsAreReportedByFileAndBecomeDummies) {
    TrackSystemIO writer(base);
    ASSERT_TRUE(writer.savePack(authoredSystem().get()));
    std::string data = readAll(dir / "track.data");

    // Claim two billion keyframes in fade's start/stop record.
    std::string huge = data;
    huge.replace(4, 4, std::string("\xFF\xFF\xFF\x7F", 4));
    writeAll(dir / "track.data", huge);
    TrackSystemIO io(base);
    testing::internal::CaptureStdout();
    auto loaded = loadPackFor(io, {"fade", "glow"});
    std::string out = testing::internal::GetCapturedStdout();
    ASSERT_EQ(io.getErrors().size(), 1u);
    EXPECT_NE(io.getErrors()[0].find(base + "track.data"), std::string::npos);
    EXPECT_NE(io.getErrors()[0].find("fade.track"), std::string::npos);
    EXPECT_EQ(loaded->getTrackGroupByName("fade")->getStartStopTrack()->size(), 0u);
    EXPECT_EQ(loaded->getTrackGroupByName("glow")->getStartStopTrack()->size(), 2u)
        << "the other records still load";

    // Cut the data inside glow's start/stop record; its two parameter records are lost.
    writeAll(dir / "track.data", data.substr(0, data.size() - 12));
    TrackSystemIO truncated(base);
    testing::internal::CaptureStdout();
    auto cut = loadPackFor(truncated, {"fade", "glow"});
    testing::internal::GetCapturedStdout();
    ASSERT_EQ(truncated.getErrors().size(), 3u);
    EXPECT_NE(truncated.getErrors()[0].find("glow.track"), std::string::npos);
    EXPECT_NE(truncated.getErrors()[2].find("glow.speed.track"), std::string::npos);
    EXPECT_EQ(cut->getTrackGroupByName("fade")->getStartStopTrack()->size(), 2u);
    EXPECT_EQ(cut->getTrackGroupByName("glow")->getStartStopTrack()->size(), 0u);
}

TEST_F(TrackSystemIOTest, CorruptIndexIsReportedAndIgnored) {
    TrackSystemIO writer(base);
    ASSERT_TRUE(writer.savePack(authoredSystem().get()));
    writeAll(dir / "index.list", std::string("\x40\x00\x00\x00"
                                             "fade.track\0",
                                             15));
    TrackSystemIO io(base);
    testing::internal::CaptureStdout();
    auto loaded = loadPackFor(io, {"fade"});
    testing::internal::GetCapturedStdout();
    ASSERT_EQ(io.getErrors().size(), 1u);
    EXPECT_NE(io.getErrors()[0].find("index.list"), std::string::npos);
    EXPECT_EQ(loaded->getTrackGroupByName("fade")->getStartStopTrack()->size(), 0u);

    std::string index = readAll(dir / "index.list");
    writeAll(dir / "index.list", std::string("\x01\x00\x00\x00"
                                             "fade.track\0\x00\x00\x00\x7F",
                                             19));
    TrackSystemIO farOffset(base);
    testing::internal::CaptureStdout();
    loadPackFor(farOffset, {"fade"});
    testing::internal::GetCapturedStdout();
    ASSERT_EQ(farOffset.getErrors().size(), 1u);
    EXPECT_NE(farOffset.getErrors()[0].find("starts past the end"), std::string::npos);
}

TEST_F(TrackSystemIOTest, PropertiesKeepEnabledFlagsAndReadUnknownGroupsOutOfStep) {
    fs::path previous = fs::current_path();
    fs::current_path(dir);
    fs::create_directories("resources/tracks");
    auto system = authoredSystem();
    system->getTrackGroupByName("glow")->getStartStopTrack()->enabled = false;
    KVTDemosys::tracks = system.get();
    TrackSystemIO io("resources/tracks/");
    testing::internal::CaptureStdout();
    ASSERT_TRUE(io.saveStateData());
    system->getTrackGroupByName("glow")->getStartStopTrack()->enabled = true;
    io.loadStateData();
    std::string out = testing::internal::GetCapturedStdout();
    EXPECT_NE(out.find("Saving track property for fade\n"), std::string::npos);
    EXPECT_NE(out.find("Loading track property for glow\nFlag : 1\n"), std::string::npos);
    EXPECT_FALSE(system->getTrackGroupByName("glow")->getStartStopTrack()->enabled);
    EXPECT_TRUE(system->getTrackGroupByName("fade")->getStartStopTrack()->enabled);

    auto renamed = std::make_unique<TrackSystem>();
    auto* glow = new TrackGroup("glow");
    glow->setStartStopTrack(new TrackStartStop(0));
    renamed->addTrackGroup(glow);
    KVTDemosys::tracks = renamed.get();
    testing::internal::CaptureStdout();
    io.loadStateData();
    out = testing::internal::GetCapturedStdout();
    EXPECT_EQ(out.find("Flag :"), std::string::npos)
        << "after the unknown 'fade' the flag bytes are read as the next name";
    EXPECT_TRUE(glow->getStartStopTrack()->enabled);
    fs::current_path(previous);
}
