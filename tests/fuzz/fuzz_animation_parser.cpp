// Feeds arbitrary bytes to the animation path parser, then evaluates whatever it accepted
// with both interpolations.
#include "Animation.h"
#include "AnimationParser.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    AnimationParser parser("fuzz.ani", text);
    const std::unique_ptr<Animation> animation = parser.takeAnimation();
    if (parser.isValid() != (animation != nullptr)) {
        __builtin_trap();
    }
    if (animation && animation->countKeyFrames() >= 4) {
        for (int type : {Animation::LINEAR, Animation::CATMULL_ROM}) {
            animation->setInterpolationType(type);
            animation->next(0.0);
            animation->next(0.5);
            animation->next(0.99);
        }
    }
    return 0;
}
