#include "VBO.h"

#include <GL/glew.h>

#include <cstdint>

namespace {

// Buffer offsets go to the pointer calls as addresses.
const void* offset(int bytes) {
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(bytes));
}

} // namespace

VBO::~VBO() {
    if (vertexBufferID != 0) {
        glDeleteBuffers(1, &vertexBufferID);
    }
    if (elementBufferID != 0) {
        glDeleteBuffers(1, &elementBufferID);
    }
}

void VBO::setVertexBuffer(int vertices, int vertexFloats, int normalFloats, int uvFloats,
                          const float* data) {
    numVertices = vertices;
    vertexComponents = vertexFloats;
    normalComponents = normalFloats;
    uvComponents = uvFloats;
    stride = (vertexFloats + normalFloats + uvFloats) * 4;
    glGenBuffers(1, &vertexBufferID);
    glBindBuffer(GL_ARRAY_BUFFER, vertexBufferID);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices) * stride, data, GL_STATIC_DRAW);
    validateBuffer(GL_ARRAY_BUFFER, vertexBufferID);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void VBO::setElementBuffer(int triangles, const unsigned int* indices) {
    numTriangles = triangles;
    glGenBuffers(1, &elementBufferID);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, elementBufferID);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(triangles) * 12, indices,
                 GL_STATIC_DRAW);
    validateBuffer(GL_ELEMENT_ARRAY_BUFFER, elementBufferID);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

bool VBO::validateBuffer(unsigned int target, unsigned int) {
    GLint size = 0;
    glGetBufferParameteriv(target, GL_BUFFER_SIZE, &size);
    return true;
}

void VBO::bindBuffers() {
    glBindBuffer(GL_ARRAY_BUFFER, vertexBufferID);
    glVertexPointer(vertexComponents, GL_FLOAT, stride, offset(0));
    glEnableClientState(GL_VERTEX_ARRAY);
    int bytes = vertexComponents * 4;
    if (normalComponents > 0) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, stride, offset(bytes));
        bytes += normalComponents * 4;
    }
    if (uvComponents > 0) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glClientActiveTexture(GL_TEXTURE0);
        glTexCoordPointer(uvComponents, GL_FLOAT, stride, offset(bytes));
    }
    if (numTriangles > 0) {
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, elementBufferID);
    }
}

void VBO::releaseBuffers() {
    glDisableClientState(GL_VERTEX_ARRAY);
    if (normalComponents > 0) {
        glDisableClientState(GL_NORMAL_ARRAY);
    }
    if (uvComponents > 0) {
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    if (numTriangles >= 1) {
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
}

void VBO::drawElementsOrArrays() {
    if (numTriangles < 1) {
        glDrawArrays(GL_TRIANGLES, 0, numVertices);
    } else {
        glDrawElements(GL_TRIANGLES, numTriangles * 3, GL_UNSIGNED_INT, offset(0));
    }
}

void VBO::draw() {
    bindBuffers();
    drawElementsOrArrays();
    releaseBuffers();
}

void VBO::drawInstanced() {
    drawElementsOrArrays();
}

void VBO::drawWireframe() {
    bindBuffers();
    glDrawElements(GL_LINES, numTriangles * 3, GL_UNSIGNED_INT, offset(0));
    releaseBuffers();
}
