#include "VBO.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "KVTMesh.h"
#include "Shader.h"
#include "VBODynamic.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>

using gltest::pixelAt;
using gltest::Rgba;

namespace {

class VertexBuffers : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(64, 64);
        FBO::bind(target.get());
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    void TearDown() override { FBO::bind(nullptr); }

    // Pixels of the 8 x 8 target that are not black.
    int coverage() {
        const std::vector<unsigned char> pixels = gltest::readRgba(0, 0, 8, 8);
        int covered = 0;
        for (std::size_t i = 0; i < pixels.size(); i += 4) {
            covered += (pixels[i] | pixels[i + 1] | pixels[i + 2]) != 0 ? 1 : 0;
        }
        return covered;
    }

    GLint arrayBufferBinding() {
        GLint name = 0;
        glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &name);
        return name;
    }

    std::unique_ptr<FBO> target =
        std::make_unique<FBO>(8, 8, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
};

} // namespace

TEST_F(VertexBuffers, WithoutIndicesTrianglesAreDrawnInOrder) {
    // Two triangles covering the left half.
    const float vertices[] = {-1, -1, 0, -1, 0, 1, -1, -1, 0, 1, -1, 1};
    VBO vbo;
    vbo.setVertexBuffer(6, 2, 0, 0, vertices);
    vbo.draw();
    EXPECT_EQ(coverage(), 32);
    EXPECT_EQ(pixelAt(1, 4).r, 255);
    EXPECT_EQ(pixelAt(6, 4).r, 0);
    EXPECT_NE(arrayBufferBinding(), 0) << "the vertex buffer stays bound without indices";
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

TEST_F(VertexBuffers, InterleavedNormalsAndTextureCoordinatesLandInTheirArrays) {
    // Position (2), normal (3), uv (2) per vertex: a full-screen quad from indices.
    const float vertices[] = {-1, -1, 0, 0, 1, 0, 0, 1,  -1, 0, 0, 1, 1, 0,
                              1,  1,  0, 0, 1, 1, 1, -1, 1,  0, 0, 1, 0, 1};
    const unsigned int indices[] = {0, 1, 2, 0, 2, 3};
    VBO vbo;
    vbo.setVertexBuffer(4, 2, 3, 2, vertices);
    vbo.setElementBuffer(2, indices);
    Shader shader;
    ASSERT_TRUE(shader.setVertexSource("varying vec3 colour;\n"
                                       "void main() {\n"
                                       "    colour = vec3(gl_MultiTexCoord0.st, gl_Normal.z);\n"
                                       "    gl_Position = gl_Vertex;\n"
                                       "}\n"));
    ASSERT_TRUE(shader.setFragmentSource("varying vec3 colour;\n"
                                         "void main() { gl_FragColor = vec4(colour, 1.0); }\n"));
    ASSERT_TRUE(shader.link());
    shader.use();
    vbo.draw();
    shader.release();
    EXPECT_EQ(coverage(), 64);
    const Rgba bottomLeft = pixelAt(0, 0);
    const Rgba topRight = pixelAt(7, 7);
    EXPECT_LT(bottomLeft.r, 20);
    EXPECT_LT(bottomLeft.g, 20);
    EXPECT_EQ(bottomLeft.b, 255);
    EXPECT_GT(topRight.r, 235);
    EXPECT_GT(topRight.g, 235);
    EXPECT_EQ(arrayBufferBinding(), 0);
}

TEST_F(VertexBuffers, DynamicQuadsAreWrittenThroughTheMappedBuffers) {
    VBODynamic quads(8, 3, 4, 0, 0, 4, 2);
    const float corners[8][2] = {{-1, -1}, {0, -1}, {0, 0}, {-1, 0}, // bottom-left quarter
                                 {0, 0},   {1, 0},  {1, 1}, {0, 1}}; // top-right quarter
    quads.openVertexBuffer(GL_WRITE_ONLY);
    for (int i = 0; i < 8; ++i) {
        Vector<float, 3> v(corners[i][0], corners[i][1], 0.0f);
        quads.setVertex(i, v);
    }
    quads.closeVertexBuffer();
    quads.openColorBuffer(GL_WRITE_ONLY);
    for (int i = 0; i < 8; ++i) {
        Vector<float, 4> c(i < 4 ? 1.0f : 0.0f, i < 4 ? 0.0f : 1.0f, 0.0f, 1.0f);
        quads.setColor(i, c);
    }
    quads.closeColorBuffer();
    quads.openPolygonBuffer(GL_WRITE_ONLY);
    Vector<int, 4> first(0, 1, 2, 3);
    Vector<int, 4> second(4, 5, 6, 7);
    quads.setPolygon(0, first);
    quads.setPolygon(1, second);
    quads.closePolygonBuffer();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));

    quads.drawPolygons(GL_QUADS, 0, 0);
    EXPECT_EQ(coverage(), 32);
    EXPECT_EQ(pixelAt(1, 1), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(6, 6), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(pixelAt(6, 1), (Rgba{0, 0, 0, 255}));

    glClear(GL_COLOR_BUFFER_BIT);
    quads.drawPolygons(GL_QUADS, 0, 1); // one polygon, from the start
    EXPECT_EQ(coverage(), 16);
    EXPECT_EQ(pixelAt(6, 6), (Rgba{0, 0, 0, 255}));

    glClear(GL_COLOR_BUFFER_BIT);
    quads.drawArray(GL_QUADS, 5, 5); // equal first and count: everything
    EXPECT_EQ(coverage(), 32);
    glClear(GL_COLOR_BUFFER_BIT);
    quads.drawArray(GL_QUADS, 0, 4); // the first four vertices only
    EXPECT_EQ(coverage(), 16);
    EXPECT_EQ(pixelAt(1, 1), (Rgba{255, 0, 0, 255}));
    EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY));
    EXPECT_EQ(arrayBufferBinding(), 0);
}

TEST_F(VertexBuffers, SettersRejectElementsOutsideTheBuffer) {
    VBODynamic buffer(4, 3, 3, 0, 0, 3, 1);
    buffer.openVertexBuffer(GL_READ_WRITE);
    Vector<float, 3> last(7, 8, 9);
    Vector<float, 3> beyond(1, 1, 1);
    testing::internal::CaptureStdout();
    buffer.setVertex(3, last);
    buffer.setVertex(4, beyond);
    buffer.setVertex(-1, beyond);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VBODynamic::setVertex(4) overflow!\nVBODynamic::setVertex(-1) overflow!\n");
    EXPECT_EQ(buffer.getVertexPointer()[9], 7);
    buffer.closeVertexBuffer();

    buffer.openColorBuffer(GL_WRITE_ONLY);
    buffer.openPolygonBuffer(GL_WRITE_ONLY);
    Vector<float, 4> rgba(1, 1, 1, 1); // four floats into three-float colours
    Vector<int, 4> quad(0, 1, 2, 3);   // four indices into a one-triangle buffer
    Vector<int, 3> triangle(0, 1, 2);
    testing::internal::CaptureStdout();
    buffer.setColor(3, rgba);
    buffer.setPolygon(0, quad);
    buffer.setPolygon(1, triangle);
    buffer.setPolygon(0, triangle);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VBODynamic::setColor(3) overflow!\nVBODynamic::setPolygon(0) overflow!\n"
              "VBODynamic::setPolygon(1) overflow!\n");
    buffer.closePolygonBuffer();
    buffer.closeColorBuffer();

    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(VertexBuffers, AMeshUploadsItsArraysAndDrawsItsQuads) {
    KVTMesh mesh(4, 1, 4, false, false, false);
    const float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    for (int i = 0; i < 4; ++i) {
        mesh.getVertexPointer()[i] = Vector<float, 3>(corners[i][0], corners[i][1], 0.0f);
        mesh.getVertexNormalPointer()[i] = Vector<float, 3>(0.0f, 0.0f, 1.0f);
    }
    mesh.setQuad(0, 0, 1, 2, 3);
    VBODynamic vbo(&mesh);
    EXPECT_EQ(vbo.getVertexPointer(), mesh.getVertexPointer()->data());
    vbo.drawPolygons(GL_QUADS, 0, 0);
    EXPECT_EQ(coverage(), 64);
}

TEST_F(VertexBuffers, AttributeBuffersFeedTheShadersAttributes) {
    VBODynamic quad(4, 2, 0, 0, 0, 0, 0);
    quad.openVertexBuffer(GL_WRITE_ONLY);
    const float corners[] = {-1, -1, 1, -1, 1, 1, -1, 1};
    std::copy(corners, corners + 8, quad.getVertexPointer());
    quad.closeVertexBuffer();
    const float tints[] = {0, 0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1};
    quad.initVertexAttributeData(3, sizeof(tints), tints);
    Shader shader;
    ASSERT_TRUE(shader.setVertexSource("attribute vec3 tint;\nvarying vec3 colour;\n"
                                       "void main() { colour = tint; gl_Position = gl_Vertex; }"));
    ASSERT_TRUE(shader.setFragmentSource("varying vec3 colour;\n"
                                         "void main() { gl_FragColor = vec4(colour, 1.0); }"));
    ASSERT_TRUE(shader.link());
    shader.use();
    quad.bindVertexAttrib(3, &shader, "tint");
    quad.bindVertexAttrib(3, &shader, "absent"); // nothing to point at
    quad.drawArray(GL_QUADS, 0, 0);
    shader.release();
    glDisableVertexAttribArray(
        static_cast<GLuint>(glGetAttribLocation(shader.getProgramHandle(), "tint")));
    EXPECT_EQ(pixelAt(4, 4), (Rgba{0, 0, 255, 255}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
