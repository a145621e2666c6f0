#include "ResourceLoader.h"

#include "DataTexturePool.h"
#include "File.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "Shader.h"
#include "StringTokenizer.h"
#include "StringUtils.h"
#include "Texture.h"

#include <iostream>
#include <memory>

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
    }
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
    for (const std::string& line : lines) {
        if (line.size() < SHORTEST_INCLUDE || line[0] != '#') {
            out += line + "\n";
            continue;
        }
        StringTokenizer tokens(line, " ");
        if (tokens.countTokens() < 2) {
            out += line + "\n";
            continue;
        }
        const std::string directive = StringUtils::trim(tokens.getNext());
        const std::string name = StringUtils::trim(tokens.getNext());
        if (directive != "#include") {
            out += line + "\n";
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
        return fail(kind + " shader '" + path + "' not found");
    }
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
                    shader->getErrorMessage());
    }
    std::string fragment;
    if (!preprocess(fragment, entry, ".frag")) {
        return false;
    }
    if (!shader->setFragmentSource(fragment)) {
        return fail("Error while compiling fragment shader\nShader: " + entry.file + ".frag\n" +
                    shader->getErrorMessage());
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
