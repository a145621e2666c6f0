#pragma once

#include "ResourceLoader.h"

#include <map>
#include <set>
#include <string>
#include <vector>

// Recompiles the production's declared shaders from their source folder (where authors edit
// them) instead of the resources beside the program. A shader is rebuilt into a new program
// and only a successful build replaces the running one, so effects keep their Shader pointers
// and a typo never leaves an effect without a program. Knows which files (sources and
// includes) each shader reads, so a change rebuilds only the shaders that use the file.
class ShaderReloader : private ResourceLoader {
public:
    explicit ShaderReloader(std::string sourceFolder);

    // Rebuilds the shaders that read any of the files (paths under the source folder) and
    // returns how many were rebuilt; failures are listed in errors, each with the file and
    // line of the first compiler error.
    int rebuildUsers(const std::vector<std::string>& changedFiles,
                     std::vector<std::string>& errors);
    // Rebuilds every declared shader.
    int rebuildAll(std::vector<std::string>& errors);

private:
    File* openShaderFile(const std::string& path) override;
    bool rebuild(const ResourceInfo::ShaderInfo& entry, std::vector<std::string>& errors);
    void recordFilesRead(const ResourceInfo::ShaderInfo& entry);
    std::string sourcePath(const std::string& resourcePath) const;

    std::string folder;
    // Source files read by each shader, by key, as paths under the source folder.
    std::map<std::string, std::set<std::string>> filesRead;
    std::set<std::string>* reading = nullptr;
};
