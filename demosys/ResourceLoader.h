#pragma once

#include "ResourceInfo.h"

#include <string>
#include <vector>

class Effect;
class File;
class ScreenMetrics;
class Shader;

// Turns the production's declarations into loaded objects, phase by phase, with the
// progress bar advanced after each item; opens the screen, builds the effect instances,
// the sync tracks and the clock, and disposes of all of it at the end. Holds the shader
// preprocessor (define lines from parameters, recursive "#include").
// Every failure clears the valid flag and leaves a message naming the file.
class ResourceLoader {
public:
    // Include expansion stops here: deeper nesting is taken for an include cycle.
    static constexpr int MAX_INCLUDE_DEPTH = 16;
    // At most this many files are included into one source, so that a file included
    // over and over (directly or through others) cannot make the source explode.
    static constexpr int MAX_INCLUDES = 256;

    ResourceLoader() = default;
    virtual ~ResourceLoader() = default;
    ResourceLoader(const ResourceLoader&) = delete;
    ResourceLoader& operator=(const ResourceLoader&) = delete;

    // Creates the registry's eight pools, which own everything loaded from then on.
    bool createDataPools();
    // Lets the production set its parameters, then opens the window or the full screen.
    bool initScreen(ScreenMetrics* metrics, std::string title);
    // The loading phases: shaders, scenes, textures, binaries, animations.
    bool loadDataFiles();
    bool createEffectObjects();
    // Reads the sync tracks for every tracked effect instance, then initialises the effects.
    bool createTrackData();
    // Creates the clock: the music clock when the production has music, else the plain one.
    bool loadSound();
    // Seeks the clock to the start time and starts it when there is music.
    void initDemo();
    bool reloadShaders();
    // Deletes the progress bar, the pools (and so everything loaded), the capability
    // record, the track system and the clock.
    bool dispose();

    // Writes a shell script that rebuilds "resources.7z" from the resource folder with the
    // given archiver, one non-solid addition per resource: the music, the textures in the
    // texture pool, scenes (with their ".kf" files where present), animations, binaries,
    // both sources of every shader, the track files, the further files listed (shader
    // includes) and the progress bar's own files. Run it by hand once the list is loaded.
    bool createCopyScript(std::string archiver, std::string scriptName);
    // The files that script packs, in its order: every resource file of the loaded
    // production.
    static std::vector<std::string> packedResources();

    // Offline rendering: the clock counts frames of stepMs milliseconds, and no music plays.
    // decodeMusic: decode the music all the same (a benchmark times it), or skip it.
    void useFrameClock(double stepMs, bool decodeMusic) {
        frameStepMs = stepMs;
        decodeMusicOffline = decodeMusic;
    }

    bool isValid() const { return valid; }
    std::string getErrorMessage() const { return errorMessage; }
    // When set, shader additions and include expansions are printed.
    void setVerbose(bool flag) { verbose = flag; }

    // Appends "#define " + parameter + "\n" for every parameter from the second on.
    void addShaderParams(std::string& out, std::vector<std::string> params);
    // Appends the lines to out, replacing every "#include name" line by the expanded
    // contents of folder + name. fileName and depth serve the messages.
    bool shaderInclude(std::string& out, std::vector<std::string> lines, std::string folder,
                       std::string fileName, int depth);
    // Reads, preprocesses, compiles and links entry.file + ".vert" / ".frag" from the shader
    // folder into the shader.
    bool loadShader(Shader* shader, ResourceInfo::ShaderInfo entry);

    // Loads one declared texture into the texture pool, unless a texture of the same file
    // is there already (the file is then shared and the entry adds nothing).
    bool loadTextureEntry(const ResourceInfo::TextureInfo& entry);

protected:
    // Where shader sources come from: a new File the caller owns. Resource files by default.
    virtual File* openShaderFile(const std::string& path);

private:
    void startProgress();
    static void tickProgress();
    // Stops loading, naming them, when the driver lacks extensions the production requires.
    bool checkRequiredExtensions();
    bool loadShaders();
    bool loadScenes();
    bool loadTextures();
    bool loadBinaries();
    bool loadAnimations();
    void initEffects();
    std::string locateFirstError(const std::string& log) const;
    bool checkMusicOffline();
    bool preprocess(std::string& source, const ResourceInfo::ShaderInfo& entry,
                    const std::string& extension);
    bool includeFailed(const std::string& line, const std::string& fileName, int depth);
    bool fail(std::string message);

    std::string errorMessage = "ResourceLoader : unknown";
    bool valid = true;
    bool verbose = false;
    int includeCount = 0;
    // Where each line of the shader source last preprocessed came from, for error messages.
    struct SourceLine {
        std::string file;
        int line;
    };
    std::vector<SourceLine> sourceLines;
    double frameStepMs = 0.0;
    bool decodeMusicOffline = false;
};
