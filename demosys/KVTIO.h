#pragma once

#include <string>

class Binary;
class File;
class Texture;

// The front door to resource files: loose files under the resource folders, or entries of
// the resource archive. Every loader takes a full relative path (folder constant + name).
class KVTIO {
private:
    static std::string openingError;

public:
    static constexpr int KVT_RESOURCES_FLAT = 0;
    static constexpr int KVT_RESOURCES_7Z = 1;

    static int ResourceType;
    // When set, every load prints what it loads.
    static bool debug;

    static const std::string ScenePath;
    static const std::string TexturePath;
    static const std::string MiscPath;
    static const std::string SoundPath;
    static const std::string ShaderPath;
    static const std::string VideoPath;
    static const std::string TrackPath;

    // Archive mode opens "resources.7z"; a missing or damaged archive shows as resources
    // that do not exist, and archiveError() says why it could not be opened.
    static void init(int type);
    // Empty unless the archive failed to open at the last init.
    static const std::string& archiveError() { return openingError; }
    // Closes the archive in archive mode.
    static void destroy();

    // A new File the caller owns (test exists()); none for an unknown type.
    static File* loadFile(std::string name, int type);
    static File* loadFile(std::string name);
    static File* loadTextFile(std::string name, int type);
    static File* loadTextFile(std::string name);
    // A new Binary the caller owns, or none when the file is missing.
    static Binary* loadBinary(std::string name, int type);
    static Binary* loadBinary(std::string name);
    // A new texture the caller owns, made from the picture file for target GL_TEXTURE_1D
    // (length = the longer side) or GL_TEXTURE_2D, or none when the file is missing or
    // cannot be decoded.
    static Texture* loadTexture(std::string name, unsigned int target, bool mipmap, int type);
    static Texture* loadTexture(std::string name, unsigned int target, bool mipmap);

private:
    static File* openResource(const std::string& name, int type);
};
