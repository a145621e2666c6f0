#include "KVTDemosys.h"
#include "KVTLight.h"
#include "KVTMaterial.h"
#include "KVTObjImporter.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "KVTSceneWriter.h"
#include "MemorySceneLoader.h"
#include "PictureFiles.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace {

const std::string PATH = "model.scene";

class ObjImport : public testing::Test {
protected:
    void SetUp() override { KVTDemosys::TextureList.clear(); }
    void TearDown() override { KVTDemosys::TextureList.clear(); }

    // Converts and loads the scene back; null (with the message kept) when reading fails.
    KVTScene* convert(const std::string& obj, const std::string& mtl = "") {
        if (!importer.readObj(obj, "model.obj") || !importer.readMtl(mtl, "model.mtl")) {
            return nullptr;
        }
        KVTSceneWriter writer;
        importer.write(writer, "model");
        loader = std::make_unique<MemorySceneLoader>(PATH);
        loader->files[PATH] = writer.getSceneBytes();
        scene.reset(loader->loadScene());
        return scene.get();
    }

    KVTObjImporter importer;
    std::unique_ptr<MemorySceneLoader> loader;
    std::unique_ptr<KVTScene> scene;
};

const char* QUAD = "v 0 0 0\nv 2 0 0\nv 2 2 0\nv 0 2 0\n"
                   "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";

} // namespace

TEST_F(ObjImport, AQuadBecomesTwoTrianglesWithFlatNormalsAndItsTexture) {
    ASSERT_NE(convert(std::string(QUAD) + "mtllib model.mtl\nusemtl paint\nf 1/1 2/2 3/3 4/4\n",
                      "newmtl paint\nKa 0.1 0.2 0.3\nKd 0.5 0.5 0.5\n"
                      "map_Kd -s 1 1 1 C:\\art\\paint.png\n"),
              nullptr)
        << importer.getErrorMessage();
    EXPECT_EQ(importer.getMaterialLibraries(), std::vector<std::string>{"model.mtl"});
    ASSERT_EQ(loader->uploads.size(), 1u);
    // Fan 1-2-3, 1-3-4; each corner position, normal (0, 0, 1), texture coordinate.
    EXPECT_EQ(loader->uploads[0].corners, 6);
    const std::vector<float>& data = loader->uploads[0].data;
    ASSERT_EQ(data.size(), 48u);
    EXPECT_EQ(std::vector<float>(data.begin() + 32, data.begin() + 40),
              (std::vector<float>{2, 2, 0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(std::vector<float>(data.begin() + 40, data.end()),
              (std::vector<float>{0, 2, 0, 0, 0, 1, 0, 1}));

    KVTObject* model = scene->getObject(0);
    EXPECT_EQ(model->getName(), "model");
    ASSERT_EQ(model->countChildren(), 1);
    KVTMaterial* paint = model->getChild(0)->getMaterial();
    ASSERT_NE(paint, nullptr);
    EXPECT_EQ(paint->getName(), "paint");
    EXPECT_EQ(model->getChild(0)->getName(), "paint");
    EXPECT_EQ(paint->getDiffuseMap(), "paint.png");
    EXPECT_FLOAT_EQ(paint->getAmbient()[2], 0.3f);
    ASSERT_EQ(KVTDemosys::TextureList.size(), 1u);
    EXPECT_EQ(KVTDemosys::TextureList[0].file, "paint.png");
}

TEST_F(ObjImport, NegativeIndicesCountBackAndGivenNormalsAreKept) {
    ASSERT_NE(convert("v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 1 0\nf -3//-1 -2//1 3//1\n"), nullptr)
        << importer.getErrorMessage();
    const std::vector<float>& data = loader->uploads[0].data;
    ASSERT_EQ(data.size(), 18u);
    EXPECT_EQ(std::vector<float>(data.begin(), data.begin() + 6),
              (std::vector<float>{0, 0, 0, 0, 1, 0}));
    EXPECT_EQ(loader->uploads[0].uvFloats, 0);
}

TEST_F(ObjImport, CornersWithoutTextureCoordinatesGetZeroWhenOthersHaveThem) {
    ASSERT_NE(convert(std::string(QUAD) + "f 1/3 2 3\n"), nullptr) << importer.getErrorMessage();
    const std::vector<float>& data = loader->uploads[0].data;
    ASSERT_EQ(data.size(), 24u);
    EXPECT_EQ(data[6], 1.0f);
    EXPECT_EQ(data[7], 1.0f);
    EXPECT_EQ(data[14], 0.0f);
    EXPECT_EQ(data[15], 0.0f);
}

TEST_F(ObjImport, EachRunOfGroupAndMaterialIsAMesh) {
    ASSERT_NE(convert(std::string(QUAD) + "g empty\ng a\nusemtl red\nf 1 2 3\nf 1 3 4\n"
                                          "usemtl blue\nf 1 2 4\ng b\nf 2 3 4\nusemtl none\n",
                      "newmtl red\nnewmtl blue\n"),
              nullptr)
        << importer.getErrorMessage();
    EXPECT_EQ(importer.countMeshes(), 3);
    EXPECT_EQ(importer.countTriangles(), 4);
    ASSERT_EQ(scene->countObjects(), 4);
    EXPECT_EQ(scene->getObject(1)->getName(), "a");
    EXPECT_EQ(scene->getObject(1)->getMaterial()->getName(), "red");
    EXPECT_EQ(scene->getObject(2)->getMaterial()->getName(), "blue");
    EXPECT_EQ(scene->getObject(3)->getName(), "b");
    EXPECT_EQ(loader->uploads[0].corners, 6);
}

TEST_F(ObjImport, ALightIsPlacedWhereAsked) {
    importer.addPointLight({1, 2, 3});
    ASSERT_NE(convert("v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n"), nullptr);
    KVTLight* light = scene->getLight("Light0");
    ASSERT_NE(light, nullptr);
    EXPECT_EQ(light->getPosition(0)[1], 2.0f);
    EXPECT_EQ(light->getPosition(0)[3], 1.0f);
}

TEST_F(ObjImport, BadLinesAreReportedWithFileAndLine) {
    const std::pair<const char*, const char*> cases[] = {
        {"v 0 0 0\nf 1 2 3\n", "model.obj:2: a face refers to position 2, but there are 1"},
        {"v 0 0 0\nf 1 1\n", "model.obj:2: a face needs at least three corners"},
        {"v 0 0 0\nf 0 1 1\n", "model.obj:2: a face refers to position 0, but there are 1"},
        {"v 0 0 0\nf 1/1 1 1\n",
         "model.obj:2: a face refers to texture coordinate 1, but there are 0"},
        {"v 0 0 0\nf 1/x/ 1 1\n", "model.obj:2: 'x' is not an index"},
        {"\n\nv 0 zero 0\n", "model.obj:3: 'zero' is not a number"},
        {"vn 1 0\n", "model.obj:1: 'vn' needs 3 numbers"},
    };
    for (const auto& [obj, message] : cases) {
        KVTObjImporter fresh;
        EXPECT_FALSE(fresh.readObj(obj, "model.obj"));
        EXPECT_EQ(fresh.getErrorMessage(), message);
    }
    EXPECT_FALSE(importer.readMtl("# no material yet\nKd 1 1 1\n", "model.mtl"));
    EXPECT_EQ(importer.getErrorMessage(), "model.mtl:2: 'Kd' before any 'newmtl'");
}

TEST_F(ObjImport, AMissingMaterialLibraryIsNamed) {
    const std::string folder = testpictures::freshFolder();
    testpictures::writeFile(folder + "m.obj", std::string("mtllib gone.mtl\nv 0 0 0\n"));
    EXPECT_FALSE(importer.readFile(folder + "m.obj"));
    EXPECT_EQ(importer.getErrorMessage(),
              "Material library '" + folder + "gone.mtl' named by '" + folder + "m.obj' not found");
    std::filesystem::remove_all(folder);
}
