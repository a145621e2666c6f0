#pragma once

#include <memory>
#include <string>

class Animation;

// Reads an animation path file:
//     KVTANI1
//     <label> <keyframe count>
// then per keyframe a position line "<label> x y z" and a rotation line
// "<label> pitch heading". Labels are not checked. A file that promises more keyframes or
// values than it holds is reported as corrupt instead of being read beyond its end.
class AnimationParser {
public:
    // Loads the file through KVTIO and parses it.
    explicit AnimationParser(std::string fileName);
    // Parses text already in memory; fileName only names it in messages.
    AnimationParser(std::string fileName, const std::string& text);
    ~AnimationParser();

    bool isValid() const { return valid; }
    const std::string& getErrorMessage() const { return errorMessage; }
    // Hands the parsed animation to the caller; null when invalid or already taken.
    std::unique_ptr<Animation> takeAnimation();

private:
    bool loadFile(std::string& text);
    void parse(const std::string& text);
    void reportCorrupt(const std::string& reason);

    std::string fileName;
    bool valid = false;
    std::string errorMessage;
    std::unique_ptr<Animation> animation;
};
