#pragma once

#include "KVTPolygon.h"
#include "KVTVertex.h"
#include "Vector.h"

#include <cstdint>
#include <vector>

// A polygon mesh of triangles or quads: positions, texture coordinates, the face index list
// (m_verticesPerFace indices per face), face and vertex normals, and for each vertex the
// faces that use it. Procedural effects fill it and vertex buffers are made from it; callers
// write positions through getVertexPointer(). The mesh owns all its arrays.
class KVTMesh {
public:
    // Zeroed arrays for the given counts. The three flags are accepted and not used.
    KVTMesh(int numVertices, int numFaces, int verticesPerFace, bool, bool, bool);
    // Polygons point into this mesh's own vertices, so a copy would be wrong.
    KVTMesh(const KVTMesh&) = delete;
    KVTMesh& operator=(const KVTMesh&) = delete;

    void setTriangle(int face, int a, int b, int c);
    void setQuad(int face, int a, int b, int c, int d);
    void setTexCoord(int i, Vector<float, 2> uv);

    Vector<float, 3>* getVertexPointer() { return positions.data(); }
    std::uint32_t* getPolygonPointer() { return polygonIndices.data(); }
    Vector<float, 3>* getFaceNormalPointer() { return faceNormals.data(); }
    Vector<float, 3>* getVertexNormalPointer() { return vertexNormals.data(); }
    Vector<float, 2>* getTexCoordPointer() { return texCoords.data(); }
    int getNumVertices() const { return m_numVertices; }
    int getNumFaces() const { return m_numFaces; }
    int getVerticesPerFace() const { return m_verticesPerFace; }
    const KVTVertex& getVertex(int i) const;
    const KVTPolygon& getPolygon(int i) const;

    // Face normals from the first three corners of every face (also of quads), taken from
    // the given positions; every index is checked first.
    void calcFNormals(const Vector<float, 3>* positions);
    // The same for faces first to end - 1, unchecked.
    void calcSegmentFNormals(const Vector<float, 3>* positions, int first, int end);
    // Vertex normals from the face normals into out, with one running sum carried from each
    // vertex to the next (never reset), so every normal leans towards the one before it.
    void calcVNormals(Vector<float, 3>* out);
    // The same for vertices first to end - 1; the sum starts at zero at first.
    void calcSegmentVNormals(Vector<float, 3>* out, int first, int end);
    // Per-vertex unit tangents (the direction of growing u) for normal mapping, from the given
    // positions and normals and the mesh's texture coordinates. Every face counts as a fan of
    // its m_verticesPerFace corners. A vertex without a usable tangent gets (0, 0, 0).
    void calcTangents(const Vector<float, 3>* positions, const Vector<float, 3>* normals,
                      Vector<float, 3>* tangents);

    // The index list on standard output, one face per line.
    void printFaceMap() const;
    // Nothing needs edge connectivity; both do nothing.
    void calcConnectivity() {}
    void calcConnectivityBruteForce() {}

private:
    void checkPolygon(int face, const int* corners, int count) const;
    void storePolygon(int face, const int* corners, int count);
    Vector<float, 3> faceNormal(const Vector<float, 3>* positions, int face) const;
    int cornerIndex(int face, int corner) const;
    void addTriangleTangent(const Vector<float, 3>* positions, Vector<float, 3>* tangents, int i0,
                            int i1, int i2) const;

    std::vector<KVTVertex> vertices;
    std::vector<KVTPolygon> polygons;
    std::vector<Vector<float, 3>> positions;
    std::vector<Vector<float, 3>> vertexNormals;
    std::vector<Vector<float, 3>> faceNormals;
    std::vector<std::uint32_t> polygonIndices;
    std::vector<Vector<float, 2>> texCoords;
    std::int32_t m_numVertices;
    std::int32_t m_numFaces;
    std::int32_t m_verticesPerFace;
};
