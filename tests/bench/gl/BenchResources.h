// What the effect benchmarks share: the production's shaders and pictures read from the
// built program's folder, framebuffers and constant tracks, all kept for the whole run.
#pragma once

#include <GL/glew.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

class FBO;
class Shader;
class Texture;
class TrackInterpolate;

class BenchResources {
public:
    BenchResources();
    ~BenchResources();
    BenchResources(const BenchResources&) = delete;
    BenchResources& operator=(const BenchResources&) = delete;

    // The shader pair file + ".vert"/".frag"; on failure error() says why.
    Shader* shader(const std::string& file);
    Texture* picture(const std::string& file, unsigned int target = GL_TEXTURE_2D,
                     bool mipmap = false);
    // RGBA bytes unless another internal format, format and type are given.
    FBO* framebuffer(int width, int height, bool depth = false, int internalFormat = GL_RGBA,
                     unsigned int format = GL_RGBA, unsigned int type = GL_UNSIGNED_BYTE);
    // Points an effect's track field at a track that holds value from time 0 on.
    void set(TrackInterpolate*& slot, float value);

    const std::string& error() const { return failure; }

private:
    std::string failure;
    std::map<std::string, std::unique_ptr<Shader>> shaders;
    std::vector<std::unique_ptr<Texture>> pictures;
    std::vector<std::unique_ptr<FBO>> framebuffers;
    std::vector<std::unique_ptr<TrackInterpolate>> tracks;
};
