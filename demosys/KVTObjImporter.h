#pragma once

#include "KVTSceneRecord.h"

#include <string>
#include <vector>

class KVTSceneWriter;

// Turns a Wavefront OBJ model with its MTL materials into scene records, so that models
// made elsewhere can be brought in as scene files. Every run of faces with one group and
// one material becomes a mesh and a mesh node (named after the group, else the material)
// under an empty root node; polygons are split
// into triangle fans. Faces without normals get flat ones; corners without texture
// coordinates get (0, 0) when others in their mesh have some. Texture files are named by
// their last path component, as the texture folder holds them.
class KVTObjImporter {
public:
    // Reads the OBJ file and the material libraries it names, looked for beside it.
    // False with a message naming the file (and line) on bad input.
    bool readFile(const std::string& objPath);
    // The text of an OBJ file or of an MTL library; the name is used in messages.
    bool readObj(const std::string& text, const std::string& name);
    bool readMtl(const std::string& text, const std::string& name);
    // The libraries the OBJ text asked for ("mtllib"), in order.
    const std::vector<std::string>& getMaterialLibraries() const { return libraries; }
    // A white point light at the position, written after the meshes.
    void addPointLight(KVTSceneRecord::Float3 position) { lights.push_back(position); }

    // Writes textures, materials, meshes, lights and nodes; the root node takes the name.
    void write(KVTSceneWriter& writer, const std::string& rootName) const;

    int countMeshes() const;
    int countTriangles() const;
    int countMaterials() const { return static_cast<int>(materials.size()); }
    std::string getErrorMessage() const { return errorMessage; }

private:
    // Element indices of one corner, -1 where the face gave none.
    struct Corner {
        int position;
        int texcoord;
        int normal;
    };
    // Triangles (three corners each) of one group drawn with one material.
    struct Run {
        std::string group;
        std::string material;
        std::vector<Corner> corners;
    };
    struct Material {
        std::string name;
        KVTSceneRecord::Float3 ambient{0.2f, 0.2f, 0.2f};
        KVTSceneRecord::Float3 diffuse{0.8f, 0.8f, 0.8f};
        std::string texture;
    };

    bool readObjLine(const std::vector<std::string>& words);
    bool readVector(const std::vector<std::string>& words, std::size_t needed, std::size_t kept,
                    std::vector<float>& out);
    bool readFace(const std::vector<std::string>& words);
    bool readCorner(const std::string& token, Corner& corner);
    bool resolveIndex(const std::string& text, int count, const char* what, int& index);
    bool readMtlLine(const std::vector<std::string>& words);
    bool readColour(const std::vector<std::string>& words, KVTSceneRecord::Float3& colour);
    // Feeds every line's words to the reader, counting lines for the messages.
    bool readLines(const std::string& text, const std::string& name,
                   bool (KVTObjImporter::*reader)(const std::vector<std::string>&));
    // Starts a new run when the group or material changes, unless the current one is empty.
    void switchRun(const std::string* group, const std::string* material);
    bool fail(const std::string& message);

    KVTSceneRecord::Mesh makeMesh(const Run& run, int id) const;
    int materialId(const std::string& name) const;
    std::vector<std::string> textureFiles() const;

    std::vector<float> positions;
    std::vector<float> texcoords;
    std::vector<float> normals;
    std::vector<Run> runs{Run{}};
    std::vector<Material> materials;
    std::vector<std::string> libraries;
    std::vector<KVTSceneRecord::Float3> lights;
    // Where reading is, for messages.
    std::string fileName;
    int lineNumber = 0;
    std::string errorMessage;
};
