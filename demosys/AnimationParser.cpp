#include "AnimationParser.h"

#include "Animation.h"
#include "File.h"
#include "KVTIO.h"
#include "KVTUtils.h"
#include "StringTokenizer.h"
#include "StringUtils.h"

namespace {

const char* const ERROR_HEADING = "Error while loading animation data\n";

// The fields of one line; the first (a label) is skipped when there are enough of them.
bool readFields(const std::string& line, int count, float* fields) {
    StringTokenizer tokens(line, " ");
    if (tokens.countTokens() < count + 1) {
        return false;
    }
    tokens.getNext();
    for (int i = 0; i < count; ++i) {
        fields[i] = KVTUtils::string2Float(tokens.getNext());
    }
    return true;
}

} // namespace

AnimationParser::AnimationParser(std::string name) : fileName(std::move(name)) {
    std::string text;
    if (loadFile(text)) {
        parse(text);
    }
}

AnimationParser::AnimationParser(std::string name, const std::string& text)
    : fileName(std::move(name)) {
    parse(text);
}

AnimationParser::~AnimationParser() = default;

std::unique_ptr<Animation> AnimationParser::takeAnimation() {
    return std::move(animation);
}

bool AnimationParser::loadFile(std::string& text) {
    const std::unique_ptr<File> file(KVTIO::loadTextFile(fileName));
    if (file == nullptr || !file->exists()) {
        errorMessage = std::string(ERROR_HEADING) + "File '" + fileName + "' not found!\n";
        return false;
    }
    text = file->getAsString();
    return true;
}

void AnimationParser::parse(const std::string& text) {
    StringTokenizer lines(text, "\n");
    if (StringUtils::trim(lines.getNext()) != "KVTANI1") {
        errorMessage =
            std::string(ERROR_HEADING) + "File : '" + fileName + "' have invalid header\n";
        return;
    }
    StringTokenizer countLine(lines.getNext(), " ");
    if (countLine.countTokens() < 2) {
        reportCorrupt("no keyframe count");
        return;
    }
    countLine.getNext();
    const int count = KVTUtils::string2Int(countLine.getNext());
    const int pairsLeft = (lines.countTokens() - 2) / 2;
    if (count < 0 || count > pairsLeft) {
        reportCorrupt("it promises " + std::to_string(count) + " keyframes but holds lines for " +
                      std::to_string(pairsLeft));
        return;
    }
    auto parsed = std::make_unique<Animation>();
    for (int i = 0; i < count; ++i) {
        float xyz[3];
        float angles[2];
        if (!readFields(lines.getNext(), 3, xyz) || !readFields(lines.getNext(), 2, angles)) {
            reportCorrupt("keyframe " + std::to_string(i) + " has too few values");
            return;
        }
        parsed->addKeyframe(
            new Keyframe(Vector<float, 3>(xyz[0], xyz[1], xyz[2]), angles[0], angles[1]));
    }
    animation = std::move(parsed);
    valid = true;
}

void AnimationParser::reportCorrupt(const std::string& reason) {
    errorMessage =
        std::string(ERROR_HEADING) + "File : '" + fileName + "' is corrupt: " + reason + "\n";
}
