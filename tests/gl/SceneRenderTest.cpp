#include "DataTexturePool.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "KVTCamera.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "KVTLight.h"
#include "KVTMaterial.h"
#include "KVTObjImporter.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "KVTSceneLoader.h"
#include "KVTSceneWriter.h"
#include "PictureFiles.h"
#include "ResourceLoader.h"
#include "Shader.h"
#include "ShaderInstance.h"

#include <GL/glew.h>

#include <GL/glu.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace fs = std::filesystem;
using gltest::pixelAt;
using gltest::Rgba;

namespace {

const int SIZE = 64;

// A unit cube (from -1 to 1) whose faces show the whole texture, left to right.
const char* CUBE_OBJ = "mtllib cube.mtl\n"
                       "v -1 -1 -1\nv 1 -1 -1\nv 1 1 -1\nv -1 1 -1\n"
                       "v -1 -1 1\nv 1 -1 1\nv 1 1 1\nv -1 1 1\n"
                       "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n"
                       "vn 0 0 1\nvn 0 0 -1\nvn 1 0 0\nvn -1 0 0\nvn 0 1 0\nvn 0 -1 0\n"
                       "g box\nusemtl crate\n"
                       "f 5/1/1 6/2/1 7/3/1 8/4/1\nf 2/1/2 1/2/2 4/3/2 3/4/2\n"
                       "f 6/1/3 2/2/3 3/3/3 7/4/3\nf 1/1/4 5/2/4 8/3/4 4/4/4\n"
                       "f 8/1/5 7/2/5 3/3/5 4/4/5\nf 1/1/6 2/2/6 6/3/6 5/4/6\n";
const char* CUBE_MTL = "newmtl crate\nKa 0.2 0.2 0.2\nKd 1 1 1\nmap_Kd pictures/crate.png\n";

// 8 x 8: the left half white, the right half green.
std::vector<unsigned char> cratePng() {
    std::vector<unsigned char> pixels;
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            const unsigned char red = x < 4 ? 255 : 0;
            pixels.insert(pixels.end(), {red, 255, red});
        }
    }
    return testpictures::encodePng(8, 8, 3, pixels);
}

// In a fresh folder with the resource tree: the cube converted to
// resources/objects/cube.scene with a light in front of it, loaded, its texture loaded the
// way the resource loader does, and mapped.
class SceneRendering : public testing::Test {
protected:
    void SetUp() override {
        previous = fs::current_path();
        folder = testpictures::freshFolder();
        fs::current_path(folder);
        fs::create_directories("model");
        fs::create_directories("resources/objects");
        fs::create_directories("resources/graphics");
        testpictures::writeFile("model/cube.obj", std::string(CUBE_OBJ));
        testpictures::writeFile("model/cube.mtl", std::string(CUBE_MTL));
        testpictures::writeFile("resources/graphics/crate.png", cratePng());
        KVTDemosys::TextureList.clear();
        KVTDemosys::textureDataPool = &pool;

        KVTObjImporter importer;
        ASSERT_TRUE(importer.readFile("model/cube.obj")) << importer.getErrorMessage();
        importer.addPointLight({0, 0, 5});
        KVTSceneWriter writer;
        importer.write(writer, "cube");
        ASSERT_TRUE(writer.write(KVTIO::ScenePath + "cube.scene"));
        KVTSceneLoader loader(KVTIO::ScenePath + "cube.scene");
        scene.reset(loader.loadScene());
        ASSERT_NE(scene, nullptr) << loader.getErrorMessage();
        testing::internal::CaptureStdout();
        ResourceLoader resources;
        for (const ResourceInfo::TextureInfo& entry : KVTDemosys::TextureList) {
            EXPECT_TRUE(resources.loadTextureEntry(entry)) << resources.getErrorMessage();
        }
        testing::internal::GetCapturedStdout();
        scene->mapTextureData();
    }
    void TearDown() override {
        glDisable(GL_DEPTH_TEST);
        FBO::bind(nullptr);
        scene.reset();
        KVTDemosys::textureDataPool = nullptr;
        KVTDemosys::TextureList.clear();
        fs::current_path(previous);
        fs::remove_all(folder);
    }

    // Draws the scene seen from (0, 0, 5) and keeps the picture.
    void render() {
        gltest::resetState(SIZE, SIZE);
        FBO::bind(target.get());
        glClearColor(0, 0, 0, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glMatrixMode(GL_PROJECTION);
        gluPerspective(45, 1, 1, 100);
        KVTCamera eye("eye");
        float place[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 5, 1};
        eye.setMatrix(place);
        eye.use(0);
        scene->draw(0);
        KVTCamera::release();
        picture = gltest::readRgba(0, 0, SIZE, SIZE);
    }

    fs::path previous;
    std::string folder;
    DataTexturePool pool;
    std::unique_ptr<KVTScene> scene;
    std::unique_ptr<FBO> target =
        std::make_unique<FBO>(SIZE, SIZE, true, false, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE);
    std::vector<unsigned char> picture;
};

} // namespace

// The front face spans pixels 13 to 51 of 64 in both directions.
TEST_F(SceneRendering, TheConvertedCubeIsLitAndTextured) {
    ASSERT_NE(scene->getMaterial("crate"), nullptr);
    ASSERT_NE(scene->getMaterial("crate")->getDiffuseTexture(), nullptr);
    render();
    // The lit alpha is the material's borrowed one (0); make the picture opaque to look at.
    for (std::size_t i = 3; i < picture.size(); i += 4) {
        picture[i] = 255;
    }
    gltest::savePng(fs::temp_directory_path() / "brinova-scene-cube.png", SIZE, SIZE, picture);
    const Rgba white = pixelAt(20, 32);
    const Rgba green = pixelAt(44, 32);
    EXPECT_GT(white.r, 220) << white;
    EXPECT_GT(white.b, 220) << white;
    EXPECT_GT(green.g, 220) << green;
    EXPECT_LT(green.r, 30) << green;
    EXPECT_EQ(pixelAt(8, 32), (Rgba{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(32, 56), (Rgba{0, 0, 0, 255}));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING)) << "the scene switches its lights off again";
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
}

TEST_F(SceneRendering, ALightBehindTheCubeLeavesTheFrontInTheAmbientLight) {
    float behind[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -5, 1};
    scene->getLight("Light0")->setMatrix(behind);
    render();
    const Rgba white = pixelAt(20, 32);
    // Material ambient 0.2 times the global ambient 0.2.
    EXPECT_NEAR(white.r, 10, 3) << white;
    EXPECT_GT(white.r, 0) << white;
}

TEST_F(SceneRendering, TheWorldTransformTurnsTheCubeWithItsRoot) {
    // A half turn about z keeps the front face in front but puts its green half on the left.
    KVTObject* root = scene->getObject("cube");
    ASSERT_NE(root, nullptr);
    float halfTurn[16] = {-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    root->setMatrix(halfTurn);
    render();
    EXPECT_GT(pixelAt(20, 32).g, 220);
    EXPECT_LT(pixelAt(20, 32).r, 30);
    EXPECT_GT(pixelAt(44, 32).r, 220);
}

TEST_F(SceneRendering, ObjectsWithAShaderInstanceDrawThroughIt) {
    Shader shader;
    ASSERT_TRUE(shader.setVertexSource("void main() { gl_Position = ftransform(); }\n"));
    ASSERT_TRUE(shader.setFragmentSource(
        "void main() { gl_FragColor = vec4(gl_FrontMaterial.diffuse.rgb * 0.5, 1.0); }\n"));
    ASSERT_TRUE(shader.link());
    ShaderInstance instance(&shader);
    for (int i = 0; i < scene->countObjects(); ++i) {
        scene->getObject(i)->setShaderInstance(&instance);
    }
    render();
    const Rgba face = pixelAt(32, 32);
    EXPECT_NEAR(face.r, 128, 2) << face;
    EXPECT_NEAR(face.g, 128, 2) << face;
    GLint program = -1;
    glGetIntegerv(GL_CURRENT_PROGRAM, &program);
    EXPECT_EQ(program, 0) << "the instance is released after drawing";
}

TEST_F(SceneRendering, AMaterialWhoseTextureIsNotLoadedIsReportedAndLeftPlain) {
    scene->getMaterial("crate")->setDiffuseMap("missing.png");
    testing::internal::CaptureStdout();
    scene->mapTextureData();
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "ERROR : Texture 'missing.png' of material 'crate' is not loaded\n");
    EXPECT_EQ(scene->getMaterial("crate")->getDiffuseTexture(), nullptr);
}
