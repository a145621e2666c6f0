// Exports the test card as a video and takes the file apart again with ffmpeg: its streams,
// its pictures against shots of the same moments, and its sound against the music.
#include "RunSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

using e2e::load;
using e2e::Outcome;
using e2e::Picture;
using e2e::runCommand;

const int SampleRate = 44100;

class VideoExport : public e2e::TestFolder {
protected:
    VideoExport() : TestFolder("brinova_video_") {}

    Outcome testCard(const std::string& arguments, const std::string& environment = "") {
        return runCommand(environment + " " + TESTCARD_DEMO + " --no-launcher --size 320x180 " +
                          arguments);
    }
};

std::string probe(const fs::path& video, const std::string& stream, const std::string& entries) {
    return runCommand("ffprobe -v error -count_frames -select_streams " + stream +
                      " -show_entries stream=" + entries + " -of default=nw=1 " + video.string())
        .output;
}

Picture decodedFrame(const fs::path& video, int frame, const fs::path& png) {
    runCommand("ffmpeg -v error -y -i " + video.string() + " -vf 'select=eq(n\\," +
               std::to_string(frame) + ")' -frames:v 1 " + png.string());
    return load(png);
}

double meanDifference(const Picture& a, const Picture& b) {
    double sum = 0.0;
    for (size_t i = 0; i < a.rgb.size(); ++i) {
        sum += std::abs(a.rgb[i] - b.rgb[i]);
    }
    return sum / static_cast<double>(a.rgb.size());
}

// Mono samples of a sound file from a point on, as ffmpeg decodes them.
std::vector<int16_t> decodedSound(const fs::path& file, double from, double seconds) {
    std::vector<int16_t> samples(static_cast<size_t>(seconds * SampleRate));
    const std::string command = "ffmpeg -v error -ss " + std::to_string(from) + " -i " +
                                file.string() + " -t " + std::to_string(seconds) +
                                " -f s16le -ac 1 -ar " + std::to_string(SampleRate) + " -";
    FILE* pipe = popen(command.c_str(), "r");
    size_t read = pipe == nullptr ? 0 : fread(samples.data(), 2, samples.size(), pipe);
    if (pipe != nullptr) {
        pclose(pipe);
    }
    samples.resize(read);
    return samples;
}

// The lag (in samples) at which window matches reference best, and how well (1 = exactly).
std::pair<size_t, double> bestMatch(const std::vector<int16_t>& window,
                                    const std::vector<int16_t>& reference) {
    std::pair<size_t, double> best{0, -1.0};
    for (size_t lag = 0; lag + window.size() <= reference.size(); ++lag) {
        double product = 0.0, windowEnergy = 0.0, referenceEnergy = 0.0;
        for (size_t i = 0; i < window.size(); ++i) {
            product += double(window[i]) * reference[lag + i];
            windowEnergy += double(window[i]) * window[i];
            referenceEnergy += double(reference[lag + i]) * reference[lag + i];
        }
        const double match = product / std::sqrt(windowEnergy * referenceEnergy + 1e-9);
        if (match > best.second) {
            best = {lag, match};
        }
    }
    return best;
}

} // namespace

TEST_F(VideoExport, HoldsTheFramesAndTheMusicOfTheInterval) {
    const fs::path video = folder / "card.mp4";
    Outcome run = testCard("--start 00:01:000 --end 00:03:000 --fps 30 --video " + video.string());
    ASSERT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("Video: 60 / 60 frames"), std::string::npos) << run.output;
    EXPECT_NE(run.output.find("Video: wrote '" + video.string() + "': 60 frames"),
              std::string::npos);

    EXPECT_EQ(probe(video, "v", "codec_name,width,height,r_frame_rate,nb_read_frames"),
              "codec_name=h264\nwidth=320\nheight=180\nr_frame_rate=30/1\nnb_read_frames=60\n");
    const std::string audio = probe(video, "a", "codec_name,duration");
    ASSERT_EQ(audio.rfind("codec_name=aac\nduration=", 0), 0u) << audio;
    EXPECT_NEAR(std::stod(audio.substr(audio.find("duration=") + 9)), 2.0, 1024.0 / SampleRate);

    // Frame k shows 1 s + k / 30: the white box, and the blue one above the middle (which an
    // upside-down picture would show below it).
    for (auto [frame, time] : {std::pair{15, "00:01:500"}, std::pair{53, "00:02:767"}}) {
        const fs::path shotFile = folder / ("shot" + std::to_string(frame) + ".png");
        ASSERT_EQ(testCard("--shot " + std::string(time) + "=" + shotFile.string()).status, 0);
        Picture shot = load(shotFile);
        Picture decoded =
            decodedFrame(video, frame, folder / ("frame" + std::to_string(frame) + ".png"));
        ASSERT_EQ(decoded.rgb.size(), shot.rgb.size()) << "frame " << frame;
        EXPECT_LT(meanDifference(decoded, shot), 3.0) << "frame " << frame;
    }

    // The sound starts where the picture does: the video's first 50 ms are found in the music
    // 1 s in, within a millisecond.
    const fs::path music = fs::path(TESTCARD_FOLDER) / "resources/sound/testcard.flac";
    const std::vector<int16_t> window = decodedSound(video, 0.0, 0.05);
    const std::vector<int16_t> reference = decodedSound(music, 0.98, 0.09);
    ASSERT_EQ(window.size(), size_t(0.05 * SampleRate));
    const auto [lag, match] = bestMatch(window, reference);
    EXPECT_NEAR(double(lag), 0.02 * SampleRate, SampleRate / 1000.0);
    EXPECT_GT(match, 0.98) << "an offset missing from the sound matches at about 0.8";
}

TEST_F(VideoExport, AFailedExportLeavesNoFileAndSaysWhy) {
    const fs::path video = folder / "card.mp4";
    // ffmpeg cannot write where its partial file should go.
    fs::create_directories(folder / "card.mp4.partial" / "taken");
    Outcome refused = testCard("--end 00:00:500 --video " + video.string());
    EXPECT_EQ(refused.status, 1) << refused.output;
    EXPECT_NE(refused.output.find("ffmpeg failed (exit status 1) writing '" + video.string()),
              std::string::npos)
        << refused.output;
    EXPECT_NE(refused.output.find("card.mp4.partial"), std::string::npos) << "ffmpeg's own words";
    EXPECT_FALSE(fs::exists(video));

    Outcome missing = testCard("--end 00:00:500 --video " + video.string(), "PATH=/nowhere");
    EXPECT_EQ(missing.status, 1) << missing.output;
    EXPECT_NE(missing.output.find("the Debian package 'ffmpeg' installs it"), std::string::npos)
        << missing.output;
    EXPECT_FALSE(fs::exists(video));
}
