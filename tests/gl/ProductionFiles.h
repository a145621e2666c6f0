// Helpers of the tests that draw with the production's own shaders and pictures, as the
// build places them beside the program (BRINOVA_BIN_DIR/resources).
#pragma once

#include "TrackInterpolate.h"

#include <memory>
#include <string>
#include <vector>

class FBO;
class Shader;
class Texture;

namespace gltest {

// The production's shader pair file + ".vert"/".frag", preprocessed and linked; the test
// fails (and null comes back) when it does not build.
std::unique_ptr<Shader> productionShader(const std::string& file);
// One of the production's pictures, as the loader uploads it.
std::unique_ptr<Texture> productionPicture(const std::string& file, unsigned int target,
                                           bool mipmap);
// A framebuffer like the production's screen-effect ones: RGBA bytes, no depth.
std::unique_ptr<FBO> rgbaTarget(int width, int height);
// A parameter track that holds value from time 0 on.
std::unique_ptr<TrackInterpolate> constantTrack(const std::string& name, float value);

// Keeps parameter tracks alive for an effect under test and points the effect's track
// fields at constant values.
class TrackValues {
public:
    // Creates a constant track in slot (the effect's field) and keeps it.
    void set(TrackInterpolate*& slot, float value);

private:
    std::vector<std::unique_ptr<TrackInterpolate>> owned;
};

} // namespace gltest
