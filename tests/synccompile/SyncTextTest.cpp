#include "SyncText.h"
#include "RocketProject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

const char* const Example = R"(# a small production
tempo 120
end 02:30:850
effect glow_effect
priority 4
start 00:01:000 glow_pre   # row 20
stop 3.1
start 100
stop 02:00:000
track amount
0 0.5 ease-out
2.1 1.25 ease-in
00:10:000 -2 step
track spread
1.1 3 ramp
effect post
priority 1
track brightness
5 1
)";

std::string parseError(const std::string& text, const synctext::Schema* schema = nullptr) {
    synctext::Document document;
    std::string error;
    EXPECT_FALSE(synctext::parse(text, "demo.sync", schema, document, error)) << text;
    return error;
}

std::string readBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Named after the running test too, as ctest runs the tests of this file side by side.
fs::path freshFolder(const std::string& name) {
    fs::path folder =
        fs::path(::testing::TempDir()) /
        ("brinova_sync_" +
         std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()) + "_" + name);
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

} // namespace

TEST(SyncText, ReadsEffectsIntervalsAndKeyframesInEveryTimeForm) {
    synctext::Document document;
    std::string error;
    ASSERT_TRUE(synctext::parse(Example, "demo.sync", nullptr, document, error)) << error;
    ASSERT_EQ(document.effects.size(), 2u);
    const synctext::Effect& glow = document.effects[0];
    EXPECT_EQ(glow.priority, 4);
    ASSERT_EQ(glow.intervals.size(), 2u);
    EXPECT_EQ(glow.intervals[0].start, 20u);
    EXPECT_EQ(glow.intervals[0].stop, 80u) << "bar 3 starts after two bars of 40 rows";
    EXPECT_EQ(glow.intervals[0].target, "glow_pre");
    EXPECT_EQ(glow.intervals[1].target, "screen");
    EXPECT_EQ(glow.intervals[1].stop, 2400u);
    ASSERT_EQ(glow.tracks.size(), 2u);
    const synctext::Track& amount = glow.tracks[0];
    ASSERT_EQ(amount.keyframes.size(), 3u);
    EXPECT_EQ(amount.keyframes[0].interpolation, 1);
    EXPECT_EQ(amount.keyframes[1].row, 40u);
    EXPECT_EQ(amount.keyframes[1].interpolation, 2);
    EXPECT_EQ(amount.keyframes[2].row, 200u);
    EXPECT_EQ(amount.keyframes[2].value, -2.0f);
    EXPECT_EQ(amount.keyframes[2].interpolation, 3);
    EXPECT_EQ(glow.tracks[1].keyframes[0].interpolation, 4);
    EXPECT_EQ(document.effects[1].tracks[0].keyframes[0].interpolation, 0);
}

TEST(SyncText, BarsFollowTheTempo) {
    synctext::Document document;
    std::string error;
    ASSERT_TRUE(
        synctext::parse("tempo 90\neffect e\ntrack t\n2.1 1\n", "x", nullptr, document, error));
    EXPECT_EQ(document.effects[0].tracks[0].keyframes[0].row, 53u) << "4 beats of 13.33 rows";
}

TEST(SyncText, EveryRepeatsItsKeyframesUpToItsEnd) {
    synctext::Document document;
    std::string error;
    ASSERT_TRUE(synctext::parse("effect e\ntrack t\n1.1 0\nevery 1 beat 2.1 3.1\n+0 1.5 ease-out"
                                "\n+0.5 1\nevery 1 bar 3.1 5.1\n+1 2\n5.1 0\n",
                                "x", nullptr, document, error))
        << error;
    std::vector<unsigned int> rows;
    std::vector<float> values;
    for (const synctext::Keyframe& key : document.effects[0].tracks[0].keyframes) {
        rows.push_back(key.row);
        values.push_back(key.value);
    }
    EXPECT_EQ(rows, (std::vector<unsigned int>{0, 40, 45, 50, 55, 60, 65, 70, 75, 90, 130, 160}));
    EXPECT_EQ(values[1], 1.5f);
    EXPECT_EQ(document.effects[0].tracks[0].keyframes[1].interpolation, 1);
    EXPECT_EQ(values[2], 1.0f);
    EXPECT_EQ(values[9], 2.0f);

    EXPECT_EQ(parseError("effect e\ntrack t\nevery 1 beat 1.1 2.1\n+0 1\n+1 2\n"),
              "demo.sync:5: offset '+1' does not fit in one repetition");
    EXPECT_EQ(parseError("effect e\ntrack t\n+0 1\n"), "demo.sync:3: '+0' outside an 'every'");
    EXPECT_EQ(parseError("effect e\ntrack t\nevery 2 beat 1.1 2.1\n+0 1\n1.3 4\n"),
              "demo.sync:5: keyframe at row 20 is not after the previous one at row 20");
}

TEST(SyncText, ErrorsNameTheFileLineAndReason) {
    EXPECT_EQ(parseError("effect e\ntrack t\n0 1 smoothly\n"),
              "demo.sync:3: unknown interpolation 'smoothly' (use linear, ease-out, ease-in, "
              "step, ramp or smooth)");
    EXPECT_EQ(parseError("effect e\nstart 0\nstop 10\nstart 10\nstop 20\n"),
              "demo.sync:4: interval overlaps the previous one, which stops at row 10");
    EXPECT_EQ(parseError("effect e\nstart 0\n\neffect f\n"),
              "demo.sync:4: the interval started at line 2 is never stopped");
    EXPECT_EQ(parseError("effect e\nstart 0\n"),
              "demo.sync:2: the interval started at line 2 is never stopped");
    EXPECT_EQ(parseError("effect e\nstart 5\nstart 9\n"),
              "demo.sync:3: the interval started at line 2 is not stopped before this start");
    EXPECT_EQ(parseError("effect e\ntrack t\n10 1\n# comment\n10 2\n"),
              "demo.sync:5: keyframe at row 10 is not after the previous one at row 10");
    EXPECT_EQ(parseError("end 00:10:000\neffect e\nstart 0\nstop 201\n"),
              "demo.sync:4: time '201' lies past the end 00:10:000");
    EXPECT_EQ(parseError("effect e\nwobble 3\n"), "demo.sync:2: unknown keyword 'wobble'");
    EXPECT_EQ(parseError("track t\n"), "demo.sync:1: 'track' outside an effect");
    EXPECT_EQ(parseError("effect e\n5 1\n"), "demo.sync:2: keyframe outside a track");
    EXPECT_EQ(parseError("effect e\ntrack t\n1:2 1\n"), "demo.sync:3: time '1:2' is not mm:ss:ms");
    EXPECT_EQ(parseError("effect e\ntrack t\n3.5 1\n"),
              "demo.sync:3: time '3.5' is not bar.beat (bars from 1, beats 1 to 4)");
    EXPECT_EQ(parseError("effect e\ntrack t\n3 x\n"), "demo.sync:3: value 'x' is not a number");
    EXPECT_EQ(parseError("effect e\nstop 4\n"), "demo.sync:2: 'stop' without a started interval");
    EXPECT_EQ(parseError("effect e\nstart 4\nstop 4\n"),
              "demo.sync:3: interval stops at row 4, not after its start at row 4");
    EXPECT_EQ(parseError("effect a.b\n"),
              "demo.sync:1: effect name 'a.b' must be non-empty and hold no '.'");
    EXPECT_EQ(parseError("effect e\neffect e\n"), "demo.sync:2: effect 'e' is declared twice");
    EXPECT_EQ(parseError("effect e\npriority\n"),
              "demo.sync:2: 'priority' takes 1 argument, found 0");
}

TEST(SyncText, SchemaRejectsUnknownInstancesAndTracks) {
    synctext::Schema schema;
    std::string error;
    ASSERT_TRUE(synctext::parseSchema("glow_effect: amount spread\npost: brightness\n",
                                      "effects.list", schema, error));
    synctext::Document document;
    EXPECT_TRUE(synctext::parse(Example, "demo.sync", &schema, document, error)) << error;
    EXPECT_EQ(parseError("effect fluid\n", &schema),
              "demo.sync:1: unknown effect instance 'fluid'");
    EXPECT_EQ(parseError("effect post\ntrack contrast\n", &schema),
              "demo.sync:2: effect 'post' has no track 'contrast'");
    EXPECT_FALSE(synctext::parseSchema("post brightness\n", "effects.list", schema, error));
    EXPECT_EQ(error, "effects.list:1: expected 'instance: track ...', found 'post'");
}

// Writes the document as a pack, decodes it, formats it at the tempo and compiles the text
// again; the second pack must equal the first byte for byte. Returns the text.
std::string roundTrip(const synctext::Document& source, float tempo) {
    std::string error;
    fs::path first = freshFolder("first");
    fs::path second = freshFolder("second");
    EXPECT_TRUE(synctext::writePack(source, first.string(), error)) << error;
    synctext::Document decoded;
    EXPECT_TRUE(synctext::readPack(first.string(), decoded, error)) << error;
    const std::string text = synctext::format(decoded, tempo);
    synctext::Document reparsed;
    EXPECT_TRUE(synctext::parse(text, "decoded.sync", nullptr, reparsed, error)) << error << text;
    EXPECT_TRUE(synctext::writePack(reparsed, second.string(), error)) << error;
    EXPECT_EQ(readBytes(first / "index.list"), readBytes(second / "index.list")) << text;
    EXPECT_EQ(readBytes(first / "track.data"), readBytes(second / "track.data")) << text;
    EXPECT_EQ(synctext::format(reparsed, tempo), text);
    return text;
}

TEST(SyncText, TextPackTextPackRoundTripIsByteIdentical) {
    synctext::Document source;
    std::string error;
    ASSERT_TRUE(synctext::parse(Example, "demo.sync", nullptr, source, error));
    std::string text = roundTrip(source, 0.0f);
    EXPECT_NE(text.find("start 00:01:000 glow_pre\nstop 00:04:000\n"), std::string::npos) << text;
    EXPECT_NE(text.find("priority 4\n"), std::string::npos) << "raw priorities are kept";
    EXPECT_EQ(text.find("tempo"), std::string::npos) << text;

    text = roundTrip(source, 120.0f);
    EXPECT_EQ(text.find("tempo 120\nend 61.1\n"), text.find('\n') + 1) << text;
    EXPECT_NE(text.find("start 1.3 glow_pre\nstop 3.1\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\n00:00:250 1 linear\n"), std::string::npos) << "row 5 is off the beat";
}

// Values that need up to 9 digits, and a tempo whose beats fall between rows.
TEST(SyncText, DecompiledValuesAndBeatsReadBackExactly) {
    const float justAbove = std::nextafter(100.1f, 200.0f);
    synctext::Document source;
    source.effects.push_back({"e", -3, {{13, 3017, "screen"}}, {{"t", {}}}});
    const std::vector<std::pair<unsigned int, float>> keys = {
        {0, 1.2f},           {13, justAbove}, {14, -0.0f}, {27, 1.17549435e-38f},
        {40, 3.4028235e38f}, {3017, 0.1f}};
    for (const auto& [row, value] : keys) {
        source.effects[0].tracks[0].keyframes.push_back({row, 3, value});
    }
    const std::string text = roundTrip(source, 90.0f);
    EXPECT_NE(text.find("tempo 90\nend 02:30:850\n"), std::string::npos) << text;
    EXPECT_NE(text.find("start 1.2 screen\nstop 02:30:850\n"), std::string::npos) << text;
    EXPECT_NE(
        text.find("\n1.1 1.2 step\n1.2 100.100006 step\n00:00:700 -0 step\n1.3 1.1754944e-38 step\n"
                  "1.4 3.4028235e+38 step\n02:30:850 0.1 step\n"),
        std::string::npos)
        << text;
}

TEST(SyncText, MissingOrDamagedPacksAreReported) {
    synctext::Document document;
    std::string error;
    fs::path empty = freshFolder("empty");
    EXPECT_FALSE(synctext::readPack(empty.string(), document, error));
    EXPECT_NE(error.find("no track pack"), std::string::npos);

    synctext::Document source;
    ASSERT_TRUE(synctext::parse(Example, "demo.sync", nullptr, source, error));
    ASSERT_TRUE(synctext::writePack(source, empty.string(), error));
    fs::resize_file(empty / "track.data", 30);
    synctext::Document damaged;
    EXPECT_FALSE(synctext::readPack(empty.string(), damaged, error));
    EXPECT_NE(error.find("track.data"), std::string::npos) << error;
    EXPECT_FALSE(synctext::writePack(source, (empty / "no" / "such").string(), error));
}

// Out to the editor's project file and back into the text: every key keeps its row and value,
// ease-in and ease-out come back smooth, and the text keeps its comments and intervals.
TEST(RocketProject, ExportImportRoundTripKeepsEveryKey) {
    synctext::Document source, keys, back;
    std::string error;
    ASSERT_TRUE(synctext::parse(Example, "demo.sync", nullptr, source, error));
    const rocket::Project exported = rocket::fromDocument(source);
    EXPECT_EQ(exported.rows, 2402u) << "the row after the last stop, 02:00:000, ends";
    EXPECT_EQ(exported.bookmarks, (std::vector<unsigned int>{20, 81, 100, 2401}));
    ASSERT_EQ(exported.tracks.at(0).name, "glow_effect:active");
    std::vector<std::pair<unsigned int, float>> active;
    for (const rocket::Key& key : exported.tracks[0].keys) {
        active.emplace_back(key.row, key.value);
    }
    EXPECT_EQ(active, (std::vector<std::pair<unsigned int, float>>{
                          {0, 0.0f}, {20, 1.0f}, {81, 0.0f}, {100, 1.0f}, {2401, 0.0f}}));

    rocket::Project imported;
    ASSERT_TRUE(rocket::readXml(rocket::writeXml(exported), "demo.rocket", imported, error))
        << error;
    ASSERT_TRUE(rocket::toKeys(imported, keys, error)) << error;
    const std::string text = synctext::mergeKeys(Example, keys);
    ASSERT_TRUE(synctext::parse(text, "demo.sync", nullptr, back, error)) << error << text;
    EXPECT_NE(text.find("# a small production\n"), std::string::npos) << text;
    EXPECT_NE(text.find("start 00:01:000 glow_pre   # row 20\nstop 3.1\n"), std::string::npos);
    ASSERT_EQ(back.effects.size(), source.effects.size());
    for (size_t e = 0; e < source.effects.size(); ++e) {
        EXPECT_EQ(back.effects[e].intervals.size(), source.effects[e].intervals.size());
        ASSERT_EQ(back.effects[e].tracks.size(), source.effects[e].tracks.size());
        for (size_t t = 0; t < source.effects[e].tracks.size(); ++t) {
            const auto& before = source.effects[e].tracks[t].keyframes;
            const auto& after = back.effects[e].tracks[t].keyframes;
            ASSERT_EQ(after.size(), before.size());
            for (size_t k = 0; k < before.size(); ++k) {
                EXPECT_EQ(after[k].row, before[k].row);
                EXPECT_EQ(after[k].value, before[k].value);
                const bool eased = before[k].interpolation == 1 || before[k].interpolation == 2;
                EXPECT_EQ(after[k].interpolation, eased ? 5 : before[k].interpolation);
            }
        }
    }
}

TEST(RocketProject, BadProjectsNameTheFileLineAndReason) {
    const auto readError = [](const std::string& xml) {
        rocket::Project project;
        std::string error;
        EXPECT_FALSE(rocket::readXml(xml, "p.rocket", project, error)) << xml;
        return error;
    };
    EXPECT_EQ(readError("<sync>\n<tracks>\n</sync>\n"),
              "p.rocket:3: '</sync>' closes 'tracks' opened at line 2");
    EXPECT_EQ(readError("<?xml version=\"1.0\"?>\n<sync>\n<tracks>\n"),
              "p.rocket:4: element 'tracks' is never closed");
    EXPECT_EQ(readError("<sync>\n<tracks><track name=\"a:b\">\n<key row=\"1\" value=\"x\" "
                        "interpolation=\"0\"/></track></tracks></sync>"),
              "p.rocket:3: 'value' is 'x', not a number");
    EXPECT_EQ(readError("<sync>\n<tracks><track name=\"a:b\"><key row=\"1\" value=\"2\" "
                        "interpolation=\"4\"/></track></tracks></sync>"),
              "p.rocket:2: 'interpolation' is '4', not a whole number from 0 to 3");
    EXPECT_EQ(readError("<sync rows=10>"), "p.rocket:1: the value of 'rows' is not quoted");
    EXPECT_EQ(readError("<project/>"), "p.rocket:1: the root element is 'project', not 'sync'");
}
