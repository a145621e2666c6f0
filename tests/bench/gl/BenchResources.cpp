#include "BenchResources.h"

#include "FBO.h"
#include "InProgramFolder.h"
#include "KVTIO.h"
#include "ResourceLoader.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <filesystem>

BenchResources::BenchResources() = default;

BenchResources::~BenchResources() = default;

Shader* BenchResources::shader(const std::string& file) {
    std::unique_ptr<Shader>& slot = shaders[file];
    if (!slot) {
        InProgramFolder folder;
        slot = std::make_unique<Shader>();
        ResourceLoader loader;
        if (!loader.loadShader(slot.get(), {file, file, {}})) {
            failure = loader.getErrorMessage();
        }
    }
    return slot.get();
}

Texture* BenchResources::picture(const std::string& file, unsigned int target, bool mipmap) {
    InProgramFolder folder;
    pictures.emplace_back(KVTIO::loadTexture(KVTIO::TexturePath + file, target, mipmap));
    if (!pictures.back()) {
        failure = "cannot load " + file;
    }
    return pictures.back().get();
}

FBO* BenchResources::framebuffer(int width, int height, bool depth, int internalFormat,
                                 unsigned int format, unsigned int type) {
    framebuffers.push_back(
        std::make_unique<FBO>(width, height, depth, false, internalFormat, format, type));
    return framebuffers.back().get();
}

void BenchResources::set(TrackInterpolate*& slot, float value) {
    tracks.push_back(std::make_unique<TrackInterpolate>("value"));
    tracks.back()->addKeyframe(new TrackKeyFrameInterpolate(0, TrackInterpolate::LINEAR, value));
    slot = tracks.back().get();
}
