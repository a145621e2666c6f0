#include "KVTSceneWriter.h"

#include "File.h"
#include "KVTAssert.h"

#include <cstdio>

namespace {

void putString(File& out, const std::string& text) {
    out.put(text.substr(0, text.find('\0')));
    out.put(static_cast<unsigned char>(0));
}

void putFloats(File& out, const float* values, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        out.put(values[i]);
    }
}

void putFloats(File& out, const std::vector<float>& values) {
    putFloats(out, values.data(), values.size());
}

} // namespace

void KVTSceneWriter::addAnimation(KVTSceneRecord::Animation animation) {
    KVT_ASSERT(animation.translations.size() == animation.times.size() &&
                   animation.rotations.size() == animation.times.size(),
               "demosys/KVTSceneWriter", "addAnimation");
    animations.push_back(std::move(animation));
}

void KVTSceneWriter::putMesh(File& out, const KVTSceneRecord::Mesh& mesh) {
    out.put(mesh.id);
    putString(out, mesh.name);
    out.put(mesh.vertexCount());
    out.put(mesh.vertexOffset);
    out.put(mesh.normalCount());
    out.put(mesh.normalOffset);
    out.put(mesh.texcoordCount());
    out.put(mesh.texcoordOffset);
    out.put(static_cast<int>(mesh.indices.size()));
    putFloats(out, mesh.bboxMin.data(), 3);
    putFloats(out, mesh.bboxMax.data(), 3);
    // Whole elements only, as the counts say.
    putFloats(out, mesh.positions.data(), 3 * static_cast<std::size_t>(mesh.vertexCount()));
    putFloats(out, mesh.normals.data(), 3 * static_cast<std::size_t>(mesh.normalCount()));
    putFloats(out, mesh.texcoords.data(), 2 * static_cast<std::size_t>(mesh.texcoordCount()));
    for (int index : mesh.indices) {
        out.put(index);
    }
}

void KVTSceneWriter::putMaterial(File& out, const KVTSceneRecord::Material& material) {
    out.put(material.id);
    putString(out, material.name);
    putFloats(out, material.ambient.data(), 4);
    putFloats(out, material.diffuse.data(), 4);
    out.put(material.textureId);
}

void KVTSceneWriter::putNode(File& out, const KVTSceneRecord::Node& node) {
    out.put(node.id);
    out.put(node.type);
    if (node.type != KVTSceneRecord::EMPTY_NODE) {
        out.put(node.ref);
    }
    out.put(node.parent);
    putString(out, node.name);
    putFloats(out, node.matrix.data(), 16);
    if (node.type != KVTSceneRecord::EMPTY_NODE) {
        out.put(node.tail);
    }
}

void KVTSceneWriter::putAnimation(File& out, const KVTSceneRecord::Animation& animation) {
    out.put(static_cast<int>(animation.times.size()));
    out.put(animation.kind);
    out.put(animation.target);
    putFloats(out, animation.times);
    for (const KVTSceneRecord::Float3& t : animation.translations) {
        putFloats(out, t.data(), 3);
    }
    // The rotations are written axis by axis.
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const KVTSceneRecord::Float3& r : animation.rotations) {
            out.put(r[axis]);
        }
    }
}

std::vector<unsigned char> KVTSceneWriter::getSceneBytes() const {
    File out("scene");
    out.put(KVTSceneRecord::VERSION);
    out.put(static_cast<int>(meshes.size()));
    for (const KVTSceneRecord::Mesh& mesh : meshes) {
        putMesh(out, mesh);
    }
    out.put(static_cast<int>(textures.size()));
    for (const KVTSceneRecord::Texture& texture : textures) {
        out.put(texture.id);
        putString(out, texture.name);
        putString(out, texture.file);
    }
    out.put(static_cast<int>(materials.size()));
    for (const KVTSceneRecord::Material& material : materials) {
        putMaterial(out, material);
    }
    out.put(static_cast<int>(lights.size()));
    for (const KVTSceneRecord::Light& light : lights) {
        out.put(light.id);
        out.put(light.type);
        putFloats(out, light.colour.data(), 3);
    }
    out.put(static_cast<int>(nodes.size()));
    for (const KVTSceneRecord::Node& node : nodes) {
        putNode(out, node);
    }
    return out.getUnsigned();
}

std::vector<unsigned char> KVTSceneWriter::getAnimationBytes() const {
    if (animations.empty()) {
        return {};
    }
    File out("animations");
    out.put(animationHeader);
    out.put(static_cast<int>(animations.size()));
    for (const KVTSceneRecord::Animation& animation : animations) {
        putAnimation(out, animation);
    }
    return out.getUnsigned();
}

bool KVTSceneWriter::writeFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    File out(path, File::WRITE);
    out.setData(bytes);
    if (!out.exists() || !out.write()) {
        errorMessage = "Cannot write '" + path + "'";
        return false;
    }
    return true;
}

bool KVTSceneWriter::write(const std::string& path) {
    if (!writeFile(path, getSceneBytes())) {
        return false;
    }
    if (animations.empty()) {
        // A stale animation file beside the scene would be loaded with it.
        std::remove((path + ".kf").c_str());
        return true;
    }
    return writeFile(path + ".kf", getAnimationBytes());
}
