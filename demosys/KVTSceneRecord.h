#pragma once

#include <array>
#include <string>
#include <vector>

// The records of a scene file and of its ".kf" animation file, as plain values: what the
// scene writer writes and what the scene loader reads, field for field.
namespace KVTSceneRecord {

// The version a scene file starts with.
constexpr int VERSION = 1;

// Node types.
constexpr int EMPTY_NODE = 0;
constexpr int MESH_NODE = 1;
constexpr int CAMERA_NODE = 2;
constexpr int LIGHT_NODE = 3;

// Animation kinds: what the target id names. Both object kinds mean the same.
constexpr int OBJECT_ANIMATION = 0;
constexpr int OBJECT_ANIMATION_TOO = 1;
constexpr int CAMERA_ANIMATION = 2;
constexpr int LIGHT_ANIMATION = 3;

using Float3 = std::array<float, 3>;
using Float4 = std::array<float, 4>;
using Matrix16 = std::array<float, 16>;

// The identity in the 16 floats of a node matrix.
Matrix16 identityMatrix();

// Indexed streams: every corner of the mesh is a tuple of indices, one per present stream,
// each stream's index at its slot (offset) in the tuple. An empty stream is absent.
struct Mesh {
    int id = 0;
    std::string name;
    // Three floats per position and per normal, two per texture coordinate.
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<float> texcoords;
    int vertexOffset = 0;
    int normalOffset = 1;
    int texcoordOffset = 2;
    std::vector<int> indices;
    Float3 bboxMin{};
    Float3 bboxMax{};

    int vertexCount() const { return static_cast<int>(positions.size() / 3); }
    int normalCount() const { return static_cast<int>(normals.size() / 3); }
    int texcoordCount() const { return static_cast<int>(texcoords.size() / 2); }
    // The streams present: the indices each corner takes.
    int stride() const { return (vertexCount() > 0) + (normalCount() > 0) + (texcoordCount() > 0); }
    // Sets the bounding box to the positions' extent (zero without positions).
    void fitBounds();
};

struct Texture {
    int id = 0;
    std::string name;
    // The picture's file name, relative to the texture folder.
    std::string file;
};

struct Material {
    int id = 0;
    std::string name;
    // The alphas are written but not read into the material.
    Float4 ambient{0, 0, 0, 1};
    Float4 diffuse{1, 1, 1, 1};
    // A texture record's id; no texture when no record has it.
    int textureId = -1;
};

struct Light {
    int id = 0;
    int type = 0;
    Float3 colour{1, 1, 1};
};

// One node. What the three integers mean depends on the type:
//   empty node:  parent (ref and tail are not in the file);
//   mesh node:   ref = mesh id, parent, tail = material id;
//   camera node: ref, parent and tail are unused;
//   light node:  ref = light id, parent and tail are unused.
// The matrix is in OpenGL's element order (translation in elements 12, 13, 14).
struct Node {
    int id = 0;
    int type = EMPTY_NODE;
    int ref = 0;
    int parent = -1;
    std::string name;
    Matrix16 matrix = identityMatrix();
    int tail = -1;
};

// Keys in seconds; translations and rotations (radians about x, y and z) per key.
struct Animation {
    int kind = OBJECT_ANIMATION;
    unsigned int target = 0;
    std::vector<float> times;
    std::vector<Float3> translations;
    std::vector<Float3> rotations;
};

} // namespace KVTSceneRecord
