#include "Cli.h"

#include "Analysis.h"
#include "AudioFile.h"
#include "Loudness.h"
#include "Parser.h"
#include "Renderer.h"
#include "SoundPicture.h"

#include <algorithm>
#include <chrono>
#include <iomanip>
#include <memory>
#include <stdexcept>

namespace synth {
namespace {

constexpr int kFailed = 1;
constexpr int kUsageError = 2;

const char* const kUsage =
    "usage: brinova-synth render SONG -o OUTPUT [--format mp3|wav|flac|ogg] [--threads N]\n"
    "       brinova-synth check SONG\n"
    "       brinova-synth analyze AUDIO [--song SONG] [--spectrogram PICTURE.png]\n"
    "       brinova-synth --help\n"
    "\n"
    "render   synthesizes the song and writes it; the format follows the output's extension\n"
    "check    reads the song and reports its first error, writing nothing\n"
    "analyze  prints length, levels per section (taken from the song) and the tempo found\n"
    "         by onset detection, loudness (LUFS) and true peak per section, the bars of\n"
    "         each pitched instrument that repeat an earlier one, and draws a spectrogram\n";

class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Options after the subcommand's positional argument, as name -> value.
struct Options {
    std::string positional;
    std::vector<std::pair<std::string, std::string>> values;

    const std::string* get(const std::string& name) const {
        for (const auto& entry : values)
            if (entry.first == name)
                return &entry.second;
        return nullptr;
    }
};

Options parseOptions(const std::vector<std::string>& args, const std::vector<std::string>& known) {
    Options options;
    for (size_t i = 1; i < args.size(); ++i) {
        const std::string& arg = args[i];
        if (arg.size() > 1 && arg[0] == '-') {
            if (std::find(known.begin(), known.end(), arg) == known.end())
                throw UsageError("unknown option '" + arg + "' for '" + args[0] + "'");
            if (i + 1 == args.size())
                throw UsageError("option '" + arg + "' needs a value");
            options.values.emplace_back(arg, args[++i]);
        } else if (options.positional.empty()) {
            options.positional = arg;
        } else {
            throw UsageError("unexpected argument '" + arg + "'");
        }
    }
    if (options.positional.empty())
        throw UsageError("'" + args[0] + "' needs a file");
    return options;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int threadCount(const Options& options) {
    const std::string* text = options.get("--threads");
    if (!text)
        return 2;
    if (text->size() != 1 || (*text)[0] < '1' || (*text)[0] > '8')
        throw UsageError("--threads takes a number from 1 to 8, not '" + *text + "'");
    return (*text)[0] - '0';
}

AudioFormat outputFormat(const Options& options, const std::string& output) {
    AudioFormat format;
    if (const std::string* name = options.get("--format")) {
        if (!formatFromName(*name, format))
            throw UsageError("unknown format '" + *name + "' (expected mp3, wav, flac or ogg)");
        return format;
    }
    if (!formatFromPath(output, format))
        throw UsageError("cannot tell the format of '" + output +
                         "' from its extension; use --format mp3|wav|flac|ogg");
    return format;
}

int render(const std::vector<std::string>& args, std::ostream& out) {
    const Options options = parseOptions(args, {"-o", "--format", "--threads"});
    const std::string* output = options.get("-o");
    if (!output)
        throw UsageError("'render' needs an output file: -o OUTPUT");
    const AudioFormat format = outputFormat(options, *output);
    const int threads = threadCount(options);

    const auto start = std::chrono::steady_clock::now();
    const Song song = loadSong(options.positional);
    const AudioBuffer audio = renderSong(song, threads);
    const double synthesis = secondsSince(start);
    writeAudio(audio, *output, format);
    const double total = secondsSince(start);
    out << std::fixed << std::setprecision(3) << "rendered " << options.positional << ": "
        << static_cast<double>(audio.frames()) / audio.sampleRate << " s of audio -> " << *output
        << "\n"
        << std::setprecision(2) << "render time " << total << " s (synthesis " << synthesis
        << " s on " << threads << " threads, encoding " << total - synthesis << " s)\n";
    return 0;
}

int check(const std::vector<std::string>& args, std::ostream& out) {
    const Options options = parseOptions(args, {});
    const Song song = loadSong(options.positional);
    size_t notes = 0;
    for (const Instrument& instrument : song.instruments)
        notes += instrument.notes.size();
    out << options.positional << ": " << song.instruments.size() << " instruments, " << notes
        << " notes, " << song.sections.size() << " sections, " << song.lengthSeconds << " s at "
        << song.tempo << " BPM\n";
    return 0;
}

int analyze(const std::vector<std::string>& args, std::ostream& out) {
    const Options options = parseOptions(args, {"--song", "--spectrogram"});
    std::unique_ptr<Song> song;
    if (const std::string* path = options.get("--song"))
        song = std::make_unique<Song>(loadSong(*path));
    const AudioBuffer audio = readAudio(options.positional);
    out << "file       " << options.positional << "\n";
    const AnalysisReport report = analyse(audio, song.get());
    printReport(report, out);
    printLoudness(measureLoudness(audio, report.sections), out);
    if (song)
        printRepeats(*song, out);
    if (const std::string* picture = options.get("--spectrogram")) {
        writeSpectrogram(audio, song.get(), *picture);
        out << "spectrogram " << *picture << "\n";
    }
    return 0;
}

} // namespace

int runCommandLine(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
    try {
        if (args.empty())
            throw UsageError("no command given");
        const std::string& command = args[0];
        if (command == "--help" || command == "-h") {
            out << kUsage;
            return 0;
        }
        if (command == "render")
            return render(args, out);
        if (command == "check")
            return check(args, out);
        if (command == "analyze")
            return analyze(args, out);
        throw UsageError("unknown command '" + command + "'");
    } catch (const UsageError& error) {
        err << "brinova-synth: " << error.what() << "\n" << kUsage;
        return kUsageError;
    } catch (const std::exception& error) {
        err << "brinova-synth: " << error.what() << "\n";
        return kFailed;
    }
}

} // namespace synth
