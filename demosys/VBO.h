#pragma once

#include "Vector.h"

#include <string>

// One static vertex buffer with interleaved position, normal and texture-coordinate floats
// (in that order, no padding) and an optional triangle index buffer, drawn with the fixed-
// function client arrays. Without an index buffer the vertices are drawn in order.
class VBO {
public:
    VBO() = default;
    ~VBO();
    VBO(const VBO&) = delete;
    VBO& operator=(const VBO&) = delete;

    void setVertexBuffer(int numVertices, int vertexComponents, int normalComponents,
                         int uvComponents, const float* data);
    // Three 32-bit indices per triangle.
    void setElementBuffer(int numTriangles, const unsigned int* indices);

    void bindBuffers();
    // Without an index buffer the vertex buffer stays bound afterwards.
    void releaseBuffers();
    void draw();
    // Draws again with the buffers the caller has bound once.
    void drawInstanced();
    // Lines over consecutive index pairs of the triangle list (not every triangle edge).
    void drawWireframe();
    // Queries the buffer's size; always true.
    bool validateBuffer(unsigned int target, unsigned int id);

    unsigned int getUniqueID() const { return uniqueID; }
    void setUniqueID(unsigned int value) { uniqueID = value; }
    Vector<float, 3> getBBoxMin() const { return bboxMin; }
    void setBBoxMin(Vector<float, 3> v) { bboxMin = v; }
    Vector<float, 3> getBBoxMax() const { return bboxMax; }
    void setBBoxMax(Vector<float, 3> v) { bboxMax = v; }
    std::string getName() const { return name; }
    void setName(std::string n) { name = std::move(n); }

private:
    void drawElementsOrArrays();

    unsigned int vertexBufferID = 0;
    unsigned int elementBufferID = 0;
    int numVertices = 0;
    int numTriangles = 0;
    int vertexComponents = 0;
    int normalComponents = 0;
    int uvComponents = 0;
    int stride = 0;
    Vector<float, 3> bboxMin;
    Vector<float, 3> bboxMax;
    unsigned int uniqueID = 0;
    std::string name;
};
