#include "KVTMaterial.h"
#include "Shader.h"
#include "ShaderInstance.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

namespace {

std::vector<float> frontMaterial(GLenum parameter, int count) {
    std::vector<float> values(4, -1.0f);
    glGetMaterialfv(GL_FRONT, parameter, values.data());
    values.resize(count);
    return values;
}

std::vector<float> backMaterial(GLenum parameter) {
    std::vector<float> values(4, -1.0f);
    glGetMaterialfv(GL_BACK, parameter, values.data());
    return values;
}

} // namespace

TEST(KVTMaterial, UseHandsFourFloatsFromEachColoursStart) {
    KVTMaterial material;
    material.use();
    EXPECT_EQ(frontMaterial(GL_AMBIENT, 4), (std::vector<float>{1, 0, 0, 1}));
    EXPECT_EQ(frontMaterial(GL_DIFFUSE, 4), (std::vector<float>{1, 0, 0, 0}));
    EXPECT_EQ(frontMaterial(GL_EMISSION, 4), (std::vector<float>{0, 0, 0, 0.25f}));
    EXPECT_EQ(frontMaterial(GL_SPECULAR, 4), (std::vector<float>{0.25f, 0.25f, 0.25f, 10}));
    EXPECT_EQ(frontMaterial(GL_SHININESS, 1), std::vector<float>{10});
    EXPECT_EQ(backMaterial(GL_DIFFUSE), (std::vector<float>{1, 0, 0, 0}));
}

TEST(KVTMaterial, UseColorSetsAmbientAndDiffuseOnly) {
    KVTMaterial material;
    material.use();
    Vector<float, 4> colour(0.5f, 0.25f, 0.125f, 0.75f);
    material.useColor(colour);
    EXPECT_EQ(frontMaterial(GL_AMBIENT, 4), (std::vector<float>{0.5f, 0.25f, 0.125f, 0.75f}));
    EXPECT_EQ(backMaterial(GL_DIFFUSE), (std::vector<float>{0.5f, 0.25f, 0.125f, 0.75f}));
    EXPECT_EQ(frontMaterial(GL_EMISSION, 4), (std::vector<float>{0, 0, 0, 0.25f}));
}

TEST(ShaderInstance, UseAppliesTheMaterialThenTheProgram) {
    Shader shader;
    ASSERT_TRUE(shader.setVertexSource("void main() { gl_Position = gl_Vertex; }"));
    ASSERT_TRUE(shader.setFragmentSource("void main() { gl_FragColor = vec4(1.0); }"));
    ASSERT_TRUE(shader.link());
    KVTMaterial material;
    material.setDiffuse(0, 1, 0);
    ShaderInstance instance(&shader);
    instance.use(&material);
    GLint current = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(static_cast<unsigned int>(current), shader.getProgramHandle());
    EXPECT_EQ(frontMaterial(GL_DIFFUSE, 3), (std::vector<float>{0, 1, 0}));
    instance.release();
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(current, 0);
}
