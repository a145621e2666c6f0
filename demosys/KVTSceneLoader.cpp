#include "KVTSceneLoader.h"

#include "File.h"
#include "KVTAnimation.h"
#include "KVTCamera.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "KVTLight.h"
#include "KVTMaterial.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "VBO.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <memory>

using KVTSceneRecord::Mesh;
using KVTSceneRecord::Node;

namespace {

// Bytes of one animation key: its time, translation and rotation.
const std::uint64_t KEY_BYTES = 7 * 4;
// The last whole second whose milliseconds fit in 32 bits.
const unsigned int LAST_KEY_SECOND = 4294967u;

template <typename T> T* lookUp(const std::map<unsigned int, T*>& map, unsigned int id) {
    auto found = map.find(id);
    return found != map.end() ? found->second : nullptr;
}

// Keys fall on whole seconds: truncated, at least 0, and within 32-bit milliseconds.
unsigned int keyMilliseconds(float seconds) {
    if (!(seconds > 0)) {
        return 0;
    }
    if (seconds >= static_cast<float>(LAST_KEY_SECOND)) {
        return LAST_KEY_SECOND * 1000u;
    }
    return static_cast<unsigned int>(seconds) * 1000u;
}

// The caller has made sure the file holds count values.
std::vector<float> readFloats(File* file, std::size_t count) {
    std::vector<float> values(count);
    for (float& value : values) {
        value = file->readFloat();
    }
    return values;
}

std::vector<int> readInts(File* file, std::size_t count) {
    std::vector<int> values(count);
    for (int& value : values) {
        value = file->readInt();
    }
    return values;
}

void echoMatrixRows(const float* m) {
    std::cout << "Matrix {" << std::endl;
    for (int row = 0; row < 4; ++row) {
        std::cout << "  [" << m[row * 4] << ", " << m[row * 4 + 1] << ", " << m[row * 4 + 2] << ", "
                  << m[row * 4 + 3] << "]" << std::endl;
    }
    std::cout << "}" << std::endl;
}

} // namespace

KVTSceneLoader::KVTSceneLoader(std::string scenePath)
    : path(std::move(scenePath)), scene(new KVTScene) {}

KVTSceneLoader::~KVTSceneLoader() {
    if (!treeBuilt) {
        for (auto& [id, object] : objects) {
            delete object;
        }
    }
    for (auto& [id, light] : lights) {
        if (placedLights.count(light) == 0) {
            delete light;
        }
    }
    if (!handedOut) {
        delete scene;
    }
}

File* KVTSceneLoader::openFile(const std::string& filePath) {
    return KVTIO::loadFile(filePath);
}

void KVTSceneLoader::uploadMesh(VBO* vbo, int corners, int vertexFloats, int normalFloats,
                                int uvFloats, const std::vector<float>& data) {
    vbo->setVertexBuffer(corners, vertexFloats, normalFloats, uvFloats, data.data());
}

bool KVTSceneLoader::fail(std::string message) {
    errorMessage = std::move(message);
    valid = false;
    return false;
}

bool KVTSceneLoader::corrupt(const std::string& what) {
    return fail("Invalid scene file '" + path + "': " + what);
}

bool KVTSceneLoader::corruptAnimations(const std::string& what) {
    return fail("Invalid animation file '" + path + ".kf': " + what);
}

bool KVTSceneLoader::checkReadable(File* file, const std::string& where) {
    return !file->overrun() || corrupt("the file ends inside " + where);
}

VBO* KVTSceneLoader::getVBOByID(unsigned int id) const {
    return lookUp(meshes, id);
}

KVTObject* KVTSceneLoader::getObjectByID(unsigned int id) const {
    return lookUp(objects, id);
}

KVTCamera* KVTSceneLoader::getCameraByID(unsigned int id) const {
    return lookUp(cameras, id);
}

KVTLight* KVTSceneLoader::getLightByID(unsigned int id) const {
    return lookUp(lights, id);
}

KVTScene* KVTSceneLoader::loadScene() {
    std::unique_ptr<File> file(openFile(path));
    if (file == nullptr || !file->exists()) {
        fail("Object '" + path + "' not found");
        return nullptr;
    }
    const int version = file->readInt();
    if (verbose) {
        std::cout << "File version : " << version << std::endl;
    }
    if (!checkReadable(file.get(), "the version")) {
        return nullptr;
    }
    if (version != KVTSceneRecord::VERSION) {
        fail("Invalid object version in file '" + path + "', File version states version " +
             std::to_string(version) + ". Expected version " +
             std::to_string(KVTSceneRecord::VERSION) + ".");
        return nullptr;
    }
    if (!readSection(file.get(), "Number of meshes : ", "meshes", &KVTSceneLoader::loadMesh) ||
        !readSection(file.get(), "Number of textures ", "textures", &KVTSceneLoader::loadTexture) ||
        !readSection(file.get(), "Number of materials ", "materials",
                     &KVTSceneLoader::loadMaterial) ||
        !readSection(file.get(), "Number of lights ", "lights", &KVTSceneLoader::loadLight)) {
        return nullptr;
    }
    if (verbose) {
        std::cout << "--- Scene Tree ---" << std::endl;
    }
    if (!readSection(file.get(), "Number of nodes ", "nodes", &KVTSceneLoader::loadNode)) {
        return nullptr;
    }
    buildSceneTree();
    if (!loadAnimations()) {
        return nullptr;
    }
    handedOut = true;
    return scene;
}

bool KVTSceneLoader::readSection(File* file, const char* label, const char* records,
                                 bool (KVTSceneLoader::*reader)(File*)) {
    const int count = file->readInt();
    if (verbose) {
        std::cout << label << count << std::endl;
    }
    if (!checkReadable(file, std::string("the number of ") + records)) {
        return false;
    }
    // Every record takes bytes, so a count larger than the file holds ends at its end.
    for (int i = 0; i < count; ++i) {
        if (!(this->*reader)(file)) {
            return false;
        }
    }
    return true;
}

bool KVTSceneLoader::readMeshRecord(File* file, Mesh& mesh) {
    mesh.id = file->readInt();
    mesh.name = file->readString();
    const int vertexCount = file->readInt();
    mesh.vertexOffset = file->readInt();
    const int normalCount = file->readInt();
    mesh.normalOffset = file->readInt();
    const int texcoordCount = file->readInt();
    mesh.texcoordOffset = file->readInt();
    const int indexCount = file->readInt();
    for (float& value : mesh.bboxMin) {
        value = file->readFloat();
    }
    for (float& value : mesh.bboxMax) {
        value = file->readFloat();
    }
    const std::string what = "mesh " + std::to_string(mesh.id) + " '" + mesh.name + "'";
    if (!checkReadable(file, what)) {
        return false;
    }
    if (vertexCount < 0 || normalCount < 0 || texcoordCount < 0 || indexCount < 0) {
        return corrupt(what + " has a negative count");
    }
    if (vertexCount == 0 && normalCount == 0 && texcoordCount == 0) {
        return corrupt(what + " has no vertex streams");
    }
    const std::uint64_t bytes =
        4 * (3ull * vertexCount + 3ull * normalCount + 2ull * texcoordCount + indexCount);
    if (bytes > file->bytesLeft()) {
        return corrupt(what + " declares " + std::to_string(bytes) + " bytes of data, but only " +
                       std::to_string(file->bytesLeft()) + " are left");
    }
    mesh.positions = readFloats(file, 3ull * vertexCount);
    mesh.normals = readFloats(file, 3ull * normalCount);
    mesh.texcoords = readFloats(file, 2ull * texcoordCount);
    mesh.indices = readInts(file, static_cast<std::size_t>(indexCount));
    return true;
}

void KVTSceneLoader::echoMesh(const Mesh& mesh, int stride) const {
    std::cout << "Mesh id : '" << mesh.id << "'" << std::endl;
    std::cout << "Mesh name : '" << mesh.name << "'" << std::endl;
    std::cout << "Vertex    : count = " << mesh.vertexCount() << ", offset = " << mesh.vertexOffset
              << std::endl;
    std::cout << "Normal    : count = " << mesh.normalCount() << ", offset = " << mesh.normalOffset
              << std::endl;
    std::cout << "Texcoord0 : count = " << mesh.texcoordCount()
              << ", offset = " << mesh.texcoordOffset << std::endl;
    std::cout << "IndexList : count = " << mesh.indices.size() << std::endl;
    std::cout << "Index stride : " << stride << std::endl;
    std::cout << "Polygon indices : " << mesh.indices.size() / stride << std::endl;
}

bool KVTSceneLoader::deindex(const Mesh& mesh, int corners, std::vector<float>& out) {
    struct Stream {
        const std::vector<float>& elements;
        int size;
        int count;
        int offset;
        const char* name;
    };
    const Stream streams[3] = {
        {mesh.positions, 3, mesh.vertexCount(), mesh.vertexOffset, "positions"},
        {mesh.normals, 3, mesh.normalCount(), mesh.normalOffset, "normals"},
        {mesh.texcoords, 2, mesh.texcoordCount(), mesh.texcoordOffset, "texture coordinates"}};
    // Each slot of the index tuple is taken by the first present stream at that offset; a
    // slot no stream takes consumes no index. A corner holds its streams in slot order; a
    // present stream that takes no slot leaves zeros at the corner's end.
    const Stream* slots[3] = {};
    for (int slot = 0; slot < 3; ++slot) {
        for (const Stream& stream : streams) {
            if (slots[slot] == nullptr && stream.count > 0 && stream.offset == slot) {
                slots[slot] = &stream;
            }
        }
    }
    int cornerFloats = 0;
    for (const Stream& stream : streams) {
        cornerFloats += stream.count > 0 ? stream.size : 0;
    }
    out.assign(static_cast<std::size_t>(corners) * cornerFloats, 0.0f);
    // At most stride indices are taken per corner, so the list cannot run out.
    std::size_t next = 0;
    for (int corner = 0; corner < corners; ++corner) {
        float* at = out.data() + static_cast<std::size_t>(corner) * cornerFloats;
        for (const Stream* stream : slots) {
            if (stream == nullptr) {
                continue;
            }
            const int index = mesh.indices[next++];
            if (index < 0 || index >= stream->count) {
                return corrupt("mesh " + std::to_string(mesh.id) + " '" + mesh.name + "': index " +
                               std::to_string(index) + " of corner " + std::to_string(corner) +
                               " is outside its " + std::to_string(stream->count) + " " +
                               stream->name);
            }
            const float* element =
                stream->elements.data() + static_cast<std::size_t>(index) * stream->size;
            at = std::copy(element, element + stream->size, at);
        }
    }
    return true;
}

bool KVTSceneLoader::loadMesh(File* file) {
    Mesh mesh;
    if (!readMeshRecord(file, mesh)) {
        return false;
    }
    const int stride = mesh.stride();
    if (verbose) {
        echoMesh(mesh, stride);
    }
    const int corners = static_cast<int>(mesh.indices.size()) / stride;
    std::vector<float> data;
    if (!deindex(mesh, corners, data)) {
        return false;
    }
    VBO* vbo = new VBO;
    scene->addMesh(vbo);
    uploadMesh(vbo, corners, mesh.vertexCount() > 0 ? 3 : 0, mesh.normalCount() > 0 ? 3 : 0,
               mesh.texcoordCount() > 0 ? 2 : 0, data);
    vbo->setName(mesh.name);
    vbo->setUniqueID(static_cast<unsigned int>(mesh.id));
    vbo->setBBoxMin(Vector<float, 3>(mesh.bboxMin[0], mesh.bboxMin[1], mesh.bboxMin[2]));
    vbo->setBBoxMax(Vector<float, 3>(mesh.bboxMax[0], mesh.bboxMax[1], mesh.bboxMax[2]));
    meshes[static_cast<unsigned int>(mesh.id)] = vbo;
    return true;
}

bool KVTSceneLoader::loadTexture(File* file) {
    const int id = file->readInt();
    const std::string name = file->readString();
    const std::string textureFile = file->readString();
    if (!checkReadable(file, "texture " + std::to_string(id))) {
        return false;
    }
    if (verbose) {
        std::cout << "Texture " << id << " : " << name << " : " << textureFile << std::endl;
    }
    textures[static_cast<unsigned int>(id)] = textureFile;
    KVTDemosys::TextureList.push_back(
        ResourceInfo::TextureInfo{textureFile, textureFile, GL_TEXTURE_2D, true});
    return true;
}

bool KVTSceneLoader::loadMaterial(File* file) {
    const int id = file->readInt();
    const std::string name = file->readString();
    float ambient[4];
    float diffuse[4];
    for (float& value : ambient) {
        value = file->readFloat();
    }
    for (float& value : diffuse) {
        value = file->readFloat();
    }
    const int textureId = file->readInt();
    if (!checkReadable(file, "material " + std::to_string(id))) {
        return false;
    }
    if (verbose) {
        std::cout << "Material " << id << " : " << name << " : texture " << textureId << std::endl;
    }
    auto* material = new KVTMaterial;
    material->setName(name);
    material->setAmbient(ambient[0], ambient[1], ambient[2]);
    material->setDiffuse(diffuse[0], diffuse[1], diffuse[2]);
    auto texture = textures.find(static_cast<unsigned int>(textureId));
    if (texture != textures.end()) {
        material->setDiffuseMap(texture->second);
    }
    scene->addMaterial(name, material);
    materials[static_cast<unsigned int>(id)] = material;
    return true;
}

bool KVTSceneLoader::loadLight(File* file) {
    const int id = file->readInt();
    const int type = file->readInt();
    float colour[3];
    for (float& value : colour) {
        value = file->readFloat();
    }
    if (!checkReadable(file, "light " + std::to_string(id))) {
        return false;
    }
    if (verbose) {
        std::cout << "Light " << id << " : type " << type << " : colour " << colour[0] << ", "
                  << colour[1] << ", " << colour[2] << std::endl;
    }
    auto* light = new KVTLight(static_cast<unsigned int>(id));
    light->setType(type);
    light->setColour(colour[0], colour[1], colour[2]);
    KVTLight*& slot = lights[static_cast<unsigned int>(id)];
    if (slot != nullptr && placedLights.count(slot) == 0) {
        delete slot;
    }
    slot = light;
    return true;
}

bool KVTSceneLoader::readNodeRecord(File* file, Node& node) {
    node.id = file->readInt();
    node.type = file->readInt();
    const std::string what = "node " + std::to_string(node.id);
    if (node.type == KVTSceneRecord::EMPTY_NODE) {
        node.parent = file->readInt();
    } else if (node.type >= KVTSceneRecord::MESH_NODE && node.type <= KVTSceneRecord::LIGHT_NODE) {
        node.ref = file->readInt();
        node.parent = file->readInt();
    } else {
        // The record's length depends on its type: the rest of the file cannot be read.
        return checkReadable(file, what) &&
               corrupt(what + " has the unknown type " + std::to_string(node.type));
    }
    node.name = file->readString();
    for (float& value : node.matrix) {
        value = file->readFloat();
    }
    if (node.type != KVTSceneRecord::EMPTY_NODE) {
        node.tail = file->readInt();
    }
    return checkReadable(file, what);
}

void KVTSceneLoader::echoNode(const Node& node) const {
    std::cout << "-> Node id : " << node.id << std::endl;
    std::cout << "-> Node type : " << node.type << std::endl;
    if (node.type != KVTSceneRecord::EMPTY_NODE) {
        std::cout << "-> Node type ref : " << node.ref << std::endl;
    }
    std::cout << "-> Node parent : " << node.parent << std::endl;
    std::cout << "-> Node name : " << node.name << std::endl;
    if (node.type == KVTSceneRecord::CAMERA_NODE || node.type == KVTSceneRecord::LIGHT_NODE) {
        echoMatrixRows(node.matrix.data());
        return;
    }
    std::cout << "-> Matrix :";
    for (float value : node.matrix) {
        std::cout << " " << value;
    }
    std::cout << std::endl;
    if (node.type == KVTSceneRecord::MESH_NODE) {
        std::cout << "-> Node material : " << node.tail << std::endl;
    }
}

bool KVTSceneLoader::loadNode(File* file) {
    Node node;
    if (!readNodeRecord(file, node)) {
        return false;
    }
    if (verbose) {
        echoNode(node);
    }
    if (node.type == KVTSceneRecord::CAMERA_NODE) {
        placeCamera(node);
    } else if (node.type == KVTSceneRecord::LIGHT_NODE) {
        placeLight(node);
    } else {
        placeObject(node);
    }
    return true;
}

void KVTSceneLoader::placeObject(const Node& node) {
    const auto id = static_cast<unsigned int>(node.id);
    auto* object = new KVTObject(id);
    object->setName(node.name);
    object->setMatrix(node.matrix.data());
    if (node.type == KVTSceneRecord::MESH_NODE) {
        VBO* mesh = getVBOByID(static_cast<unsigned int>(node.ref));
        if (mesh == nullptr) {
            std::cout << "ERROR : Cannot find mesh " << node.ref << std::endl;
        }
        object->setMesh(mesh);
        object->setMaterial(lookUp(materials, static_cast<unsigned int>(node.tail)));
    }
    KVTObject*& slot = objects[id];
    if (!treeBuilt) {
        // A node id given twice: the earlier object is in no tree yet.
        delete slot;
    }
    slot = object;
    parentIds[id] = node.parent;
}

void KVTSceneLoader::placeCamera(const Node& node) {
    auto* camera = new KVTCamera(node.name);
    camera->setMatrix(node.matrix.data());
    cameras[static_cast<unsigned int>(node.id)] = camera;
    scene->AddCamera(node.name, camera);
}

void KVTSceneLoader::placeLight(const Node& node) {
    KVTLight* light = getLightByID(static_cast<unsigned int>(node.ref));
    if (light == nullptr) {
        std::cout << "ERROR : Cannot find light " << node.ref << std::endl;
        return;
    }
    light->setName(node.name);
    light->setMatrix(node.matrix.data());
    scene->addLight(node.name, light);
    placedLights.insert(light);
}

void KVTSceneLoader::buildSceneTree() {
    for (auto& [id, object] : objects) {
        KVTObject* parent = getObjectByID(static_cast<unsigned int>(parentIds[id]));
        if (parent != nullptr && parent->isSelfOrDescendantOf(object)) {
            std::cout << "ERROR : Node " << id << " cannot have its descendant " << parentIds[id]
                      << " as parent" << std::endl;
        } else if (parent != nullptr) {
            object->setParent(parent);
            parent->addChild(object);
        }
        scene->AddObject(object);
    }
    treeBuilt = true;
}

bool KVTSceneLoader::loadAnimations() {
    std::unique_ptr<File> file(openFile(path + ".kf"));
    if (file == nullptr || !file->exists()) {
        return true;
    }
    file->readInt(); // written by the exporter, not used
    const int count = file->readInt();
    if (file->overrun()) {
        return corruptAnimations("the file ends inside the header");
    }
    for (int i = 0; i < count; ++i) {
        if (!loadAnimation(file.get(), i)) {
            return false;
        }
    }
    return true;
}

bool KVTSceneLoader::loadAnimation(File* file, int index) {
    const int keyCount = std::max(file->readInt(), 0);
    const int kind = file->readInt();
    const auto target = static_cast<unsigned int>(file->readInt());
    const std::string what = "animation " + std::to_string(index);
    if (file->overrun()) {
        return corruptAnimations("the file ends inside " + what);
    }
    if (keyCount * KEY_BYTES > file->bytesLeft()) {
        return corruptAnimations(what + " declares " + std::to_string(keyCount) +
                                 " keys, more than the file holds");
    }
    if (verbose) {
        std::cout << "Animation : kind = " << kind << ", target = " << target
                  << ", keys = " << keyCount << std::endl;
    }
    const auto keys = static_cast<std::size_t>(keyCount);
    const std::vector<float> times = readFloats(file, keys);
    const std::vector<float> translations = readFloats(file, 3 * keys);
    const std::vector<float> rotationX = readFloats(file, keys);
    const std::vector<float> rotationY = readFloats(file, keys);
    const std::vector<float> rotationZ = readFloats(file, keys);
    auto* animation = new KVTAnimation;
    for (std::size_t k = 0; k < keys; ++k) {
        const unsigned int time = keyMilliseconds(times[k]);
        animation->addTranslation(time,
                                  Vector<float, 3>(translations[3 * k], translations[3 * k + 1],
                                                   translations[3 * k + 2]));
        animation->addRotation(time, Vector<float, 3>(rotationX[k], rotationY[k], rotationZ[k]));
    }
    animation->init();
    attachAnimation(kind, target, animation);
    return true;
}

void KVTSceneLoader::attachAnimation(int kind, unsigned int target, KVTAnimation* animation) {
    if (kind == KVTSceneRecord::OBJECT_ANIMATION || kind == KVTSceneRecord::OBJECT_ANIMATION_TOO) {
        if (KVTObject* object = getObjectByID(target)) {
            object->setAnimation(animation);
            return;
        }
        std::cout << "ERROR: Failed to find object with id " << target << std::endl;
    } else if (kind == KVTSceneRecord::CAMERA_ANIMATION) {
        if (KVTCamera* camera = getCameraByID(target)) {
            camera->setAnimation(animation);
            return;
        }
        std::cout << "ERROR: Failed to find camera with id " << target << std::endl;
    } else if (kind == KVTSceneRecord::LIGHT_ANIMATION) {
        if (KVTLight* light = getLightByID(target)) {
            light->setAnim(animation);
            return;
        }
        std::cout << "ERROR: Failed to fing light with id " << target << std::endl;
    }
    delete animation;
}
