#include "VBODynamic.h"

#include "KVTAssert.h"
#include "KVTDemosys.h"
#include "KVTMesh.h"
#include "Shader.h"

#include <GL/glew.h>

#include <algorithm>
#include <cstdint>
#include <iostream>

namespace {

const void* offset(int bytes) {
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(bytes));
}

static_assert(sizeof(Vector<float, 3>) == 3 * sizeof(float), "mesh arrays upload as floats");
static_assert(sizeof(Vector<float, 2>) == 2 * sizeof(float), "mesh arrays upload as floats");

template <typename T> T* mapBuffer(GLenum target, GLuint id, GLenum access) {
    glBindBuffer(target, id);
    T* mapped = static_cast<T*>(glMapBuffer(target, access));
    glBindBuffer(target, 0);
    return mapped;
}

template <typename T> void unmapBuffer(GLenum target, GLuint id, T*& mapped) {
    glBindBuffer(target, id);
    glUnmapBuffer(target);
    glBindBuffer(target, 0);
    mapped = nullptr;
}

} // namespace

VBODynamic::VBODynamic(unsigned int vertices, unsigned int vertexFloats, unsigned int colorFloats,
                       unsigned int normalFloats, unsigned int uvFloats,
                       unsigned int polygonCorners, unsigned int polygons)
    : numVertices(vertices), numPolygons(polygons), vertexComponents(vertexFloats),
      colorComponents(colorFloats), normalComponents(normalFloats), uvComponents(uvFloats),
      polygonComponents(polygonCorners) {
    initBuffers();
}

VBODynamic::VBODynamic(KVTMesh* mesh) : VBODynamic(mesh, GL_STREAM_DRAW) {}

VBODynamic::VBODynamic(KVTMesh* mesh, unsigned int usage)
    : numVertices(static_cast<unsigned int>(mesh->getNumVertices())),
      numPolygons(static_cast<unsigned int>(mesh->getNumFaces())), vertexComponents(3),
      normalComponents(3), uvComponents(2),
      polygonComponents(static_cast<unsigned int>(mesh->getVerticesPerFace())) {
    vertexPointer = mesh->getVertexPointer()->data();
    normalPointer = mesh->getVertexNormalPointer()->data();
    uvPointer = mesh->getTexCoordPointer()->data();
    polygonPointer = reinterpret_cast<int*>(mesh->getPolygonPointer());
    initMeshBuffers(mesh, usage);
}

VBODynamic::~VBODynamic() {
    for (GLuint id : {vertexBufferID, polygonBufferID, uvBufferID, normalBufferID, colorBufferID}) {
        if (id != 0) {
            glDeleteBuffers(1, &id);
        }
    }
    for (GLuint id : attribBufferIDs) {
        if (id != 0) {
            glDeleteBuffers(1, &id);
        }
    }
}

unsigned int VBODynamic::makeBuffer(unsigned int target, long bytes, const void* data) {
    return makeBuffer(target, bytes, data, GL_STREAM_DRAW);
}

unsigned int VBODynamic::makeBuffer(unsigned int target, long bytes, const void* data,
                                    unsigned int usage) {
    GLuint id = 0;
    glGenBuffers(1, &id);
    glBindBuffer(target, id);
    glBufferData(target, bytes, data, usage);
    validateBuffer(target, id);
    glBindBuffer(target, 0);
    return id;
}

void VBODynamic::initBuffers() {
    const long floatBytes = 4;
    const long vertices = numVertices;
    if (vertexComponents != 0) {
        vertexBufferID =
            makeBuffer(GL_ARRAY_BUFFER, vertices * vertexComponents * floatBytes, nullptr);
    }
    if (colorComponents != 0) {
        colorBufferID =
            makeBuffer(GL_ARRAY_BUFFER, vertices * colorComponents * floatBytes, nullptr);
    }
    if (normalComponents != 0) {
        normalBufferID =
            makeBuffer(GL_ARRAY_BUFFER, vertices * normalComponents * floatBytes, nullptr);
    }
    if (uvComponents != 0) {
        uvBufferID = makeBuffer(GL_ARRAY_BUFFER, uvComponents * floatBytes, nullptr);
    }
    if (polygonComponents != 0) {
        polygonBufferID =
            makeBuffer(GL_ELEMENT_ARRAY_BUFFER,
                       static_cast<long>(numPolygons) * polygonComponents * 4, nullptr);
    }
}

void VBODynamic::initMeshBuffers(KVTMesh* mesh, unsigned int usage) {
    const long vertices = numVertices;
    vertexBufferID = makeBuffer(GL_ARRAY_BUFFER, vertices * vertexComponents * 4,
                                mesh->getVertexPointer(), usage);
    polygonBufferID =
        makeBuffer(GL_ELEMENT_ARRAY_BUFFER, static_cast<long>(numPolygons) * polygonComponents * 4,
                   mesh->getPolygonPointer(), usage);
    normalBufferID = makeBuffer(GL_ARRAY_BUFFER, vertices * normalComponents * 4,
                                mesh->getVertexNormalPointer(), usage);
    uvBufferID =
        makeBuffer(GL_ARRAY_BUFFER, vertices * uvComponents * 4, mesh->getTexCoordPointer(), usage);
}

void VBODynamic::initVertexAttributeData(int slot, int sizeInBytes, const float* data) {
    KVT_ASSERT(slot >= 0 && slot < MAX_ATTRIBUTES, "demosys/VBODynamic", "initVertexAttributeData");
    attribBufferIDs[slot] = makeBuffer(GL_ARRAY_BUFFER, sizeInBytes, data);
}

bool VBODynamic::validateBuffer(unsigned int target, unsigned int) {
    GLint size = 0;
    glGetBufferParameteriv(target, GL_BUFFER_SIZE, &size);
    KVTDemosys::glErrPrint("VBO::validateBuffer");
    return size > 0;
}

void VBODynamic::openVertexBuffer(unsigned int access) {
    vertexPointer = mapBuffer<float>(GL_ARRAY_BUFFER, vertexBufferID, access);
}

void VBODynamic::closeVertexBuffer() {
    unmapBuffer(GL_ARRAY_BUFFER, vertexBufferID, vertexPointer);
}

void VBODynamic::openVertexNormalBuffer(unsigned int access) {
    normalPointer = mapBuffer<float>(GL_ARRAY_BUFFER, normalBufferID, access);
}

void VBODynamic::closeVertexNormalBuffer() {
    unmapBuffer(GL_ARRAY_BUFFER, normalBufferID, normalPointer);
}

void VBODynamic::openColorBuffer(unsigned int access) {
    colorPointer = mapBuffer<float>(GL_ARRAY_BUFFER, colorBufferID, access);
}

void VBODynamic::closeColorBuffer() {
    unmapBuffer(GL_ARRAY_BUFFER, colorBufferID, colorPointer);
}

void VBODynamic::openUVBuffer(unsigned int access) {
    uvPointer = mapBuffer<float>(GL_ARRAY_BUFFER, uvBufferID, access);
}

void VBODynamic::closeUVBuffer() {
    unmapBuffer(GL_ARRAY_BUFFER, uvBufferID, uvPointer);
}

void VBODynamic::openAttribBuffer(int slot, unsigned int access) {
    attribPointers[slot] = mapBuffer<float>(GL_ARRAY_BUFFER, attribBufferIDs[slot], access);
}

void VBODynamic::closeAttribBuffer(int slot) {
    unmapBuffer(GL_ARRAY_BUFFER, attribBufferIDs[slot], attribPointers[slot]);
}

void VBODynamic::openPolygonBuffer(unsigned int access) {
    polygonPointer = mapBuffer<int>(GL_ELEMENT_ARRAY_BUFFER, polygonBufferID, access);
}

void VBODynamic::closePolygonBuffer() {
    unmapBuffer(GL_ELEMENT_ARRAY_BUFFER, polygonBufferID, polygonPointer);
}

template <typename T>
void VBODynamic::write(const char* label, int i, T* mapped, long first, long size, const T* values,
                       int count) {
    if (i < 0 || first >= size || first + count > size) {
        std::cout << "VBODynamic::" << label << "(" << i << ") overflow!" << std::endl;
        return;
    }
    KVT_ASSERT(mapped != nullptr, "demosys/VBODynamic", label);
    for (int k = 0; k < count; ++k) {
        mapped[first + k] = values[k];
    }
}

void VBODynamic::setVertex(int i, Vector<float, 3>& v) {
    const long size = static_cast<long>(vertexComponents) * numVertices;
    write("setVertex", i, vertexPointer, static_cast<long>(i) * vertexComponents, size, v.data(),
          3);
}

void VBODynamic::setColor(int i, Vector<float, 3>& c) {
    const long size = static_cast<long>(colorComponents) * numVertices;
    write("setColor", i, colorPointer, static_cast<long>(i) * colorComponents, size, c.data(), 3);
}

void VBODynamic::setColor(int i, Vector<float, 4>& c) {
    const long size = static_cast<long>(colorComponents) * numVertices;
    write("setColor", i, colorPointer, static_cast<long>(i) * colorComponents, size, c.data(), 4);
}

void VBODynamic::setPolygon(int i, Vector<int, 3>& p) {
    // Steps by the vector's own size; the buffer holds polygonComponents per polygon.
    const long size = std::min(static_cast<long>(numPolygons) * 3,
                               static_cast<long>(numPolygons) * polygonComponents);
    write("setPolygon", i, polygonPointer, static_cast<long>(i) * 3, size, p.data(), 3);
}

void VBODynamic::setPolygon(int i, Vector<int, 4>& p) {
    const long size = std::min(static_cast<long>(numPolygons) * 4,
                               static_cast<long>(numPolygons) * polygonComponents);
    write("setPolygon", i, polygonPointer, static_cast<long>(i) * 4, size, p.data(), 4);
}

void VBODynamic::bindBuffers() {
    glBindBuffer(GL_ARRAY_BUFFER, vertexBufferID);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(static_cast<GLint>(vertexComponents), GL_FLOAT, 0, offset(0));
    if (normalComponents != 0) {
        glBindBuffer(GL_ARRAY_BUFFER, normalBufferID);
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, 0, offset(0));
    }
    if (colorComponents != 0) {
        glBindBuffer(GL_ARRAY_BUFFER, colorBufferID);
        glEnableClientState(GL_COLOR_ARRAY);
        glColorPointer(static_cast<GLint>(colorComponents), GL_FLOAT, 0, offset(0));
    }
    if (uvComponents != 0) {
        glBindBuffer(GL_ARRAY_BUFFER, uvBufferID);
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glClientActiveTexture(GL_TEXTURE0);
        glTexCoordPointer(static_cast<GLint>(uvComponents), GL_FLOAT, 0, offset(0));
    }
}

void VBODynamic::unbindBuffers() {
    glDisableClientState(GL_VERTEX_ARRAY);
    if (normalComponents != 0) {
        glDisableClientState(GL_NORMAL_ARRAY);
    }
    if (uvComponents != 0) {
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    if (colorComponents != 0) {
        glDisableClientState(GL_COLOR_ARRAY);
    }
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void VBODynamic::bindVertexAttrib(int slot, Shader* shader, std::string name) {
    const GLint location = glGetAttribLocationARB(shader->getProgramHandle(), name.c_str());
    if (location < 0) {
        return;
    }
    glBindBuffer(GL_ARRAY_BUFFER, attribBufferIDs[slot]);
    glVertexAttribPointerARB(static_cast<GLuint>(location), 3, GL_FLOAT, GL_FALSE, 0, offset(0));
    glEnableVertexAttribArrayARB(static_cast<GLuint>(location));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void VBODynamic::drawPolygons(unsigned int mode, int first, int count) {
    bindBuffers();
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, polygonBufferID);
    const GLsizei indices = first == count
                                ? static_cast<GLsizei>(polygonComponents * numPolygons)
                                : static_cast<GLsizei>(count * static_cast<int>(polygonComponents));
    glDrawElements(mode, indices, GL_UNSIGNED_INT, offset(0));
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    unbindBuffers();
}

void VBODynamic::drawArray(unsigned int mode, unsigned int first, unsigned int count) {
    bindBuffers();
    if (first == count) {
        glDrawArrays(mode, 0, static_cast<GLsizei>(numVertices));
    } else {
        glDrawArrays(mode, static_cast<GLint>(first), static_cast<GLsizei>(count));
    }
    unbindBuffers();
}
