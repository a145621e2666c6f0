#include "ShaderReloader.h"

#include "DataShaderPool.h"
#include "File.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "Shader.h"

#include <filesystem>
#include <memory>

ShaderReloader::ShaderReloader(std::string sourceFolder)
    : folder(std::filesystem::path(sourceFolder).lexically_normal().string()) {
    for (const ResourceInfo::ShaderInfo& entry : KVTDemosys::ShaderList) {
        recordFilesRead(entry);
    }
}

// Loading asks for "resources/shaders/<name>"; the author's copy is "<folder>/<name>".
std::string ShaderReloader::sourcePath(const std::string& resourcePath) const {
    std::string name = resourcePath;
    if (name.compare(0, KVTIO::ShaderPath.size(), KVTIO::ShaderPath) == 0) {
        name = name.substr(KVTIO::ShaderPath.size());
    }
    return (std::filesystem::path(folder) / name).lexically_normal().string();
}

File* ShaderReloader::openShaderFile(const std::string& path) {
    const std::string source = sourcePath(path);
    if (reading != nullptr) {
        reading->insert(source);
    }
    return KVTIO::loadTextFile(source, KVTIO::KVT_RESOURCES_FLAT);
}

// Preprocesses both sources without compiling, only to learn which files they include.
void ShaderReloader::recordFilesRead(const ResourceInfo::ShaderInfo& entry) {
    std::set<std::string>& files = filesRead[entry.key];
    files.clear();
    reading = &files;
    for (const char* extension : {".vert", ".frag"}) {
        std::unique_ptr<File> file(openShaderFile(KVTIO::ShaderPath + entry.file + extension));
        std::string unused;
        if (file != nullptr && file->exists()) {
            shaderInclude(unused, file->getAsLines(), KVTIO::ShaderPath, entry.file + extension, 0);
        }
    }
    reading = nullptr;
}

bool ShaderReloader::rebuild(const ResourceInfo::ShaderInfo& entry,
                             std::vector<std::string>& errors) {
    Shader* running = KVTDemosys::shaderDataPool->getShader(entry.key);
    if (running == nullptr) {
        return false;
    }
    Shader fresh;
    std::set<std::string> read;
    reading = &read;
    const bool built = loadShader(&fresh, entry);
    reading = nullptr;
    if (!built) {
        // A failed build stops at its first error: the files it never reached still count.
        filesRead[entry.key].insert(read.begin(), read.end());
        errors.push_back("Shader '" + entry.key + "' kept its old program:\n" + getErrorMessage());
        return false;
    }
    filesRead[entry.key] = std::move(read);
    running->swapProgram(fresh);
    return true;
}

int ShaderReloader::rebuildUsers(const std::vector<std::string>& changedFiles,
                                 std::vector<std::string>& errors) {
    int rebuilt = 0;
    for (const ResourceInfo::ShaderInfo& entry : KVTDemosys::ShaderList) {
        const std::set<std::string>& files = filesRead[entry.key];
        for (const std::string& changed : changedFiles) {
            if (files.count(std::filesystem::path(changed).lexically_normal().string()) != 0) {
                rebuilt += rebuild(entry, errors) ? 1 : 0;
                break;
            }
        }
    }
    return rebuilt;
}

int ShaderReloader::rebuildAll(std::vector<std::string>& errors) {
    int rebuilt = 0;
    for (const ResourceInfo::ShaderInfo& entry : KVTDemosys::ShaderList) {
        rebuilt += rebuild(entry, errors) ? 1 : 0;
    }
    return rebuilt;
}
