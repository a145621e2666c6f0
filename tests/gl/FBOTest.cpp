#include "FBO.h"
#include "DataFBOPool.h"
#include "GLTestSupport.h"
#include "Texture.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>

using gltest::pixelAt;
using gltest::Rgba;

namespace {

class FBOs : public testing::Test {
protected:
    void SetUp() override { gltest::resetState(64, 64); }
    void TearDown() override { FBO::bind(nullptr); }
};

std::unique_ptr<FBO> rgbaFBO(int width, int height, bool depth = false) {
    return std::make_unique<FBO>(width, height, depth, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
}

void clearTo(FBO* fbo, float r, float g, float b, float a) {
    glClearColor(r, g, b, a);
    FBO::clearNow(fbo);
}

// A solid rectangle in normalised device coordinates, drawn with the fixed pipeline.
void fillRect(float x0, float y0, float x1, float y1, float r, float g, float b) {
    glColor4f(r, g, b, 1);
    glRectf(x0, y0, x1, y1);
    glColor4f(1, 1, 1, 1);
}

std::array<GLint, 4> viewport() {
    std::array<GLint, 4> v{};
    glGetIntegerv(GL_VIEWPORT, v.data());
    return v;
}

GLint boundFramebuffer() {
    GLint name = -1;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING_EXT, &name);
    return name;
}

} // namespace

TEST_F(FBOs, NullStandsForTheScreen) {
    EXPECT_EQ(FBO::toString(nullptr), "** screen or nullpointer**");
    EXPECT_EQ(FBO::getErrorMessage(nullptr), "unknown");
    EXPECT_FALSE(FBO::isValid(nullptr));
    EXPECT_FALSE(FBO::hasClearFlag(nullptr));
    EXPECT_FALSE(FBO::fboStatus(nullptr));
    EXPECT_EQ(FBO::getWidth(nullptr), 0);
    EXPECT_EQ(FBO::getHeight(nullptr), 0);
    EXPECT_EQ(FBO::getID(nullptr), 0u);
    EXPECT_EQ(FBO::getColorBuffer(nullptr, 0), nullptr);
    EXPECT_EQ(FBO::getDepthBuffer(nullptr), nullptr);
    FBO::clearLater(nullptr);
    FBO::clearNow(nullptr);
    FBO::draw(nullptr);
    FBO::bindColorBuffer(nullptr);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(FBOs, TextForm) {
    auto plain = rgbaFBO(128, 128);
    EXPECT_EQ(FBO::toString(plain.get()), "FBO(128,128,COLOR_BUFFER)");
    FBO withDepth(256, 256, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    EXPECT_EQ(FBO::toString(&withDepth), "FBO(256,256,COLOR_BUFFER,DEPTH_BUFFER)");
    FBO withStencil(8, 4, false, true, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    EXPECT_EQ(FBO::toString(&withStencil), "FBO(8,4,COLOR_BUFFER,STENCIL_BUFFER)");
}

TEST_F(FBOs, CompleteFramebuffersAreValidAndClearToTheClearColour) {
    auto fbo = rgbaFBO(8, 8);
    EXPECT_TRUE(FBO::isValid(fbo.get()));
    EXPECT_EQ(FBO::getErrorMessage(fbo.get()), "Framebuffer is complete.");
    EXPECT_EQ(boundFramebuffer(), 0) << "construction leaves the screen bound";
    clearTo(fbo.get(), 1, 0.5f, 0, 1);
    EXPECT_EQ(boundFramebuffer(), static_cast<GLint>(FBO::getID(fbo.get())));
    EXPECT_EQ(viewport(), (std::array<GLint, 4>{0, 0, 8, 8}));
    EXPECT_EQ(pixelAt(7, 7), (Rgba{255, 128, 0, 255}));
}

TEST_F(FBOs, AFramebufferWithoutAttachmentsReportsItsStatus) {
    FBO bare(16, 16);
    EXPECT_NE(FBO::getID(&bare), 0u);
    EXPECT_FALSE(FBO::isValid(&bare));
    FBO::bind(&bare);
    testing::internal::CaptureStdout();
    EXPECT_FALSE(FBO::fboStatus(&bare));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "FBO Framebuffer missing attachment(36055) = false\n");
    EXPECT_EQ(FBO::getErrorMessage(&bare), "Framebuffer missing attachment");
}

TEST_F(FBOs, RedundantBindsMakeNoGLCall) {
    auto a = rgbaFBO(8, 8);
    auto b = rgbaFBO(4, 4);
    gltest::GLCallCounter calls;
    FBO::bind(a.get());
    FBO::bind(a.get());
    EXPECT_EQ(calls.framebufferBinds(), 1);
    glViewport(1, 2, 3, 4);
    FBO::bind(a.get()); // the viewport is not reset either
    EXPECT_EQ(viewport(), (std::array<GLint, 4>{1, 2, 3, 4}));
    EXPECT_EQ(calls.framebufferBinds(), 1);

    FBO::bind(b.get());
    EXPECT_EQ(calls.framebufferBinds(), 2);
    EXPECT_EQ(viewport(), (std::array<GLint, 4>{0, 0, 4, 4}));
    EXPECT_EQ(calls.drawBuffersCalls(), 0) << "one colour texture needs no draw-buffer list";
}

TEST_F(FBOs, BindingTheScreenRestoresTheLetterboxedViewportOnce) {
    auto fbo = rgbaFBO(8, 8);
    gltest::GLCallCounter calls;
    FBO::bind(nullptr); // already the screen
    EXPECT_EQ(calls.framebufferBinds(), 0);
    FBO::bind(fbo.get());
    FBO::bind(nullptr);
    FBO::bind(nullptr);
    EXPECT_EQ(calls.framebufferBinds(), 2);
    EXPECT_EQ(boundFramebuffer(), 0);
    EXPECT_EQ(FBO::currentFBO, 0u);
    EXPECT_EQ(viewport(), (std::array<GLint, 4>{0, 14, 64, 36})); // 64 x 64 as 16:9
}

TEST_F(FBOs, DrawCopiesOneFramebufferIntoAnother) {
    auto source = rgbaFBO(16, 16);
    clearTo(source.get(), 0, 0, 1, 1);
    fillRect(-1, 0, 0, 1, 1, 0, 0); // top-left quarter red
    fillRect(0, -1, 1, 0, 0, 1, 0); // bottom-right quarter green
    auto target = rgbaFBO(16, 16);
    clearTo(target.get(), 0, 0, 0, 1);
    glMatrixMode(GL_PROJECTION);
    glTranslatef(0.5f, 0, 0); // draw uses identity matrices whatever these are
    glMatrixMode(GL_TEXTURE);
    FBO::draw(source.get());
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_TEXTURE) << "the matrix mode is put back";
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();

    FBO::bind(target.get());
    const std::vector<unsigned char> drawn = gltest::readRgba(0, 0, 16, 16);
    FBO::bind(source.get());
    EXPECT_EQ(drawn, gltest::readRgba(0, 0, 16, 16));
    FBO::bind(target.get());
    EXPECT_EQ(pixelAt(2, 13), (Rgba{255, 0, 0, 255}));
    EXPECT_EQ(pixelAt(13, 2), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(pixelAt(2, 2), (Rgba{0, 0, 255, 255}));
}

TEST_F(FBOs, DrawWithAHalfSizeShrinksTheQuad) {
    auto source = rgbaFBO(32, 32);
    clearTo(source.get(), 1, 1, 0, 1);
    fillRect(-1, -1, 0, 0, 1, 0, 1); // bottom-left quarter magenta
    auto target = rgbaFBO(32, 32);
    clearTo(target.get(), 0, 0, 0.4f, 1);
    FBO::draw(source.get(), 0.5f);
    FBO::bind(target.get());
    const std::vector<unsigned char> picture = gltest::readRgba(0, 0, 32, 32);
    gltest::savePng("fbo_draw_half_size.png", 32, 32, picture);
    EXPECT_EQ(pixelAt(3, 3), (Rgba{0, 0, 102, 255}));     // outside the quad
    EXPECT_EQ(pixelAt(10, 10), (Rgba{255, 0, 255, 255})); // the quad's bottom-left quarter
    EXPECT_EQ(pixelAt(21, 21), (Rgba{255, 255, 0, 255}));
    EXPECT_EQ(pixelAt(28, 28), (Rgba{0, 0, 102, 255}));
}

TEST_F(FBOs, AnInvalidFramebufferDrawsNothing) {
    FBO bare(8, 8);
    auto target = rgbaFBO(8, 8);
    clearTo(target.get(), 0, 1, 0, 1);
    FBO::draw(&bare);
    FBO::bindColorBuffer(&bare);
    EXPECT_EQ(pixelAt(4, 4), (Rgba{0, 255, 0, 255}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(FBOs, FloatColourKeepsValuesAboveOneAndBelowZero) {
    FBO velocity(4, 4, false, false, GL_RGB16F_ARB, GL_RGB, GL_FLOAT);
    FBO pressure(4, 4, false, false, GL_R16F, GL_RED, GL_FLOAT);
    ASSERT_TRUE(FBO::isValid(&velocity)) << FBO::getErrorMessage(&velocity);
    ASSERT_TRUE(FBO::isValid(&pressure)) << FBO::getErrorMessage(&pressure);
    clearTo(&velocity, 2.5f, -1.25f, 0.125f, 1);
    const std::vector<float> rgb = gltest::readRgbFloat(1, 1, 1, 1);
    EXPECT_FLOAT_EQ(rgb[0], 2.5f);
    EXPECT_FLOAT_EQ(rgb[1], -1.25f);
    EXPECT_FLOAT_EQ(rgb[2], 0.125f);
    clearTo(&pressure, -3.0f, 0, 0, 1);
    EXPECT_FLOAT_EQ(gltest::readRgbFloat(2, 2, 1, 1)[0], -3.0f);
}

TEST_F(FBOs, DepthLivesInATexture) {
    auto fbo = rgbaFBO(8, 8, true);
    ASSERT_TRUE(FBO::isValid(fbo.get()));
    ASSERT_NE(FBO::getDepthBuffer(fbo.get()), nullptr);
    glClearDepth(1.0);
    clearTo(fbo.get(), 0, 0, 0, 1);
    glEnable(GL_DEPTH_TEST);
    glBegin(GL_QUADS); // z = 0.5 in normalised coordinates: depth 0.75
    glVertex3f(-1, -1, 0.5f);
    glVertex3f(1, -1, 0.5f);
    glVertex3f(1, 1, 0.5f);
    glVertex3f(-1, 1, 0.5f);
    glEnd();
    glDisable(GL_DEPTH_TEST);

    Texture* depth = FBO::getDepthBuffer(fbo.get());
    std::vector<float> texels(64);
    glBindTexture(GL_TEXTURE_2D, depth->getID());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, GL_FLOAT, texels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_NEAR(texels[27], 0.75f, 1e-4);

    clearTo(fbo.get(), 0, 0, 0, 1); // clears depth too, as the FBO has a depth texture
    glBindTexture(GL_TEXTURE_2D, depth->getID());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, GL_FLOAT, texels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_FLOAT_EQ(texels[27], 1.0f);
}

TEST_F(FBOs, SeveralColourTexturesAreDrawnIntoAtOnce) {
    auto fbo = rgbaFBO(4, 4);
    fbo->addColorTextureBuffer(GL_RGBA, GL_RGBA);
    gltest::GLCallCounter calls;
    clearTo(fbo.get(), 0.2f, 0.4f, 0.6f, 1.0f); // a clear reaches every draw buffer
    EXPECT_EQ(calls.drawBuffersCalls(), 1);
    std::vector<unsigned char> second(4 * 4 * 4);
    glBindTexture(GL_TEXTURE_2D, FBO::getColorBuffer(fbo.get(), 1)->getID());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, second.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(second[0], 51);
    EXPECT_EQ(second[1], 102);
    EXPECT_EQ(second[2], 153);
}

TEST_F(FBOs, DestructionFreesTheTexturesAndTheFramebuffer) {
    auto fbo = rgbaFBO(4, 4, true);
    fbo->addColorTextureBuffer(GL_RGBA, GL_RGBA);
    const std::vector<unsigned int> textures = {FBO::getColorBuffer(fbo.get(), 0)->getID(),
                                                FBO::getColorBuffer(fbo.get(), 1)->getID(),
                                                FBO::getDepthBuffer(fbo.get())->getID()};
    const unsigned int name = FBO::getID(fbo.get());
    for (unsigned int texture : textures) {
        ASSERT_TRUE(glIsTexture(texture));
    }
    fbo.reset();
    for (unsigned int texture : textures) {
        EXPECT_FALSE(glIsTexture(texture));
    }
    EXPECT_FALSE(glIsFramebufferEXT(name));
}

TEST_F(FBOs, ThePoolClearsFlaggedFramebuffersAndEndsOnTheScreen) {
    DataFBOPool pool;
    FBO* kept = new FBO(4, 4, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    FBO* flagged = new FBO(4, 4, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    pool.addFBO("kept", kept);
    pool.addFBO("flagged", flagged);
    clearTo(kept, 1, 0, 0, 1);
    clearTo(flagged, 1, 0, 0, 1);
    FBO::clearLater(flagged);
    EXPECT_TRUE(FBO::hasClearFlag(flagged));
    glClearColor(0, 0, 0, 0);
    pool.clearFlaggedFBOs();
    EXPECT_FALSE(FBO::hasClearFlag(flagged));
    EXPECT_EQ(FBO::currentFBO, 0u);
    EXPECT_EQ(boundFramebuffer(), 0);
    FBO::bind(flagged);
    EXPECT_EQ(pixelAt(1, 1), (Rgba{0, 0, 0, 0}));
    FBO::bind(kept);
    EXPECT_EQ(pixelAt(1, 1), (Rgba{255, 0, 0, 255}));
}

TEST_F(FBOs, ThePoolKeepsOrderOfAdditionAndOwnsItsFramebuffers) {
    unsigned int names[2];
    {
        DataFBOPool pool;
        pool.addFBO("zeta", new FBO(2, 2, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE));
        pool.addFBO("alpha", new FBO(4, 4, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE));
        EXPECT_EQ(pool.GetKey(0), "zeta");
        EXPECT_EQ(FBO::getWidth(pool.GetFBOByIndex(1)), 4);
        EXPECT_EQ(pool.toString(), "FBOPool {\n  alpha = FBO(4,4,COLOR_BUFFER,DEPTH_BUFFER)\n"
                                   "  zeta = FBO(2,2,COLOR_BUFFER)\n}\n");
        testing::internal::CaptureStdout();
        EXPECT_EQ(pool.getFBO("missing"), nullptr);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  "FBO::getFBO(missing) cannot find the requested VBO\n");
        names[0] = FBO::getID(pool.getFBO("zeta"));
        names[1] = FBO::getID(pool.getFBO("alpha"));
    }
    EXPECT_FALSE(glIsFramebufferEXT(names[0]));
    EXPECT_FALSE(glIsFramebufferEXT(names[1]));
}
