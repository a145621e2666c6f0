#include "KVTMesh.h"

#include "KVTAssert.h"

#include <cmath>
#include <cstddef>
#include <iostream>

KVTMesh::KVTMesh(int numVertices, int numFaces, int verticesPerFace, bool, bool, bool)
    : m_numVertices(numVertices), m_numFaces(numFaces), m_verticesPerFace(verticesPerFace) {
    KVT_ASSERT(numVertices >= 0 && numFaces >= 0 && verticesPerFace >= 0, "demosys/KVTMesh",
               "KVTMesh");
    vertices.resize(numVertices);
    polygons.resize(numFaces);
    positions.resize(numVertices);
    vertexNormals.resize(numVertices);
    faceNormals.resize(numFaces);
    polygonIndices.resize(static_cast<std::size_t>(numFaces) * verticesPerFace);
    texCoords.resize(numVertices);
}

void KVTMesh::setTriangle(int face, int a, int b, int c) {
    const int corners[] = {a, b, c};
    checkPolygon(face, corners, 3);
    polygons[face].setVertexData3(&vertices[a], &vertices[b], &vertices[c]);
    storePolygon(face, corners, 3);
}

void KVTMesh::setQuad(int face, int a, int b, int c, int d) {
    const int corners[] = {a, b, c, d};
    checkPolygon(face, corners, 4);
    polygons[face].setVertexData4(&vertices[a], &vertices[b], &vertices[c], &vertices[d]);
    storePolygon(face, corners, 4);
}

void KVTMesh::checkPolygon(int face, const int* corners, int count) const {
    KVT_ASSERT(face >= 0 && face < m_numFaces, "demosys/KVTMesh", "checkPolygon");
    KVT_ASSERT(count <= m_verticesPerFace, "demosys/KVTMesh", "checkPolygon");
    for (int i = 0; i < count; ++i) {
        const int v = corners[i];
        KVT_ASSERT(v >= 0 && v < m_numVertices, "demosys/KVTMesh", "checkPolygon");
    }
}

// Appends the face to each corner's adjacency list, in corner order, and writes the corners
// into the index list.
void KVTMesh::storePolygon(int face, const int* corners, int count) {
    for (int i = 0; i < count; ++i) {
        vertices[corners[i]].addPolygonIndex(face);
        polygonIndices[face * m_verticesPerFace + i] = corners[i];
    }
}

void KVTMesh::setTexCoord(int i, Vector<float, 2> uv) {
    KVT_ASSERT(i >= 0 && i < m_numVertices, "demosys/KVTMesh", "setTexCoord");
    texCoords[i] = uv;
}

const KVTVertex& KVTMesh::getVertex(int i) const {
    KVT_ASSERT(i >= 0 && i < m_numVertices, "demosys/KVTMesh", "getVertex");
    return vertices[i];
}

const KVTPolygon& KVTMesh::getPolygon(int i) const {
    KVT_ASSERT(i >= 0 && i < m_numFaces, "demosys/KVTMesh", "getPolygon");
    return polygons[i];
}

void KVTMesh::calcFNormals(const Vector<float, 3>* positions) {
    for (int f = 0; f < m_numFaces; ++f) {
        const int f0 = f * m_verticesPerFace;
        const int f1 = f0 + 1;
        const int f2 = f0 + 2;
        KVT_ASSERT(f0 >= 0 && f0 < m_numFaces * m_verticesPerFace, "demosys/KVTMesh",
                   "calcFNormals");
        KVT_ASSERT(f1 >= 0 && f1 < m_numFaces * m_verticesPerFace, "demosys/KVTMesh",
                   "calcFNormals");
        KVT_ASSERT(f2 >= 0 && f2 < m_numFaces * m_verticesPerFace, "demosys/KVTMesh",
                   "calcFNormals");
        const int v12 = static_cast<int>(polygonIndices[f0]);
        const int v11 = static_cast<int>(polygonIndices[f1]);
        const int v22 = static_cast<int>(polygonIndices[f2]);
        KVT_ASSERT(v11 >= 0 && v11 < m_numVertices, "demosys/KVTMesh", "calcFNormals");
        KVT_ASSERT(v12 >= 0 && v12 < m_numVertices, "demosys/KVTMesh", "calcFNormals");
        KVT_ASSERT(v22 >= 0 && v22 < m_numVertices, "demosys/KVTMesh", "calcFNormals");
        faceNormals[f] = faceNormal(positions, f);
    }
}

void KVTMesh::calcSegmentFNormals(const Vector<float, 3>* positions, int first, int end) {
    for (int f = first; f < end; ++f) {
        faceNormals[f] = faceNormal(positions, f);
    }
}

// b x a with a = p1 - p0 and b = p1 - p2: this order fixes which side of the face is up.
Vector<float, 3> KVTMesh::faceNormal(const Vector<float, 3>* positions, int face) const {
    const std::uint32_t* corners = &polygonIndices[face * m_verticesPerFace];
    const Vector<float, 3>& p0 = positions[corners[0]];
    const Vector<float, 3>& p1 = positions[corners[1]];
    const Vector<float, 3>& p2 = positions[corners[2]];
    Vector<float, 3> n = (p1 - p2).crossProduct(p1 - p0);
    n.normalize();
    return n;
}

void KVTMesh::calcVNormals(Vector<float, 3>* out) {
    calcSegmentVNormals(out, 0, m_numVertices);
}

void KVTMesh::calcSegmentVNormals(Vector<float, 3>* out, int first, int end) {
    Vector<float, 3> sum;
    for (int v = first; v < end; ++v) {
        const KVTVertex& vertex = vertices[v];
        for (int i = 0; i < vertex.getPolyListSize(); ++i) {
            sum = sum + faceNormals[vertex.getPolyIndex(i)];
        }
        sum.normalize();
        out[v] = sum;
    }
}

int KVTMesh::cornerIndex(int face, int corner) const {
    const int v = static_cast<int>(polygonIndices[face * m_verticesPerFace + corner]);
    KVT_ASSERT(v >= 0 && v < m_numVertices, "demosys/KVTMesh", "calcTangents");
    return v;
}

void KVTMesh::calcTangents(const Vector<float, 3>* positions, const Vector<float, 3>* normals,
                           Vector<float, 3>* tangents) {
    for (int v = 0; v < m_numVertices; ++v) {
        tangents[v] = Vector<float, 3>();
    }
    for (int f = 0; f < m_numFaces; ++f) {
        for (int corner = 1; corner + 1 < m_verticesPerFace; ++corner) {
            addTriangleTangent(positions, tangents, cornerIndex(f, 0), cornerIndex(f, corner),
                               cornerIndex(f, corner + 1));
        }
    }
    // Gram-Schmidt: keep only the part of the summed tangent that lies in the surface.
    for (int v = 0; v < m_numVertices; ++v) {
        Vector<float, 3> t = tangents[v] - normals[v] * normals[v].dotProduct(tangents[v]);
        if (t.dotProduct(t) > 1e-12f) {
            t.normalize();
            tangents[v] = t;
        } else {
            tangents[v] = Vector<float, 3>();
        }
    }
}

// Adds the triangle's d(position)/du to its three corners; a triangle whose texture
// coordinates have no area gives no direction and is skipped.
void KVTMesh::addTriangleTangent(const Vector<float, 3>* positions, Vector<float, 3>* tangents,
                                 int i0, int i1, int i2) const {
    const Vector<float, 3> e1 = positions[i1] - positions[i0];
    const Vector<float, 3> e2 = positions[i2] - positions[i0];
    const Vector<float, 2> d1 = texCoords[i1] - texCoords[i0];
    const Vector<float, 2> d2 = texCoords[i2] - texCoords[i0];
    const float area = d1.x() * d2.y() - d2.x() * d1.y();
    if (std::fabs(area) < 1e-12f) {
        return;
    }
    const Vector<float, 3> t = (e1 * d2.y() - e2 * d1.y()) * (1.0f / area);
    for (int v : {i0, i1, i2}) {
        tangents[v] = tangents[v] + t;
    }
}

void KVTMesh::printFaceMap() const {
    for (int f = 0; f < m_numFaces; ++f) {
        for (int i = 0; i < m_verticesPerFace; ++i) {
            std::cout << (i > 0 ? " " : "") << polygonIndices[f * m_verticesPerFace + i];
        }
        std::cout << std::endl;
    }
}
