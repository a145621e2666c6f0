#include "ResourceLoader.h"

#include "Animation.h"
#include "AnimationParser.h"
#include "Binary.h"
#include "DataAnimationPool.h"
#include "DataBinaryPool.h"
#include "DataEffectPool.h"
#include "DataFBOPool.h"
#include "DataObjectPool.h"
#include "DataShaderPool.h"
#include "DataTexturePool.h"
#include "Effect.h"
#include "FBO.h"
#include "File.h"
#include "FrameTimer.h"
#include "GLExtensions.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "KVTScene.h"
#include "KVTSceneLoader.h"
#include "MusicTimer.h"
#include "ProgressBar.h"
#include "ResourceDefinition.h"
#include "ScreenMetrics.h"
#include "Shader.h"
#include "ShaderCache.h"
#include "StringTokenizer.h"
#include "StringUtils.h"
#include "Texture.h"
#include "TrackSystem.h"
#include "TrackSystemIO.h"

#include <GL/glew.h>
#include <SDL.h>

#include <iostream>
#include <memory>
#include <regex>

namespace {

// Lines shorter than this cannot be "#include x" and are copied as they stand.
const std::size_t SHORTEST_INCLUDE = 10;

// The message's tail: " depth " with its first depth characters dropped (never the number).
std::string depthText(int depth) {
    const std::string text = " depth ";
    return depth < static_cast<int>(text.size()) ? text.substr(static_cast<std::size_t>(depth))
                                                 : "";
}

} // namespace

File* ResourceLoader::openShaderFile(const std::string& path) {
    return KVTIO::loadTextFile(path);
}

bool ResourceLoader::fail(std::string message) {
    errorMessage = std::move(message);
    valid = false;
    return false;
}

void ResourceLoader::addShaderParams(std::string& out, std::vector<std::string> params) {
    for (std::size_t i = 1; i < params.size(); ++i) {
        out += "#define " + params[i] + "\n";
        sourceLines.push_back({"(the shader's parameters)", static_cast<int>(i)});
    }
}

// The compiler's first error with its line traced back through the includes to the file it
// came from. Drivers write the line as "0:12(7): error", "ERROR: 0:12: ..." or "0(12) : ...".
std::string ResourceLoader::locateFirstError(const std::string& log) const {
    static const std::regex located(R"((?:ERROR: )?\d+[:(](\d+)\)?[:(]?[^\n]*)");
    std::smatch match;
    if (!std::regex_search(log, match, located)) {
        return "";
    }
    const std::size_t line = std::stoul(match[1].str());
    if (line < 1 || line > sourceLines.size()) {
        return "";
    }
    const SourceLine& origin = sourceLines[line - 1];
    return "First error in " + origin.file + ", line " + std::to_string(origin.line) + ": " +
           match[0].str();
}

bool ResourceLoader::includeFailed(const std::string& line, const std::string& fileName,
                                   int depth) {
    return fail("Failed to include '" + line + "' in " + fileName + depthText(depth));
}

bool ResourceLoader::shaderInclude(std::string& out, std::vector<std::string> lines,
                                   std::string folder, std::string fileName, int depth) {
    if (depth == 0) {
        includeCount = 0;
    }
    int lineNumber = 0;
    for (const std::string& line : lines) {
        ++lineNumber;
        auto keep = [&]() {
            out += line + "\n";
            sourceLines.push_back({fileName, lineNumber});
        };
        if (line.size() < SHORTEST_INCLUDE || line[0] != '#') {
            keep();
            continue;
        }
        StringTokenizer tokens(line, " ");
        if (tokens.countTokens() < 2) {
            keep();
            continue;
        }
        const std::string directive = StringUtils::trim(tokens.getNext());
        const std::string name = StringUtils::trim(tokens.getNext());
        if (directive != "#include") {
            keep();
            continue;
        }
        if (depth >= MAX_INCLUDE_DEPTH || includeCount >= MAX_INCLUDES) {
            return includeFailed(line, fileName, depth);
        }
        ++includeCount;
        if (verbose) {
            std::cout << depth << " : Including " << name << " from " << fileName << std::endl;
        }
        std::unique_ptr<File> file(openShaderFile(folder + name));
        KVTDemosys::addMiscResources(folder + name);
        if (file == nullptr || !file->exists()) {
            return includeFailed(line, fileName, depth);
        }
        if (!shaderInclude(out, file->getAsLines(), folder, name, depth + 1)) {
            return false;
        }
    }
    return true;
}

bool ResourceLoader::preprocess(std::string& source, const ResourceInfo::ShaderInfo& entry,
                                const std::string& extension) {
    const std::string path = KVTIO::ShaderPath + entry.file + extension;
    std::unique_ptr<File> file(openShaderFile(path));
    if (file == nullptr || !file->exists()) {
        const std::string kind = extension == ".vert" ? "Vertex" : "Fragement";
        return fail(kind + " shader '" + entry.file + extension + "' not found");
    }
    sourceLines.clear();
    addShaderParams(source, entry.params);
    return shaderInclude(source, file->getAsLines(), KVTIO::ShaderPath, entry.file + extension, 0);
}

bool ResourceLoader::loadShader(Shader* shader, ResourceInfo::ShaderInfo entry) {
    std::string vertex;
    if (!preprocess(vertex, entry, ".vert")) {
        return false;
    }
    if (!shader->setVertexSource(vertex)) {
        return fail("Error while compiling vertex shader\nShader: " + entry.file + ".vert\n" +
                    locateFirstError(shader->getErrorMessage()) + "\n" + shader->getErrorMessage());
    }
    std::string fragment;
    if (!preprocess(fragment, entry, ".frag")) {
        return false;
    }
    if (!shader->setFragmentSource(fragment)) {
        return fail("Error while compiling fragment shader\nShader: " + entry.file + ".frag\n" +
                    locateFirstError(shader->getErrorMessage()) + "\n" + shader->getErrorMessage());
    }
    if (!shader->link()) {
        return fail("Error while linking shader pair\nShader: " + entry.file + "\n" +
                    shader->getErrorMessage());
    }
    return true;
}

bool ResourceLoader::loadTextureEntry(const ResourceInfo::TextureInfo& entry) {
    DataTexturePool* pool = KVTDemosys::textureDataPool;
    if (pool->isFileInPool(entry.file)) {
        return true;
    }
    const std::string path = KVTIO::TexturePath + entry.file;
    std::cout << "Load : " << path << std::endl;
    Texture* texture = KVTIO::loadTexture(path, entry.target, entry.mipmap);
    if (texture == nullptr) {
        return fail("Failed to load texture!\nFile : '" + path + "'");
    }
    texture->setFilename(entry.file);
    pool->addTexture(entry.key, texture);
    return true;
}

bool ResourceLoader::createDataPools() {
    std::cout << "[Creating DataPools]" << std::endl;
    KVTDemosys::sceneDataPool = new DataObjectPool;
    KVTDemosys::textureDataPool = new DataTexturePool;
    KVTDemosys::animDataPool = new DataAnimationPool;
    KVTDemosys::effectTemplateDataPool = new DataEffectPool;
    KVTDemosys::effectDataPool = new DataEffectPool;
    KVTDemosys::binaryDataPool = new DataBinaryPool;
    KVTDemosys::shaderDataPool = new DataShaderPool;
    KVTDemosys::fboDataPool = new DataFBOPool;
    return true;
}

bool ResourceLoader::initScreen(ScreenMetrics* metrics, std::string title) {
    KVTDemosys::resources->DefineDemoParameters(metrics);
    bool opened = metrics->isFullscreen() ? KVTDemosys::screenOpen(metrics)
                                          : KVTDemosys::windowOpen(metrics, title.c_str(), nullptr);
    if (!opened) {
        return fail("Failed to open screen : " + KVTDemosys::getMessage());
    }
    metrics->initView();
    std::cout << "[Supported OpenGL Extensions]" << std::endl;
    KVTDemosys::glExtensions = new GLExtensions;
    std::cout << KVTDemosys::glExtensions->toString();
    return true;
}

void ResourceLoader::startProgress() {
    int total = static_cast<int>(KVTDemosys::SceneList.size() + KVTDemosys::TextureList.size() + 3 +
                                 KVTDemosys::AnimationList.size() + KVTDemosys::BinaryList.size() +
                                 KVTDemosys::VideoList.size());
    if (KVTDemosys::pBar == nullptr) {
        KVTDemosys::pBar = new ProgressBar(0.09f, 1.2f, 0.0f, total);
    }
    KVTDemosys::pBar->setTicks(total);
    KVTDemosys::pBar->loadData();
    KVTDemosys::pBar->draw();
}

void ResourceLoader::tickProgress() {
    if (KVTDemosys::pBar != nullptr) {
        KVTDemosys::pBar->tick();
    }
}

bool ResourceLoader::loadDataFiles() {
    std::cout << "[Defining Resources]" << std::endl;
    KVTDemosys::resources->DefineResouces();
    if (!checkRequiredExtensions()) {
        return false;
    }
    std::cout << "[Define Effects]" << std::endl;
    KVTDemosys::resources->DefineEffects();
    startProgress();
    if (!loadShaders() || !loadScenes() || !loadTextures()) {
        return false;
    }
    DataObjectPool* scenes = KVTDemosys::sceneDataPool;
    for (int i = 0; i < scenes->size(); ++i) {
        scenes->getObject(i)->mapTextureData();
    }
    if (KVTDemosys::shaderCache == nullptr) {
        KVTDemosys::shaderCache = new ShaderCache;
    }
    KVTDemosys::shaderCache->init();
    return loadBinaries() && loadAnimations();
}

bool ResourceLoader::checkRequiredExtensions() {
    const std::vector<std::string>& required = KVTDemosys::resources->getRequiredExtensions();
    if (required.empty()) {
        return true;
    }
    // The record made when the screen opened holds the checklist; a loader used without
    // opening a screen reads the driver's list once for itself.
    std::unique_ptr<GLExtensions> ownRecord;
    GLExtensions* available = KVTDemosys::glExtensions;
    if (available == nullptr) {
        ownRecord = std::make_unique<GLExtensions>();
        available = ownRecord.get();
    }
    for (const std::string& name : required) {
        available->addToChecklist(name);
    }
    return available->isSupported() || fail(available->getErrorMessage());
}

bool ResourceLoader::loadShaders() {
    std::cout << "[Loading Shaders]" << std::endl;
    for (const ResourceInfo::ShaderInfo& entry : KVTDemosys::ShaderList) {
        std::cout << "-> Loading " << entry.file << std::endl;
        auto shader = std::make_unique<Shader>();
        if (!loadShader(shader.get(), entry)) {
            return false;
        }
        Shader* loaded = shader.release();
        KVTDemosys::shaderDataPool->addShader(entry.key, loaded);
        if (verbose) {
            std::cout << "Adding shader '" << entry.key << "' = " << loaded->toString()
                      << std::endl;
        }
        loaded->use();
        loaded->release();
    }
    return true;
}

bool ResourceLoader::loadScenes() {
    std::cout << "[Loading 3D Objects]" << std::endl;
    for (const ResourceInfo::SceneInfo& entry : KVTDemosys::SceneList) {
        std::string path = KVTIO::ScenePath + entry.file;
        std::cout << "Loading : '" << path << std::endl;
        KVTSceneLoader sceneLoader(path);
        std::unique_ptr<KVTScene> scene(sceneLoader.loadScene());
        if (!sceneLoader.isValid() || scene == nullptr) {
            return fail(sceneLoader.getErrorMessage());
        }
        KVTDemosys::sceneDataPool->addObject(entry.key, scene.release());
        tickProgress();
    }
    return true;
}

bool ResourceLoader::loadTextures() {
    std::cout << "[Loading Textures]" << std::endl;
    for (const ResourceInfo::TextureInfo& entry : KVTDemosys::TextureList) {
        if (!loadTextureEntry(entry)) {
            return false;
        }
        tickProgress();
    }
    return true;
}

bool ResourceLoader::loadBinaries() {
    std::cout << "[Loading Binary Data]" << std::endl;
    for (const ResourceInfo::BinaryInfo& entry : KVTDemosys::BinaryList) {
        std::string path = KVTIO::MiscPath + entry.file;
        std::cout << "Loading binary : '" << path << "'" << std::endl;
        Binary* binary = KVTIO::loadBinary(path);
        if (binary == nullptr) {
            return fail("Failed to binary data!\nFile : '" + path + "'");
        }
        KVTDemosys::binaryDataPool->addData(entry.key, binary);
    }
    return true;
}

bool ResourceLoader::loadAnimations() {
    std::cout << "[Loading Animation Data]" << std::endl;
    for (const ResourceInfo::AnimationInfo& entry : KVTDemosys::AnimationList) {
        std::string path = KVTIO::MiscPath + entry.file;
        AnimationParser parser(path);
        if (!parser.isValid()) {
            return fail(parser.getErrorMessage());
        }
        KVTDemosys::animDataPool->addAnimation(entry.key, parser.takeAnimation().release());
        std::cout << "Loaded '" << path << "' using alias " << entry.key << std::endl;
        tickProgress();
    }
    return true;
}

bool ResourceLoader::createEffectObjects() {
    KVTDemosys::resources->DefineEffectInstances();
    return true;
}

bool ResourceLoader::createTrackData() {
    std::cout << "[Create track data]" << std::endl;
    std::vector<std::string> names;
    std::vector<Effect*> effects;
    DataEffectPool* pool = KVTDemosys::effectDataPool;
    for (int i = 0; i < pool->size(); ++i) {
        Effect* effect = pool->getEffect(pool->getKey(i));
        if (effect->isTracked()) {
            names.push_back(pool->getKey(i));
            effects.push_back(effect);
        }
    }
    std::cout << "Loading track data from index file" << std::endl;
    TrackSystemIO io(KVTIO::TrackPath);
    KVTDemosys::tracks = io.loadPack(names, effects);
    KVTDemosys::tracks->setRowRate(TrackSystem::DefaultRowRate);
    if (io.packUnreadable()) {
        // Every track is an empty dummy: the demo would show nothing.
        initEffects();
        return fail(io.getErrors().front());
    }
    bool startStopValid = KVTDemosys::tracks->validateStartStopTracks();
    bool interpolateValid = KVTDemosys::tracks->validateInterpolateTracks();
    if (!startStopValid || !interpolateValid) {
        return fail("Track data failed validation: a start/stop track has keyframe mismatch");
    }
    initEffects();
    return true;
}

void ResourceLoader::initEffects() {
    std::cout << "[Initializing Effect Instances]" << std::endl;
    DataEffectPool* pool = KVTDemosys::effectDataPool;
    for (int i = 0; i < pool->size(); ++i) {
        std::string name = pool->getKey(i);
        std::cout << "-> Initializing " << name << std::endl;
        pool->getEffect(name)->init();
        KVTDemosys::glErrPrint(name + ":init()");
    }
}

// Offline runs play no sound. Those that time the load decode the music all the same, so the
// load takes as long as a real run's and a broken music file fails as it would there.
bool ResourceLoader::checkMusicOffline() {
    if (KVTDemosys::MusicFile.empty()) {
        return true;
    }
    const std::string file = KVTIO::SoundPath + KVTDemosys::MusicFile;
    if (!decodeMusicOffline) {
        std::cout << "Sound : offline frames need no music; '" << file << "' is not decoded"
                  << std::endl;
        return true;
    }
    MusicTimer music(file, TrackSystem::globalRowRate());
    if (!music.decodeOnly()) {
        return fail("Failed to load sound!\nFile : '" + file + "'\n" + music.getMessage());
    }
    std::cout << "Sound : decoded '" << file << "' (not played offline)" << std::endl;
    return true;
}

bool ResourceLoader::loadSound() {
    std::cout << "[Setting up sound]" << std::endl;
    unsigned int rowRate = TrackSystem::globalRowRate();
    if (frameStepMs > 0.0) {
        if (!checkMusicOffline()) {
            return false;
        }
        KVTDemosys::timer = new FrameTimer(rowRate, frameStepMs);
    } else if (KVTDemosys::MusicFile.empty()) {
        KVTDemosys::timer = new Timer(rowRate);
    } else {
        KVTDemosys::timer = new MusicTimer(KVTIO::SoundPath + KVTDemosys::MusicFile, rowRate);
    }
    if (!KVTDemosys::timer->init()) {
        // The clock's own message says why, after the loader's.
        const std::string why = KVTDemosys::timer->getMessage();
        return fail("Failed to load sound!\nFile : '" + KVTIO::SoundPath + KVTDemosys::MusicFile +
                    "'" + (why.empty() ? "" : "\n" + why));
    }
    tickProgress();
    return true;
}

// Without music the clock is started as well, so a production without a soundtrack (and
// offline rendering) still moves through its time line.
void ResourceLoader::initDemo() {
    if (verbose) {
        std::cout << "[Getting Startpos]" << std::endl;
        std::cout << "startpos = " << KVTDemosys::DemoStartTime.toString() << std::endl;
    }
    KVTDemosys::timer->setTime(KVTDemosys::DemoStartTime.getTicks());
    tickProgress();
    std::cout << "[Demo Init]" << std::endl;
    if (!KVTDemosys::MusicFile.empty() && frameStepMs <= 0.0) {
        std::cout << "Play : " << KVTDemosys::MusicFile << std::endl;
        SDL_ShowCursor(SDL_DISABLE);
    }
    KVTDemosys::timer->play();
    std::cout << "[Demo Init END]" << std::endl;
}

bool ResourceLoader::reloadShaders() {
    std::cout << "[Reloading Shaders]" << std::endl;
    for (const ResourceInfo::ShaderInfo& entry : KVTDemosys::ShaderList) {
        Shader* shader = KVTDemosys::shaderDataPool->getShader(entry.key);
        if (shader == nullptr) {
            continue;
        }
        if (!loadShader(shader, entry)) {
            std::cout << "Error while recompiling '" << entry.key << "' : " << errorMessage
                      << std::endl;
            continue;
        }
        std::cout << "Adding shader '" << entry.key << "' = " << shader->toString() << std::endl;
    }
    std::cout << "[Reloading Shaders] ... Done!" << std::endl;
    return true;
}

template <typename T> static void deleteAndClear(T*& object) {
    delete object;
    object = nullptr;
}

bool ResourceLoader::dispose() {
    deleteAndClear(KVTDemosys::pBar);
    deleteAndClear(KVTDemosys::shaderCache);
    std::cout << "[Deleting Pools]" << std::endl;
    deleteAndClear(KVTDemosys::sceneDataPool);
    deleteAndClear(KVTDemosys::textureDataPool);
    deleteAndClear(KVTDemosys::animDataPool);
    deleteAndClear(KVTDemosys::effectTemplateDataPool);
    deleteAndClear(KVTDemosys::effectDataPool);
    deleteAndClear(KVTDemosys::binaryDataPool);
    deleteAndClear(KVTDemosys::shaderDataPool);
    deleteAndClear(KVTDemosys::fboDataPool);
    std::cout << "delete KVTDemosys::glExtensions" << std::endl;
    deleteAndClear(KVTDemosys::glExtensions);
    std::cout << "delete KVTDemosys::tracks" << std::endl;
    deleteAndClear(KVTDemosys::tracks);
    std::cout << "delete KVTDemosys::timer" << std::endl;
    deleteAndClear(KVTDemosys::timer);
    return true;
}

namespace {

const std::string ARCHIVE = "resources.7z";

} // namespace

std::vector<std::string> ResourceLoader::packedResources() {
    std::vector<std::string> paths;
    if (!KVTDemosys::MusicFile.empty()) {
        paths.push_back(KVTIO::SoundPath + KVTDemosys::MusicFile);
    }
    if (KVTDemosys::textureDataPool != nullptr) {
        for (const auto& entry : KVTDemosys::textureDataPool->getFilemap()) {
            paths.push_back(KVTIO::TexturePath + entry.first);
        }
    }
    for (const ResourceInfo::SceneInfo& scene : KVTDemosys::SceneList) {
        paths.push_back(KVTIO::ScenePath + scene.file);
        if (File::exists(KVTIO::ScenePath + scene.file + ".kf")) {
            paths.push_back(KVTIO::ScenePath + scene.file + ".kf");
        }
    }
    for (const ResourceInfo::AnimationInfo& animation : KVTDemosys::AnimationList) {
        paths.push_back(KVTIO::MiscPath + animation.file);
    }
    for (const ResourceInfo::BinaryInfo& binary : KVTDemosys::BinaryList) {
        paths.push_back(KVTIO::MiscPath + binary.file);
    }
    for (const ResourceInfo::ShaderInfo& shader : KVTDemosys::ShaderList) {
        paths.push_back(KVTIO::ShaderPath + shader.file + ".vert");
        paths.push_back(KVTIO::ShaderPath + shader.file + ".frag");
    }
    paths.push_back(KVTIO::TrackPath + "index.list");
    paths.push_back(KVTIO::TrackPath + "track.data");
    paths.insert(paths.end(), KVTDemosys::miscResources.begin(), KVTDemosys::miscResources.end());
    for (int i = 0; KVTDemosys::pBar != nullptr && i < KVTDemosys::pBar->getResourceCount(); ++i) {
        paths.push_back(KVTDemosys::pBar->getResource(i));
    }
    return paths;
}

bool ResourceLoader::createCopyScript(std::string archiver, std::string scriptName) {
    std::string script = "rm  " + ARCHIVE + " \n" + "rm " + ARCHIVE + ".log\n";
    for (const std::string& path : packedResources()) {
        script +=
            archiver + " a -ms=off -mx=9  " + ARCHIVE + " " + path + " >> " + ARCHIVE + ".log \n";
    }
    File file(scriptName, File::TRUNCATE);
    file.put(script);
    return file.write();
}
