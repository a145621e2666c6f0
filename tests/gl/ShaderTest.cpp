#include "Shader.h"
#include "DataShaderPool.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "Geometry.h"
#include "KVTDemosys.h"
#include "MemoryResourceLoader.h"
#include "Texture.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <memory>

using gltest::pixelAt;
using gltest::Rgba;

namespace {

const char* PASS_VERTEX = "void main() {\n"
                          "    gl_TexCoord[0] = gl_MultiTexCoord0;\n"
                          "    gl_Position = gl_Vertex;\n"
                          "}\n";

std::unique_ptr<Shader> compiled(const std::string& vertex, const std::string& fragment) {
    auto shader = std::make_unique<Shader>();
    EXPECT_TRUE(shader->setVertexSource(vertex)) << shader->getErrorMessage();
    EXPECT_TRUE(shader->setFragmentSource(fragment)) << shader->getErrorMessage();
    EXPECT_TRUE(shader->link()) << shader->getErrorMessage();
    return shader;
}

std::vector<float> uniformValues(const Shader& shader, const char* name, int count) {
    std::vector<float> values(count);
    glGetUniformfv(shader.getProgramHandle(), glGetUniformLocation(shader.getProgramHandle(), name),
                   values.data());
    return values;
}

class Shaders : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(64, 64);
        KVTDemosys::system_error = false;
        KVTDemosys::miscResources.clear();
    }
    void TearDown() override {
        glUseProgram(0);
        FBO::bind(nullptr);
    }

    std::unique_ptr<FBO> target =
        std::make_unique<FBO>(4, 4, false, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    MemoryResourceLoader loader;
};

} // namespace

TEST_F(Shaders, AUniformWrittenByTheShaderIsReadBackFromAFramebuffer) {
    loader.files["resources/shaders/tint.vert"] =
        "#include require_half.glsl\n" + std::string(PASS_VERTEX);
    loader.files["resources/shaders/require_half.glsl"] = "#ifndef HALF\n#error no HALF\n#endif";
    loader.files["resources/shaders/tint.frag"] =
        "#include require_half.glsl\n"
        "uniform vec4 colour;\n"
        "void main() {\n"
        "    gl_FragColor = vec4(colour.rgb * HALF, 1.0);\n"
        "}\n";
    Shader shader;
    ASSERT_TRUE(loader.loadShader(&shader, {"tint", "tint", {"ignored", "HALF 0.5"}}))
        << loader.getErrorMessage();
    EXPECT_EQ(KVTDemosys::miscResources,
              std::vector<std::string>{"resources/shaders/require_half.glsl"});

    FBO::bind(target.get());
    shader.use();
    shader.setUniform4f("colour", 1.0f, 0.5f, 0.25f, 1.0f);
    Geometry::drawUnitQuad();
    shader.release();
    EXPECT_EQ(pixelAt(1, 2), (Rgba{128, 64, 32, 255}));
    EXPECT_EQ(pixelAt(3, 0), (Rgba{128, 64, 32, 255}));
}

TEST_F(Shaders, EverySetterReachesItsUniform) {
    auto shader = compiled(PASS_VERTEX, "uniform float f; uniform float asInt;\n"
                                        "uniform vec2 v2; uniform vec3 v3; uniform vec4 v4;\n"
                                        "uniform vec2 w2; uniform vec3 w3; uniform vec4 w4;\n"
                                        "uniform mat3 m3; uniform mat4 m4;\n"
                                        "void main() {\n"
                                        "    gl_FragColor = vec4(f + asInt) + v2.xyxy + v3.xyzx"
                                        " + v4 + w2.xyxy + w3.xyzx + w4 + m3[0].xyzx + m4[1];\n"
                                        "}\n");
    shader->use();
    shader->setUniform1f("f", 0.5f);
    shader->setUniform1i("asInt", 3); // through the float entry point: a float uniform takes it
    shader->setUniform2f("v2", 1, 2);
    shader->setUniform3f("v3", 1, 2, 3);
    shader->setUniform4f("v4", 1, 2, 3, 4);
    shader->setUniform2fv("w2", Vector<float, 2>(5, 6));
    shader->setUniform3fv("w3", Vector<float, 3>(5, 6, 7));
    shader->setUniform4fv("w4", Vector<float, 4>(5, 6, 7, 8));
    float m3[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    float m4[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
    shader->setUniform3x3m("m3", m3);
    shader->setUniform4x4m("m4", m4);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(uniformValues(*shader, "f", 1), std::vector<float>{0.5f});
    EXPECT_EQ(uniformValues(*shader, "asInt", 1), std::vector<float>{3.0f});
    EXPECT_EQ(uniformValues(*shader, "v4", 4), (std::vector<float>{1, 2, 3, 4}));
    EXPECT_EQ(uniformValues(*shader, "w3", 3), (std::vector<float>{5, 6, 7}));
    // Flat element k is OpenGL's element k: no transposition.
    EXPECT_EQ(uniformValues(*shader, "m3", 9), std::vector<float>(m3, m3 + 9));
    EXPECT_EQ(uniformValues(*shader, "m4", 16), std::vector<float>(m4, m4 + 16));
    EXPECT_FALSE(KVTDemosys::system_error);
}

TEST_F(Shaders, MissingUniformsAreReportedExceptByTheVectorSetters) {
    auto shader = compiled(PASS_VERTEX, "void main() { gl_FragColor = vec4(1.0); }\n");
    shader->use();
    float matrix[16] = {};
    testing::internal::CaptureStdout();
    shader->setUniform2f("a", 1, 2);
    shader->setUniform3f("a", 1, 2, 3);
    shader->setUniform4f("a", 1, 2, 3, 4);
    shader->setUniform2fv("a", Vector<float, 2>());
    shader->setUniform3fv("a", Vector<float, 3>());
    shader->setUniform4fv("a", Vector<float, 4>());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_FALSE(KVTDemosys::system_error);

    testing::internal::CaptureStdout();
    shader->setUniform1i("i", 1);
    shader->setUniform1f("f", 1);
    shader->setUniform3x3m("m3", matrix);
    shader->setUniform4x4m("m4", matrix);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Error: Uniform variable 'i' not found!\n"
                                                      "Error: Uniform variable 'f' not found!\n"
                                                      "Error: Uniform variable 'm3' not found!\n"
                                                      "Error: Uniform variable 'm4' not found!\n");
    EXPECT_TRUE(KVTDemosys::system_error);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// Locations are remembered per name until the program is linked again, as a shader reload
// does: a uniform missing before the relink is found after it, and one that moved is followed.
TEST_F(Shaders, ARelinkedProgramFindsItsUniformsAnew) {
    auto shader = compiled(PASS_VERTEX, "uniform vec4 first;\n"
                                        "void main() { gl_FragColor = first; }\n");
    shader->use();
    shader->setUniform4f("first", 1, 2, 3, 4);
    shader->setUniform4f("second", 1, 2, 3, 4);
    EXPECT_EQ(uniformValues(*shader, "first", 4), (std::vector<float>{1, 2, 3, 4}));

    ASSERT_TRUE(shader->setFragmentSource("uniform vec4 second; uniform vec4 first;\n"
                                          "void main() { gl_FragColor = second - first; }\n"));
    ASSERT_TRUE(shader->link()) << shader->getErrorMessage();
    shader->use();
    shader->setUniform4f("second", 5, 6, 7, 8);
    shader->setUniform4f("first", 4, 3, 2, 1);
    EXPECT_EQ(uniformValues(*shader, "second", 4), (std::vector<float>{5, 6, 7, 8}));
    EXPECT_EQ(uniformValues(*shader, "first", 4), (std::vector<float>{4, 3, 2, 1}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Shaders, SetUniform1iOnASamplerGoesThroughTheFloatEntryPoint) {
    auto shader =
        compiled(PASS_VERTEX, "uniform sampler2D tex;\n"
                              "void main() { gl_FragColor = texture2D(tex, vec2(0.5)); }\n");
    shader->use();
    shader->setUniform1i("tex", 1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_OPERATION));
}

TEST_F(Shaders, TextureUnitsAreBoundForTheProgramAndReleasedFromTheTable) {
    const unsigned char green[] = {0, 255, 0, 255};
    Texture texture(1, 1, GL_TEXTURE_2D, GL_RGBA, GL_RGBA, green);
    auto shader =
        compiled(PASS_VERTEX, "uniform sampler2D picture;\n"
                              "void main() {\n"
                              "    gl_FragColor = texture2D(picture, gl_TexCoord[0].st);\n"
                              "}\n");
    auto boundOnUnit = [](int unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        GLint name = 0;
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &name);
        glActiveTexture(GL_TEXTURE0);
        return static_cast<unsigned int>(name);
    };
    FBO::bind(target.get());
    shader->use();
    shader->setTextureUnit2("picture", &texture);
    EXPECT_EQ(boundOnUnit(2), texture.getID());
    Geometry::drawUnitQuad();
    EXPECT_EQ(pixelAt(2, 2), (Rgba{0, 255, 0, 255}));
    shader->release();
    EXPECT_EQ(boundOnUnit(2), 0u);

    shader->use();
    shader->setTextureUnit2("picture", &texture);
    shader->use(); // forgets the table: release has nothing to release
    shader->release();
    EXPECT_EQ(boundOnUnit(2), texture.getID());
    GLint active = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    EXPECT_EQ(active, GL_TEXTURE0);
    glActiveTexture(GL_TEXTURE2);
    texture.release();
    glActiveTexture(GL_TEXTURE0);
}

TEST_F(Shaders, FloatFramebuffersCopyThroughAShaderUnclamped) {
    FBO source(4, 4, false, false, GL_RGB16F_ARB, GL_RGB, GL_FLOAT);
    FBO copy(4, 4, false, false, GL_RGB16F_ARB, GL_RGB, GL_FLOAT);
    glClearColor(3.5f, -2.0f, 0.75f, 1);
    FBO::clearNow(&source);
    glClearColor(0, 0, 0, 0);
    FBO::clearNow(&copy);
    auto shader =
        compiled(PASS_VERTEX, "uniform sampler2D picture;\n"
                              "void main() {\n"
                              "    gl_FragColor = texture2D(picture, gl_TexCoord[0].st);\n"
                              "}\n");
    shader->use();
    shader->setTextureUnit0("picture", FBO::getColorBuffer(&source, 0));
    FBO::draw(&source);
    shader->release();
    const std::vector<float> rgb = gltest::readRgbFloat(2, 1, 1, 1);
    EXPECT_FLOAT_EQ(rgb[0], 3.5f);
    EXPECT_FLOAT_EQ(rgb[1], -2.0f);
    EXPECT_FLOAT_EQ(rgb[2], 0.75f);
}

TEST_F(Shaders, ACompileErrorGivesTheLoaderMessageWithTheDriversLog) {
    loader.files["resources/shaders/broken.vert"] = PASS_VERTEX;
    loader.files["resources/shaders/broken.frag"] = "void main() { gl_FragColor = nonsense; }";
    Shader shader;
    EXPECT_FALSE(loader.loadShader(&shader, {"broken", "broken", {}}));
    EXPECT_FALSE(shader.isValid());
    const std::string header = "Error while compiling fragment shader\nShader: broken.frag\n";
    const std::string message = loader.getErrorMessage();
    ASSERT_EQ(message.substr(0, header.size()), header);
    EXPECT_NE(message.find("nonsense"), std::string::npos) << message;
}

TEST_F(Shaders, ALinkErrorGivesTheLoaderMessageWithTheDriversLog) {
    loader.files["resources/shaders/unlinked.vert"] = PASS_VERTEX;
    loader.files["resources/shaders/unlinked.frag"] = "varying vec3 neverWritten;\n"
                                                      "void main() {\n"
                                                      "    gl_FragColor = vec4(neverWritten, 1);\n"
                                                      "}\n";
    Shader shader;
    EXPECT_FALSE(loader.loadShader(&shader, {"unlinked", "unlinked", {}}));
    const std::string header = "Error while linking shader pair\nShader: unlinked\n";
    const std::string message = loader.getErrorMessage();
    ASSERT_EQ(message.substr(0, header.size()), header);
    EXPECT_GT(message.size(), header.size()) << "the linker's log follows";
}

TEST_F(Shaders, MissingSourcesAreNamed) {
    Shader shader;
    EXPECT_FALSE(loader.loadShader(&shader, {"k", "none", {}}));
    EXPECT_EQ(loader.getErrorMessage(), "Vertex shader 'none.vert' not found");
    loader.files["resources/shaders/half.vert"] = PASS_VERTEX;
    EXPECT_FALSE(loader.loadShader(&shader, {"k", "half", {}}));
    EXPECT_EQ(loader.getErrorMessage(), "Fragement shader 'half.frag' not found");
}

TEST_F(Shaders, TextFormAndPoolReport) {
    testing::internal::CaptureStdout();
    DataShaderPool pool;
    EXPECT_EQ(pool.toString(), "ShaderPool {\n<Empty>\n}\n");
    Shader* shader = compiled("void main() { gl_Position = gl_Vertex; }",
                              "void main() { gl_FragColor = vec4(1.0); }")
                         .release();
    const std::string text = "Shader(vshader size = 40, fragshader size = 41, pref=" +
                             std::to_string(shader->getProgramHandle()) + ", vref=";
    EXPECT_EQ(shader->toString().substr(0, text.size()), text);
    pool.addShader("white", shader);
    EXPECT_EQ(pool.toString(), "ShaderPool {\n  white = " + shader->toString() + "\n}\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Shaders in pool : 0\nShaders in pool : 1\n");
}

TEST_F(Shaders, DeletionFreesTheProgram) {
    auto shader = compiled(PASS_VERTEX, "void main() { gl_FragColor = vec4(1.0); }\n");
    const unsigned int program = shader->getProgramHandle();
    ASSERT_TRUE(glIsProgram(program));
    shader.reset();
    EXPECT_FALSE(glIsProgram(program));
}
