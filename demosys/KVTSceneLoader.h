#pragma once

#include "KVTSceneRecord.h"

#include <map>
#include <set>
#include <string>
#include <vector>

class File;
class KVTAnimation;
class KVTCamera;
class KVTLight;
class KVTMaterial;
class KVTObject;
class KVTScene;
class VBO;

// Reads a scene file and the optional animation file beside it (the path + ".kf") into a new
// KVTScene whose meshes are uploaded as vertex buffers. Texture file names met on the way
// are appended to KVTDemosys::TextureList for the texture loader.
//
// A missing file, a wrong version or damaged contents (the file ends inside a record, counts
// larger than the file holds, an index outside its stream, an unknown node type, a mesh
// without streams) fail the load with a message naming the file. Unknown mesh, light and
// animation target ids are reported and skipped.
//
//     KVTSceneLoader loader(KVTIO::ScenePath + file);
//     KVTScene* scene = loader.loadScene(); // the caller owns it; null on failure
//     if (!loader.isValid()) report(loader.getErrorMessage());
class KVTSceneLoader {
public:
    // Creates the empty scene; reads nothing yet.
    explicit KVTSceneLoader(std::string path);
    // Deletes the scene unless loadScene() handed it out.
    virtual ~KVTSceneLoader();
    KVTSceneLoader(const KVTSceneLoader&) = delete;
    KVTSceneLoader& operator=(const KVTSceneLoader&) = delete;

    KVTScene* loadScene();
    bool isValid() const { return valid; }
    std::string getErrorMessage() const { return errorMessage; }
    // When set, every field read is echoed to standard output.
    void setVerbose(bool flag) { verbose = flag; }

    // By the file's ids; null when absent.
    VBO* getVBOByID(unsigned int id) const;
    KVTObject* getObjectByID(unsigned int id) const;
    KVTCamera* getCameraByID(unsigned int id) const;
    KVTLight* getLightByID(unsigned int id) const;

    // The record readers, called in file order by loadScene(). Each reads one record and
    // returns false, with the message set, on damaged contents.
    bool loadMesh(File* file);
    bool loadTexture(File* file);
    bool loadMaterial(File* file);
    bool loadLight(File* file);
    bool loadNode(File* file);
    // Links every object to its parent and adds all to the scene in ascending id order.
    void buildSceneTree();
    // True also when there is no animation file.
    bool loadAnimations();

protected:
    // Where the files come from: a new File the caller owns. Resource files by default.
    virtual File* openFile(const std::string& filePath);
    // Fills the vertex buffer with the de-indexed corners: per corner the floats of each
    // stream (as many as the counts say), in the order of the streams' slots.
    virtual void uploadMesh(VBO* vbo, int corners, int vertexFloats, int normalFloats, int uvFloats,
                            const std::vector<float>& data);

private:
    bool readSection(File* file, const char* label, const char* records,
                     bool (KVTSceneLoader::*reader)(File*));
    bool readMeshRecord(File* file, KVTSceneRecord::Mesh& mesh);
    void echoMesh(const KVTSceneRecord::Mesh& mesh, int stride) const;
    // Copies the elements each corner's index tuple addresses into out, in slot order.
    bool deindex(const KVTSceneRecord::Mesh& mesh, int corners, std::vector<float>& out);
    bool readNodeRecord(File* file, KVTSceneRecord::Node& node);
    void echoNode(const KVTSceneRecord::Node& node) const;
    void placeObject(const KVTSceneRecord::Node& node);
    void placeCamera(const KVTSceneRecord::Node& node);
    void placeLight(const KVTSceneRecord::Node& node);
    bool loadAnimation(File* file, int index);
    void attachAnimation(int kind, unsigned int target, KVTAnimation* animation);

    bool fail(std::string message);
    // "Invalid scene file '<path>': " + what.
    bool corrupt(const std::string& what);
    bool corruptAnimations(const std::string& what);
    bool checkReadable(File* file, const std::string& where);

    std::string path;
    KVTScene* scene;
    std::map<unsigned int, VBO*> meshes;
    std::map<unsigned int, std::string> textures;
    std::map<unsigned int, KVTMaterial*> materials;
    std::map<unsigned int, KVTLight*> lights;
    std::map<unsigned int, KVTObject*> objects;
    std::map<unsigned int, KVTCamera*> cameras;
    // Each object's parent id, linked once all nodes are read.
    std::map<unsigned int, int> parentIds;
    // Lights a node placed in the scene, which then owns them; the loader deletes the rest.
    std::set<const KVTLight*> placedLights;
    bool treeBuilt = false;
    bool handedOut = false;
    bool verbose = false;
    bool valid = true;
    std::string errorMessage;
};
