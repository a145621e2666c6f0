#include "KVTMesh.h"

#include <cmath>
#include <gtest/gtest.h>

using Vec3 = Vector<float, 3>;

namespace {

void expectVectorNear(const Vec3& v, float x, float y, float z) {
    EXPECT_NEAR(v.x(), x, 1e-5);
    EXPECT_NEAR(v.y(), y, 1e-5);
    EXPECT_NEAR(v.z(), z, 1e-5);
}

bool isNaN(const Vec3& v) {
    return std::isnan(v.x()) && std::isnan(v.y()) && std::isnan(v.z());
}

// The wave-surface grid of the underwater scene: n x n vertices in the plane y = 0, one quad
// per cell with corners (i, i + n, i + n + 1, i + 1).
void buildSurfaceGrid(KVTMesh& mesh, int n, float size) {
    const float d = size / n;
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c < n; ++c) {
            mesh.getVertexPointer()[r * n + c] = Vec3(-size / 2 + c * d, 0, size / 2 - r * d);
        }
    }
    int face = 0;
    for (int r = 0; r + 1 < n; ++r) {
        for (int c = 0; c + 1 < n; ++c) {
            const int i = r * n + c;
            mesh.setQuad(face++, i, i + n, i + n + 1, i + 1);
        }
    }
}

} // namespace

TEST(KVTMesh, StartsZeroedWithTheGivenCounts) {
    KVTMesh mesh(4, 2, 3, true, false, true);
    EXPECT_EQ(mesh.getNumVertices(), 4);
    EXPECT_EQ(mesh.getNumFaces(), 2);
    EXPECT_EQ(mesh.getVerticesPerFace(), 3);
    for (int v = 0; v < 4; ++v) {
        expectVectorNear(mesh.getVertexPointer()[v], 0, 0, 0);
        expectVectorNear(mesh.getVertexNormalPointer()[v], 0, 0, 0);
        EXPECT_EQ(mesh.getTexCoordPointer()[v].x(), 0);
        EXPECT_EQ(mesh.getVertex(v).getPolyListSize(), 0);
    }
    expectVectorNear(mesh.getFaceNormalPointer()[1], 0, 0, 0);
}

TEST(KVTMesh, SettingPolygonsFillsIndicesAndAdjacency) {
    KVTMesh mesh(5, 2, 4, false, false, false);
    mesh.setQuad(0, 0, 1, 2, 3);
    mesh.setTriangle(1, 2, 4, 0);

    const std::uint32_t* indices = mesh.getPolygonPointer();
    const std::uint32_t expected[] = {0, 1, 2, 3, 2, 4, 0};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(indices[i], expected[i]) << i;
    }
    EXPECT_EQ(mesh.getVertex(2).getPolyListSize(), 2);
    EXPECT_EQ(mesh.getVertex(2).getPolyIndex(0), 0);
    EXPECT_EQ(mesh.getVertex(2).getPolyIndex(1), 1);
    EXPECT_EQ(mesh.getVertex(4).getPolyListSize(), 1);
    EXPECT_EQ(mesh.getVertex(4).getPolyIndex(0), 1);

    EXPECT_EQ(mesh.getPolygon(0).getVertexData(3), &mesh.getVertex(3));
    EXPECT_EQ(mesh.getPolygon(1).getVertexData(1), &mesh.getVertex(4));
    EXPECT_EQ(mesh.getPolygon(1).getVertexData(3), nullptr);
}

TEST(KVTMesh, PolygonSizeIsSharedAndFollowsTheLastPolygonSet) {
    KVTMesh quads(4, 1, 4, false, false, false);
    KVTMesh triangles(3, 1, 3, false, false, false);
    quads.setQuad(0, 0, 1, 2, 3);
    EXPECT_EQ(KVTPolygon::m_poly_size, 4);
    triangles.setTriangle(0, 0, 1, 2);
    EXPECT_EQ(KVTPolygon::m_poly_size, 3);
    EXPECT_NE(quads.getPolygon(0).getVertexData(3), nullptr); // the quad itself is unchanged
}

TEST(KVTMesh, FaceNormalSideFollowsTheWinding) {
    KVTMesh mesh(3, 2, 3, false, false, false);
    Vec3* p = mesh.getVertexPointer();
    p[0] = Vec3(0, 0, 0);
    p[1] = Vec3(5, 0, 0);
    p[2] = Vec3(0, 0, 5);
    mesh.setTriangle(0, 0, 1, 2);
    mesh.setTriangle(1, 0, 2, 1);
    mesh.calcFNormals(p);
    expectVectorNear(mesh.getFaceNormalPointer()[0], 0, -1, 0);
    expectVectorNear(mesh.getFaceNormalPointer()[1], 0, 1, 0);
}

TEST(KVTMesh, QuadNormalsUseTheFirstThreeCornersAndTheGivenPositions) {
    KVTMesh mesh(4, 1, 4, false, false, false);
    mesh.setQuad(0, 0, 1, 2, 3);
    Vec3 elsewhere[4] = {Vec3(0, 0, 0), Vec3(0, 0, 1), Vec3(0, 1, 0), Vec3(7, 9, -3)};
    mesh.calcFNormals(elsewhere);
    expectVectorNear(mesh.getFaceNormalPointer()[0], -1, 0, 0);
}

TEST(KVTMesh, FlatGridGetsOneNormalEverywhere) {
    const int n = 5;
    KVTMesh mesh(n * n, (n - 1) * (n - 1), 4, true, true, true);
    buildSurfaceGrid(mesh, n, 10);
    mesh.calcFNormals(mesh.getVertexPointer());
    for (int f = 0; f < mesh.getNumFaces(); ++f) {
        expectVectorNear(mesh.getFaceNormalPointer()[f], 0, -1, 0);
    }
    mesh.calcVNormals(mesh.getVertexNormalPointer());
    for (int v = 0; v < mesh.getNumVertices(); ++v) {
        expectVectorNear(mesh.getVertexNormalPointer()[v], 0, -1, 0);
    }
}

TEST(KVTMesh, VertexNormalSumCarriesOverToTheNextVertex) {
    // Vertex 0 lies only on a face facing -y, vertex 1 only on a face facing +x.
    KVTMesh mesh(6, 2, 3, false, false, false);
    Vec3* p = mesh.getVertexPointer();
    p[0] = Vec3(0, 0, 0);
    p[2] = Vec3(1, 0, 0);
    p[3] = Vec3(0, 0, 1);
    p[1] = Vec3(0, 0, 0);
    p[4] = Vec3(0, 1, 0);
    p[5] = Vec3(0, 0, 1);
    mesh.setTriangle(0, 0, 2, 3);
    mesh.setTriangle(1, 1, 4, 5);
    mesh.calcFNormals(p);
    expectVectorNear(mesh.getFaceNormalPointer()[0], 0, -1, 0);
    expectVectorNear(mesh.getFaceNormalPointer()[1], 1, 0, 0);

    Vec3 out[6];
    mesh.calcVNormals(out);
    const float h = std::sqrt(0.5f);
    expectVectorNear(out[0], 0, -1, 0);
    expectVectorNear(out[1], h, -h, 0);

    // A segment starts its own sum, and writes only its own vertices.
    Vec3 segment[6];
    segment[0] = Vec3(9, 9, 9);
    mesh.calcSegmentVNormals(segment, 1, 2);
    expectVectorNear(segment[0], 9, 9, 9);
    expectVectorNear(segment[1], 1, 0, 0);
    expectVectorNear(segment[2], 0, 0, 0);
}

TEST(KVTMesh, OpposedFacesGiveNonNumbersThatTheNextVertexInherits) {
    KVTMesh mesh(4, 2, 3, false, false, false);
    Vec3* p = mesh.getVertexPointer();
    p[1] = Vec3(1, 0, 0);
    p[2] = Vec3(0, 0, 1);
    mesh.setTriangle(0, 0, 1, 2);
    mesh.setTriangle(1, 0, 2, 1);
    mesh.calcFNormals(p);
    mesh.calcVNormals(mesh.getVertexNormalPointer());
    for (int v = 0; v < 4; ++v) {
        EXPECT_TRUE(isNaN(mesh.getVertexNormalPointer()[v])) << v;
    }
}

TEST(KVTMesh, SegmentFaceNormalsTouchOnlyTheirFaces) {
    KVTMesh mesh(3, 3, 3, false, false, false);
    Vec3* p = mesh.getVertexPointer();
    p[1] = Vec3(1, 0, 0);
    p[2] = Vec3(0, 0, 1);
    for (int f = 0; f < 3; ++f) {
        mesh.setTriangle(f, 0, 1, 2);
    }
    mesh.calcSegmentFNormals(p, 1, 2);
    expectVectorNear(mesh.getFaceNormalPointer()[0], 0, 0, 0);
    expectVectorNear(mesh.getFaceNormalPointer()[1], 0, -1, 0);
    expectVectorNear(mesh.getFaceNormalPointer()[2], 0, 0, 0);
}

TEST(KVTMeshDeathTest, VertexIndexOutOfRangeStopsFaceNormals) {
    // Corner 0 is checked as v12, corner 1 as v11, corner 2 as v22.
    const char* conditions[] = {"v12 >= 0 && v12 < m_numVertices",
                                "v11 >= 0 && v11 < m_numVertices",
                                "v22 >= 0 && v22 < m_numVertices"};
    for (int corner = 0; corner < 3; ++corner) {
        KVTMesh mesh(3, 1, 3, false, false, false);
        mesh.setTriangle(0, 0, 1, 2);
        mesh.getPolygonPointer()[corner] = 3;
        EXPECT_DEATH(mesh.calcFNormals(mesh.getVertexPointer()),
                     std::string("demosys/KVTMesh.*calcFNormals.*") + conditions[corner]);
    }
}

TEST(KVTMeshDeathTest, TooFewIndicesPerFaceStopFaceNormals) {
    KVTMesh mesh(3, 1, 2, false, false, false);
    EXPECT_DEATH(mesh.calcFNormals(mesh.getVertexPointer()),
                 "demosys/KVTMesh.*calcFNormals.*f2 >= 0 && f2 < m_numFaces \\* m_verticesPerFace");
}

TEST(KVTMesh, TangentsFollowTheTextureUDirectionInTheSurface) {
    // One quad on the slope y = x whose u runs along +x; the normals given are straight up,
    // so the tangent keeps only its part across them.
    KVTMesh mesh(4, 1, 4, false, false, false);
    Vec3* p = mesh.getVertexPointer();
    p[0] = Vec3(0, 0, 0);
    p[1] = Vec3(0, 0, -1);
    p[2] = Vec3(1, 1, -1);
    p[3] = Vec3(1, 1, 0);
    mesh.setTexCoord(0, Vector<float, 2>(0, 0));
    mesh.setTexCoord(1, Vector<float, 2>(0, 1));
    mesh.setTexCoord(2, Vector<float, 2>(1, 1));
    mesh.setTexCoord(3, Vector<float, 2>(1, 0));
    mesh.setQuad(0, 0, 1, 2, 3);
    Vec3 up[4] = {Vec3(0, 1, 0), Vec3(0, 1, 0), Vec3(0, 1, 0), Vec3(0, 1, 0)};
    Vec3 tangents[4];
    mesh.calcTangents(p, up, tangents);
    for (int v = 0; v < 4; ++v) {
        expectVectorNear(tangents[v], 1, 0, 0);
    }

    for (int v = 0; v < 4; ++v) { // mirrored u
        mesh.setTexCoord(v, Vector<float, 2>(1 - mesh.getTexCoordPointer()[v].x(),
                                             mesh.getTexCoordPointer()[v].y()));
    }
    mesh.calcTangents(p, up, tangents);
    expectVectorNear(tangents[2], -1, 0, 0);

    for (int v = 0; v < 4; ++v) { // no texture area: no direction
        mesh.setTexCoord(v, Vector<float, 2>(0.5f, 0.5f));
    }
    mesh.calcTangents(p, up, tangents);
    expectVectorNear(tangents[0], 0, 0, 0);
}

TEST(KVTMesh, PrintFaceMapWritesOneFacePerLine) {
    KVTMesh mesh(4, 2, 3, false, false, false);
    mesh.setTriangle(0, 0, 1, 2);
    mesh.setTriangle(1, 2, 1, 3);
    testing::internal::CaptureStdout();
    mesh.printFaceMap();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 1 2\n2 1 3\n");
}
