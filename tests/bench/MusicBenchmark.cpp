// Cost of the music clock's work: decoding the whole piece at start, converting its rate,
// the spectrum effects read each frame; and of reading entries from the resource archive.
// The files are made on first use in a temporary folder: a 150 s stereo MP3 (the length
// of the production), a 150 s file at 48 kHz, and an archive holding an 11 MB entry.
// Loading the test production from the folder and from the archive needs the whole
// runtime and is not measured here.
#include "ArchiveFiles.h"
#include "File.h"
#include "MusicTimer.h"
#include "PictureFiles.h"
#include "SoundBuffer.h"
#include "SoundFiles.h"
#include "archive/arc.h"
#include "archive/packman.h"

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <random>
#include <vector>

namespace {

const double PIECE_SECONDS = 150.0;

// Removed with everything in it when the program ends.
struct TemporaryFolder {
    std::string path = testpictures::freshFolder();
    ~TemporaryFolder() { std::filesystem::remove_all(path); }
};

const std::string& benchFolder() {
    static const TemporaryFolder folder;
    return folder.path;
}

// A tone on each channel, coded at 320 kbit/s where the format is lossy: the most an MP3
// decoder has to work through.
bool writePiece(const std::string& path, int format, int rate) {
    return testsounds::writeTones(path, format, rate, PIECE_SECONDS, {{220.0, 0.3}, {331.0, 0.3}},
                                  0.0);
}

const std::string& pieceMp3() {
    static const std::string path = benchFolder() + "piece.mp3";
    static const bool written = writePiece(path, testsounds::MP3, 44100);
    return written ? path : benchFolder();
}

const std::string& piece48k() {
    static const std::string path = benchFolder() + "piece48k.wav";
    static const bool written = writePiece(path, testsounds::WAV, 48000);
    return written ? path : benchFolder();
}

void BM_DecodeMp3_150s(benchmark::State& state) {
    const std::string& path = pieceMp3();
    for (auto _ : state) {
        SoundBuffer sound;
        if (!sound.decodeFile(path)) {
            state.SkipWithError(sound.getError().c_str());
            return;
        }
        benchmark::DoNotOptimize(sound.getSamples());
    }
}
BENCHMARK(BM_DecodeMp3_150s)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_DecodeMp3FromMemory_150s(benchmark::State& state) {
    const File file(pieceMp3(), File::READ);
    const std::vector<unsigned char> bytes = file.getUnsigned();
    for (auto _ : state) {
        SoundBuffer sound;
        if (!sound.decodeMemory(bytes, "piece.mp3")) {
            state.SkipWithError(sound.getError().c_str());
            return;
        }
        benchmark::DoNotOptimize(sound.getSamples());
    }
}
BENCHMARK(BM_DecodeMp3FromMemory_150s)->Unit(benchmark::kMillisecond)->Iterations(3);

// What init() adds when the file's rate is not the device's.
void BM_Resample48kTo44k_150s(benchmark::State& state) {
    SoundBuffer decoded;
    if (!decoded.decodeFile(piece48k())) {
        state.SkipWithError(decoded.getError().c_str());
        return;
    }
    for (auto _ : state) {
        state.PauseTiming();
        SoundBuffer sound = decoded;
        state.ResumeTiming();
        sound.resample(44100);
        benchmark::DoNotOptimize(sound.getSamples());
    }
}
BENCHMARK(BM_Resample48kTo44k_150s)->Unit(benchmark::kMillisecond)->Iterations(3);

// The whole start of the music clock on the silent driver: decode, device, set-up.
void BM_MusicTimerInit_150sMp3(benchmark::State& state) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    for (auto _ : state) {
        MusicTimer timer(pieceMp3(), 20);
        if (!timer.init()) {
            state.SkipWithError(timer.getMessage().c_str());
            return;
        }
    }
}
BENCHMARK(BM_MusicTimerInit_150sMp3)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_Spectrum(benchmark::State& state) {
    setenv("SDL_AUDIODRIVER", "dummy", 1);
    const std::string path = benchFolder() + "short.wav";
    testsounds::writeTones(path, testsounds::WAV, 44100, 5.0, {{440.0, 0.5}, {660.0, 0.5}});
    MusicTimer timer(path, 20);
    if (!timer.init()) {
        state.SkipWithError(timer.getMessage().c_str());
        return;
    }
    timer.setTime(3000);
    const int count = static_cast<int>(state.range(0));
    const auto which = static_cast<Timer::SoundChannel>(state.range(1));
    std::vector<float> out(static_cast<std::size_t>(count));
    for (auto _ : state) {
        timer.GetDirectSoundData(which, count, out.data());
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(BM_Spectrum)
    ->ArgNames({"count", "selection"})
    ->Args({1024, Timer::LEFT})
    ->Args({1024, Timer::CHANNEL_3})
    ->Args({8192, Timer::LEFT})
    ->Unit(benchmark::kMicrosecond);

// An archive packed as the project packs: a small entry, an 11 MB entry, another small
// one. The big entry is as hard to compress as pictures and music already coded (7 random
// bits a byte), so LZMA codes it rather than storing it and reading it means decoding it.
const std::string& bigArchive() {
    static const std::string path = [] {
        const std::string folder = benchFolder() + "archive/";
        std::filesystem::create_directories(folder + "resources/misc");
        std::mt19937 generator(1);
        std::vector<unsigned char> noise(11u << 20);
        for (unsigned char& byte : noise) {
            byte = static_cast<unsigned char>(generator() & 0x7F);
        }
        testpictures::writeFile(folder + "resources/misc/big.bin", noise);
        testpictures::writeFile(folder + "resources/misc/first.bin", std::string(1000, 'f'));
        testpictures::writeFile(folder + "resources/misc/last.bin", std::string(1000, 'l'));
        testarchives::sevenZip(folder, "a " + testarchives::PACKING_OPTIONS +
                                           " resources.7z resources/misc/first.bin "
                                           "resources/misc/big.bin resources/misc/last.bin");
        return folder + "resources.7z";
    }();
    return path;
}

std::size_t readEntry(const char* name) {
    File file(name);
    arc_getFile(&file);
    return file.getFileSize();
}

// Opening builds the entry table from the headers alone. The archive is made before the
// clock starts: packing it takes seconds.
void BM_ArchiveOpen(benchmark::State& state) {
    const std::string& archive = bigArchive();
    for (auto _ : state) {
        if (!arc_load(archive)) {
            state.SkipWithError("archive did not open");
            return;
        }
        arc_close();
    }
}
BENCHMARK(BM_ArchiveOpen)->Unit(benchmark::kMillisecond);

// Two small entries on either side of the big one: the big one is skipped, not decoded.
void BM_ArchiveReadSmallEntriesAroundBigOne(benchmark::State& state) {
    if (!arc_load(bigArchive())) {
        state.SkipWithError("archive did not open");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(readEntry("resources/misc/first.bin"));
        benchmark::DoNotOptimize(readEntry("resources/misc/last.bin"));
    }
    arc_close();
}
BENCHMARK(BM_ArchiveReadSmallEntriesAroundBigOne)->Unit(benchmark::kMillisecond);

void BM_ArchiveRead11MBEntry(benchmark::State& state) {
    if (!arc_load(bigArchive())) {
        state.SkipWithError("archive did not open");
        return;
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(readEntry("resources/misc/big.bin"));
    }
    arc_close();
}
BENCHMARK(BM_ArchiveRead11MBEntry)->Unit(benchmark::kMillisecond);

} // namespace
