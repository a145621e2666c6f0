#pragma once

#include <string>
#include <vector>

// What a production declares it loads, one record per resource, held by value in the
// registry's lists. File names are relative to the matching KVTIO folder.
namespace ResourceInfo {

struct TextureInfo {
    std::string key;
    std::string file;
    // GL_TEXTURE_1D or GL_TEXTURE_2D.
    unsigned int target = 0;
    bool mipmap = false;
};

struct ShaderInfo {
    std::string key;
    // Without the ".vert" / ".frag" extension.
    std::string file;
    // Every entry from the second on becomes a "#define" line; the first is never emitted.
    std::vector<std::string> params;
};

struct SceneInfo {
    std::string key;
    std::string file;
};

struct AnimationInfo {
    std::string key;
    std::string file;
};

struct BinaryInfo {
    std::string key;
    std::string file;
};

struct VideoInfo {
    std::string key;
    std::string file;
};

} // namespace ResourceInfo
