#include "KVTMaterial.h"

#include <gtest/gtest.h>

namespace {

void expectRGBA(const float* rgba, float r, float g, float b, float a) {
    EXPECT_FLOAT_EQ(rgba[0], r);
    EXPECT_FLOAT_EQ(rgba[1], g);
    EXPECT_FLOAT_EQ(rgba[2], b);
    EXPECT_FLOAT_EQ(rgba[3], a);
}

} // namespace

TEST(KVTMaterial, NewMaterialHandsOpenGLBorrowedAlphas) {
    KVTMaterial material;
    expectRGBA(material.ambientRGBA(), 1, 0, 0, 1);
    expectRGBA(material.diffuseRGBA(), 1, 0, 0, 0);
    expectRGBA(material.emissiveRGBA(), 0, 0, 0, 0.25f);
    expectRGBA(material.specularRGBA(), 0.25f, 0.25f, 0.25f, 10);
    EXPECT_FLOAT_EQ(material.getShininess(), 10);
    EXPECT_EQ(material.getName(), "");
    EXPECT_EQ(material.getDiffuseTexture(), nullptr);
    EXPECT_EQ(material.getNormalTexture(), nullptr);
    EXPECT_EQ(material.getDiffuseMap(), "");
    EXPECT_EQ(material.getNormalMap(), "");
}

TEST(KVTMaterial, EachAlphaIsTheNextFieldsFirstValue) {
    KVTMaterial material;
    material.setAmbient(0.1f, 0.2f, 0.3f);
    material.setDiffuse(0.4f, 0.5f, 0.6f);
    material.setEmissive(0.7f, 0.8f, 0.9f);
    material.setSpecular(0.05f, 0.15f, 0.35f);
    material.setShininess(64);
    expectRGBA(material.ambientRGBA(), 0.1f, 0.2f, 0.3f, 0.4f);
    expectRGBA(material.diffuseRGBA(), 0.4f, 0.5f, 0.6f, 0.7f);
    expectRGBA(material.emissiveRGBA(), 0.7f, 0.8f, 0.9f, 0.05f);
    expectRGBA(material.specularRGBA(), 0.05f, 0.15f, 0.35f, 64);
}

TEST(KVTMaterial, GettersReturnWhatWasSet) {
    KVTMaterial material;
    material.setEmissive(0.2f, 0.5f, 1);
    EXPECT_FLOAT_EQ(material.getEmissive().y(), 0.5f);
    EXPECT_FLOAT_EQ(material.getDiffuse().x(), 1); // neighbours untouched
    EXPECT_FLOAT_EQ(material.getSpecular().x(), 0.25f);
    material.setDiffuseMap("hull.png");
    material.setNormalMap("hull_n.png");
    EXPECT_EQ(material.getDiffuseMap(), "hull.png");
    EXPECT_EQ(material.getNormalMap(), "hull_n.png");
}

TEST(KVTMaterial, PrintShowsAmbientAndDiffuse) {
    KVTMaterial material;
    material.setName("rock");
    material.setDiffuse(0.5f, 0.25f, 1);
    testing::internal::CaptureStdout();
    material.print();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Material : rock\nAmb : 1, 0, 0\nDif : 0.5, 0.25, 1\n");
}
