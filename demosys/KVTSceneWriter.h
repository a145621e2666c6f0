#pragma once

#include "KVTSceneRecord.h"

#include <string>
#include <vector>

class File;

// Writes what KVTSceneLoader reads: a scene file from mesh, texture, material, light and
// node records (each section in the order added) and, when there are animations, the
// animation file beside it. A string is written up to its first zero byte; an empty one
// reads back as "Object".
class KVTSceneWriter {
public:
    void addMesh(KVTSceneRecord::Mesh mesh) { meshes.push_back(std::move(mesh)); }
    void addTexture(KVTSceneRecord::Texture texture) { textures.push_back(std::move(texture)); }
    void addMaterial(KVTSceneRecord::Material material) {
        materials.push_back(std::move(material));
    }
    void addLight(KVTSceneRecord::Light light) { lights.push_back(light); }
    void addNode(KVTSceneRecord::Node node) { nodes.push_back(std::move(node)); }
    // Every key needs a time, a translation and a rotation.
    void addAnimation(KVTSceneRecord::Animation animation);
    // The animation file's first value, which the loader skips.
    void setAnimationHeader(int value) { animationHeader = value; }

    std::vector<unsigned char> getSceneBytes() const;
    // Empty when there are no animations.
    std::vector<unsigned char> getAnimationBytes() const;

    // Writes path and, with animations, path + ".kf". False with a message when a file
    // cannot be written.
    bool write(const std::string& path);
    std::string getErrorMessage() const { return errorMessage; }

private:
    static void putMesh(File& out, const KVTSceneRecord::Mesh& mesh);
    static void putMaterial(File& out, const KVTSceneRecord::Material& material);
    static void putNode(File& out, const KVTSceneRecord::Node& node);
    static void putAnimation(File& out, const KVTSceneRecord::Animation& animation);
    bool writeFile(const std::string& path, const std::vector<unsigned char>& bytes);

    std::vector<KVTSceneRecord::Mesh> meshes;
    std::vector<KVTSceneRecord::Texture> textures;
    std::vector<KVTSceneRecord::Material> materials;
    std::vector<KVTSceneRecord::Light> lights;
    std::vector<KVTSceneRecord::Node> nodes;
    std::vector<KVTSceneRecord::Animation> animations;
    int animationHeader = 0;
    std::string errorMessage;
};
