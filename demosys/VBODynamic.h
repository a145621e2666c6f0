#pragma once

#include "Vector.h"

#include <string>

class KVTMesh;
class Shader;

// Separate, tightly packed vertex arrays (positions, colours, normals, texture coordinates,
// polygon indices, up to 16 generic attributes) that are rewritten while running: map a
// buffer with open...(access), write elements through the range-checked setters or the raw
// pointer, close it, then draw. A component count of 0 means the array does not exist.
// Owns its buffers, attribute buffers included.
class VBODynamic {
public:
    static constexpr int MAX_ATTRIBUTES = 16;

    // Empty stream buffers of the given sizes. The texture-coordinate buffer holds one
    // vertex's worth only, as the engine has always made it.
    VBODynamic(unsigned int numVertices, unsigned int vertexComponents,
               unsigned int colorComponents, unsigned int normalComponents,
               unsigned int uvComponents, unsigned int polygonComponents, unsigned int numPolygons);
    // Buffers filled from the mesh: positions, polygons, normals (3 floats) and texture
    // coordinates (2 floats) for every vertex; no colours. Until a buffer is mapped, its
    // pointer is the mesh's own array. Stream usage; a mesh that never changes after the
    // upload passes GL_STATIC_DRAW as usage instead.
    explicit VBODynamic(KVTMesh* mesh);
    VBODynamic(KVTMesh* mesh, unsigned int usage);
    ~VBODynamic();
    VBODynamic(const VBODynamic&) = delete;
    VBODynamic& operator=(const VBODynamic&) = delete;

    void initVertexAttributeData(int slot, int sizeInBytes, const float* data);
    // Reports GL errors; true when the bound buffer has a size.
    bool validateBuffer(unsigned int target, unsigned int id);

    void openVertexBuffer(unsigned int access);
    void closeVertexBuffer();
    void openVertexNormalBuffer(unsigned int access);
    void closeVertexNormalBuffer();
    void openColorBuffer(unsigned int access);
    void closeColorBuffer();
    void openUVBuffer(unsigned int access);
    void closeUVBuffer();
    void openAttribBuffer(int slot, unsigned int access);
    void closeAttribBuffer(int slot);
    void openPolygonBuffer(unsigned int access);
    void closePolygonBuffer();

    float* getVertexPointer() const { return vertexPointer; }
    float* getVertexNormalPointer() const { return normalPointer; }
    float* getUVPointer() const { return uvPointer; }
    float* getAttribPointer(int slot) const { return attribPointers[slot]; }

    // Write into the mapped buffer; an element outside it is reported and skipped.
    void setVertex(int i, Vector<float, 3>& v);
    void setColor(int i, Vector<float, 3>& c);
    void setColor(int i, Vector<float, 4>& c);
    void setPolygon(int i, Vector<int, 3>& p);
    void setPolygon(int i, Vector<int, 4>& p);

    void bindBuffers();
    void unbindBuffers();
    // Points the shader's named attribute (three floats per vertex) at the slot's buffer.
    void bindVertexAttrib(int slot, Shader* shader, std::string name);
    // With first == count every polygon is drawn; otherwise count polygons from the start.
    void drawPolygons(unsigned int mode, int first, int count);
    // With first == count every vertex is drawn; otherwise count vertices from first.
    void drawArray(unsigned int mode, unsigned int first, unsigned int count);
    void updateMesh() {}

private:
    void initBuffers();
    void initMeshBuffers(KVTMesh* mesh, unsigned int usage);
    // Stream usage unless told otherwise.
    unsigned int makeBuffer(unsigned int target, long bytes, const void* data);
    unsigned int makeBuffer(unsigned int target, long bytes, const void* data, unsigned int usage);
    template <typename T>
    void write(const char* label, int i, T* mapped, long first, long size, const T* values,
               int count);

    unsigned int vertexBufferID = 0;
    unsigned int colorBufferID = 0;
    unsigned int uvBufferID = 0;
    unsigned int normalBufferID = 0;
    unsigned int polygonBufferID = 0;
    float* vertexPointer = nullptr;
    float* normalPointer = nullptr;
    float* colorPointer = nullptr;
    int* polygonPointer = nullptr;
    float* uvPointer = nullptr;
    float* attribPointers[MAX_ATTRIBUTES] = {};
    unsigned int attribBufferIDs[MAX_ATTRIBUTES] = {};
    unsigned int numVertices = 0;
    unsigned int numPolygons = 0;
    unsigned int vertexComponents = 0;
    unsigned int colorComponents = 0;
    unsigned int normalComponents = 0;
    unsigned int uvComponents = 0;
    unsigned int polygonComponents = 0;
};
