#include "ProductionFiles.h"

#include "FBO.h"
#include "InProgramFolder.h"
#include "KVTIO.h"
#include "ResourceLoader.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace gltest {

std::unique_ptr<Shader> productionShader(const std::string& file) {
    InProgramFolder folder;
    auto shader = std::make_unique<Shader>();
    ResourceLoader loader;
    if (!loader.loadShader(shader.get(), {file, file, {}})) {
        ADD_FAILURE() << loader.getErrorMessage();
        return nullptr;
    }
    return shader;
}

std::unique_ptr<Texture> productionPicture(const std::string& file, unsigned int target,
                                           bool mipmap) {
    InProgramFolder folder;
    std::unique_ptr<Texture> texture(KVTIO::loadTexture(KVTIO::TexturePath + file, target, mipmap));
    EXPECT_NE(texture, nullptr) << file;
    return texture;
}

std::unique_ptr<FBO> rgbaTarget(int width, int height) {
    return std::make_unique<FBO>(width, height, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
}

std::unique_ptr<TrackInterpolate> constantTrack(const std::string& name, float value) {
    auto track = std::make_unique<TrackInterpolate>(name);
    track->addKeyframe(new TrackKeyFrameInterpolate(0, TrackInterpolate::LINEAR, value));
    return track;
}

void TrackValues::set(TrackInterpolate*& slot, float value) {
    owned.push_back(constantTrack("value", value));
    slot = owned.back().get();
}

} // namespace gltest
