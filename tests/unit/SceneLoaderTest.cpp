#include "KVTAnimation.h"
#include "KVTCamera.h"
#include "KVTDemosys.h"
#include "KVTLight.h"
#include "KVTMaterial.h"
#include "KVTObject.h"
#include "KVTScene.h"
#include "KVTSceneWriter.h"
#include "MemorySceneLoader.h"
#include "VBO.h"

#include <GL/gl.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace R = KVTSceneRecord;

namespace {

const std::string PATH = "resources/objects/test.scene";

R::Matrix16 translation(float x, float y, float z) {
    R::Matrix16 m = R::identityMatrix();
    m[12] = x;
    m[13] = y;
    m[14] = z;
    return m;
}

// A triangle with all three streams, positions shared by index.
R::Mesh triangleMesh() {
    R::Mesh mesh;
    mesh.id = 10;
    mesh.name = "Tri";
    mesh.positions = {0, 0, 0, 1, 0, 0, 0, 1, 0};
    mesh.normals = {0, 0, 1};
    mesh.texcoords = {0, 0, 1, 0, 0, 1};
    // (position, normal, texcoord) per corner.
    mesh.indices = {0, 0, 0, 1, 0, 1, 2, 0, 2};
    mesh.fitBounds();
    return mesh;
}

R::Node node(int id, int type, int ref, int parent, std::string name, int tail = -1) {
    R::Node n;
    n.id = id;
    n.type = type;
    n.ref = ref;
    n.parent = parent;
    n.name = std::move(name);
    n.tail = tail;
    return n;
}

R::Animation animation(int kind, unsigned int target, std::vector<float> times) {
    R::Animation a;
    a.kind = kind;
    a.target = target;
    for (std::size_t k = 0; k < times.size(); ++k) {
        const float f = static_cast<float>(k);
        a.translations.push_back({f, 2 * f, 3 * f});
        a.rotations.push_back({0.1f * f, 0.2f * f, 0.3f * f});
    }
    a.times = std::move(times);
    return a;
}

// One of everything: a mesh under an empty root, a textured material, a camera, a light,
// and an animation for each kind of target.
KVTSceneWriter fullScene() {
    KVTSceneWriter writer;
    writer.addMesh(triangleMesh());
    writer.addTexture(R::Texture{5, "wood", "wood.png"});
    writer.addMaterial(R::Material{7, "Wood", {0.1f, 0.2f, 0.3f, 1}, {0.4f, 0.5f, 0.6f, 1}, 5});
    writer.addLight(R::Light{2, KVTLight::DIRECTIONAL, {1, 0.5f, 0.25f}});
    writer.addNode(node(1, R::EMPTY_NODE, 0, -1, "Root"));
    R::Node mesh = node(2, R::MESH_NODE, 10, 1, "TriNode", 7);
    mesh.matrix = translation(1, 2, 3);
    writer.addNode(mesh);
    R::Node camera = node(3, R::CAMERA_NODE, 0, 0, "Cam", 0);
    camera.matrix = translation(0, 0, 10);
    writer.addNode(camera);
    R::Node lamp = node(4, R::LIGHT_NODE, 2, 0, "Lamp", 0);
    lamp.matrix = translation(5, 6, 7);
    writer.addNode(lamp);
    writer.addAnimation(animation(R::OBJECT_ANIMATION, 2, {0, 1}));
    writer.addAnimation(animation(R::CAMERA_ANIMATION, 3, {0, 2}));
    writer.addAnimation(animation(R::LIGHT_ANIMATION, 2, {0, 3}));
    return writer;
}

class SceneLoading : public testing::Test {
protected:
    void SetUp() override { KVTDemosys::TextureList.clear(); }
    void TearDown() override { KVTDemosys::TextureList.clear(); }

    // Loads the writer's files; the loader stays for look-ups and uploads.
    KVTScene* load(const KVTSceneWriter& writer) {
        return load(writer.getSceneBytes(), writer.getAnimationBytes());
    }
    KVTScene* load(std::vector<unsigned char> sceneBytes,
                   std::vector<unsigned char> animationBytes = {}) {
        loader = std::make_unique<MemorySceneLoader>(PATH);
        loader->files[PATH] = std::move(sceneBytes);
        if (!animationBytes.empty()) {
            loader->files[PATH + ".kf"] = std::move(animationBytes);
        }
        scene.reset(loader->loadScene());
        return scene.get();
    }
    // The load's standard output.
    std::string loadQuietly(const KVTSceneWriter& writer) {
        testing::internal::CaptureStdout();
        load(writer);
        return testing::internal::GetCapturedStdout();
    }
    void expectFailure(const std::string& message) {
        EXPECT_EQ(scene, nullptr);
        EXPECT_FALSE(loader->isValid());
        EXPECT_EQ(loader->getErrorMessage(), message);
    }

    std::unique_ptr<MemorySceneLoader> loader;
    std::unique_ptr<KVTScene> scene;
};

std::vector<unsigned char> withInt(std::vector<unsigned char> bytes, std::size_t at, int value) {
    for (int i = 0; i < 4; ++i) {
        bytes[at + i] = static_cast<unsigned char>(static_cast<unsigned int>(value) >> (8 * i));
    }
    return bytes;
}

} // namespace

// --- Round trip -------------------------------------------------------------------------

TEST_F(SceneLoading, WhatTheWriterWritesLoadsBackComplete) {
    EXPECT_EQ(loadQuietly(fullScene()), "");
    ASSERT_NE(scene, nullptr);
    EXPECT_EQ(scene->toString(),
              "KVTScene { objects = 2, meshes = 1, materials = 1, lights = 1, cameras = 1 }");

    ASSERT_EQ(loader->uploads.size(), 1u);
    const MemorySceneLoader::Upload& upload = loader->uploads[0];
    EXPECT_EQ(upload.corners, 3);
    EXPECT_EQ(upload.vertexFloats, 3);
    EXPECT_EQ(upload.normalFloats, 3);
    EXPECT_EQ(upload.uvFloats, 2);
    EXPECT_EQ(upload.data, (std::vector<float>{0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0,
                                               0, 1, 1, 0, 0, 1, 0, 0, 0, 1, 0, 1}));
    VBO* vbo = loader->getVBOByID(10);
    ASSERT_NE(vbo, nullptr);
    EXPECT_EQ(vbo->getName(), "Tri");
    EXPECT_EQ(vbo->getUniqueID(), 10u);
    EXPECT_EQ(vbo->getBBoxMax()[0], 1.0f);
    EXPECT_EQ(vbo->getBBoxMax()[1], 1.0f);

    ASSERT_EQ(KVTDemosys::TextureList.size(), 1u);
    EXPECT_EQ(KVTDemosys::TextureList[0].key, "wood.png");
    EXPECT_EQ(KVTDemosys::TextureList[0].file, "wood.png");
    EXPECT_EQ(KVTDemosys::TextureList[0].target, static_cast<unsigned int>(GL_TEXTURE_2D));
    EXPECT_TRUE(KVTDemosys::TextureList[0].mipmap);

    KVTMaterial* material = scene->getMaterial("Wood");
    ASSERT_NE(material, nullptr);
    EXPECT_EQ(material->getDiffuseMap(), "wood.png");
    EXPECT_FLOAT_EQ(material->getAmbient()[2], 0.3f);
    EXPECT_FLOAT_EQ(material->getDiffuse()[0], 0.4f);

    KVTObject* root = scene->getObject("Root");
    KVTObject* tri = scene->getObject("TriNode");
    ASSERT_NE(root, nullptr);
    ASSERT_NE(tri, nullptr);
    EXPECT_EQ(tri->getParent(), root);
    ASSERT_EQ(root->countChildren(), 1);
    EXPECT_EQ(root->getChild(0), tri);
    EXPECT_EQ(tri->getMesh(), vbo);
    EXPECT_EQ(tri->getMaterial(), material);
    EXPECT_EQ(root->getMesh(), nullptr);
    EXPECT_EQ(tri->getMatrix()[13], 2.0f);

    KVTCamera* camera = scene->getCamera("Cam");
    ASSERT_NE(camera, nullptr);
    EXPECT_EQ(loader->getCameraByID(3), camera);
    EXPECT_EQ(camera->getMatrix()[14], 10.0f);

    KVTLight* lamp = scene->getLight("Lamp");
    ASSERT_NE(lamp, nullptr);
    EXPECT_EQ(lamp->getType(), KVTLight::DIRECTIONAL);
    EXPECT_EQ(lamp->getColour()[1], 0.5f);
    EXPECT_EQ(lamp->getColour()[3], 1.0f);
    EXPECT_EQ(lamp->getMatrix()[12], 5.0f);

    // Each animation's second key: translation (1, 2, 3) at 1, 2 and 3 seconds.
    ASSERT_NE(tri->getAnimation(), nullptr);
    EXPECT_EQ(tri->getAnimation()->getTranslation(1000)[2], 3.0f);
    ASSERT_NE(camera->getAnimation(), nullptr);
    EXPECT_EQ(camera->getAnimation()->getTranslation(2000)[1], 2.0f);
    ASSERT_NE(lamp->getAnim(), nullptr);
    EXPECT_EQ(lamp->getAnim()->getDuration(), 3000u);
    EXPECT_FLOAT_EQ(lamp->getAnim()->getRotation(3000)[2], 0.3f);
}

TEST_F(SceneLoading, VerboseLoadingEchoesTheRecords) {
    loader = std::make_unique<MemorySceneLoader>(PATH);
    loader->files[PATH] = fullScene().getSceneBytes();
    loader->setVerbose(true);
    testing::internal::CaptureStdout();
    scene.reset(loader->loadScene());
    const std::string out = testing::internal::GetCapturedStdout();
    for (const char* line : {"File version : 1\n",
                             "Number of meshes : 1\n",
                             "Mesh id : '10'\n",
                             "Mesh name : 'Tri'\n",
                             "Vertex    : count = 3, offset = 0\n",
                             "Normal    : count = 1, offset = 1\n",
                             "Texcoord0 : count = 3, offset = 2\n",
                             "IndexList : count = 9\n",
                             "Index stride : 3\n",
                             "Polygon indices : 3\n",
                             "Number of textures 1\n",
                             "Texture 5 : wood : wood.png\n",
                             "Number of materials 1\n",
                             "Number of lights 1\n",
                             "--- Scene Tree ---\nNumber of nodes 4\n",
                             "-> Node id : 2\n",
                             "-> Node type : 1\n",
                             "-> Node type ref : 10\n",
                             "-> Node parent : 1\n",
                             "-> Node name : TriNode\n",
                             "-> Matrix : 1 0 0 0 0 1 0 0 0 0 1 0 1 2 3 1\n",
                             "Matrix {\n  [1, 0, 0, 0]\n  [0, 1, 0, 0]\n  [0, 0, 1, 0]\n"
                             "  [5, 6, 7, 1]\n}\n"}) {
        EXPECT_NE(out.find(line), std::string::npos) << line;
    }
}

// --- Meshes ------------------------------------------------------------------------------

TEST_F(SceneLoading, PositionsAndTextureCoordinatesGiveFiveFloatsPerCorner) {
    KVTSceneWriter writer;
    R::Mesh mesh;
    mesh.positions = {1, 2, 3, 4, 5, 6};
    mesh.texcoords = {0.5f, 0.25f, 0.75f, 1};
    mesh.vertexOffset = 0;
    mesh.texcoordOffset = 1;
    mesh.indices = {1, 0, 0, 1, 1, 1};
    writer.addMesh(mesh);
    ASSERT_NE(load(writer), nullptr);
    ASSERT_EQ(loader->uploads.size(), 1u);
    EXPECT_EQ(loader->uploads[0].corners, 3);
    EXPECT_EQ(loader->uploads[0].normalFloats, 0);
    EXPECT_EQ(loader->uploads[0].data,
              (std::vector<float>{4, 5, 6, 0.5f, 0.25f, 1, 2, 3, 0.75f, 1, 4, 5, 6, 0.75f, 1}));
}

// Slots say which index of a corner is which, and the corner's floats follow the slots.
TEST_F(SceneLoading, CornersHoldTheirStreamsInSlotOrder) {
    KVTSceneWriter writer;
    R::Mesh mesh;
    mesh.positions = {1, 1, 1, 2, 2, 2};
    mesh.normals = {0, 0, 1};
    mesh.normalOffset = 0;
    mesh.vertexOffset = 1;
    mesh.indices = {0, 1, 0, 0};
    writer.addMesh(mesh);
    R::Mesh reordered = triangleMesh();
    reordered.id = 11;
    reordered.texcoordOffset = 0;
    reordered.vertexOffset = 1;
    reordered.normalOffset = 2;
    // (texcoord, position, normal) per corner.
    reordered.indices = {2, 1, 0, 0, 2, 0, 1, 0, 0};
    writer.addMesh(reordered);
    ASSERT_NE(load(writer), nullptr);
    ASSERT_EQ(loader->uploads.size(), 2u);
    EXPECT_EQ(loader->uploads[0].data, (std::vector<float>{0, 0, 1, 2, 2, 2, 0, 0, 1, 1, 1, 1}));
    EXPECT_EQ(loader->uploads[1].corners, 3);
    EXPECT_EQ(loader->uploads[1].data, (std::vector<float>{0, 1, 1, 0, 0, 0, 0, 1, //
                                                           0, 0, 0, 1, 0, 0, 0, 1, //
                                                           1, 0, 0, 0, 0, 0, 0, 1}));
}

TEST_F(SceneLoading, AnIndexListNotAMultipleOfTheStrideDropsTheIncompleteCorner) {
    KVTSceneWriter writer;
    R::Mesh mesh = triangleMesh();
    mesh.indices.resize(8);
    writer.addMesh(mesh);
    ASSERT_NE(load(writer), nullptr);
    EXPECT_EQ(loader->uploads[0].corners, 2);
    EXPECT_EQ(loader->uploads[0].data.size(), 16u);
}

TEST_F(SceneLoading, IndicesOutsideTheirStreamFailNamingMeshAndIndex) {
    for (int bad : {3, -1}) {
        KVTSceneWriter writer;
        R::Mesh mesh = triangleMesh();
        mesh.indices[6] = bad; // third corner's position
        writer.addMesh(mesh);
        load(writer);
        expectFailure("Invalid scene file '" + PATH + "': mesh 10 'Tri': index " +
                      std::to_string(bad) + " of corner 2 is outside its 3 positions");
    }
    KVTSceneWriter writer;
    R::Mesh mesh = triangleMesh();
    mesh.indices[4] = 1; // second corner's normal
    writer.addMesh(mesh);
    load(writer);
    expectFailure("Invalid scene file '" + PATH +
                  "': mesh 10 'Tri': index 1 of corner 1 is outside its 1 normals");
}

TEST_F(SceneLoading, AMeshWithoutStreamsFails) {
    KVTSceneWriter writer;
    R::Mesh mesh;
    mesh.id = 4;
    mesh.name = "Empty";
    mesh.indices = {0, 1, 2};
    writer.addMesh(mesh);
    load(writer);
    expectFailure("Invalid scene file '" + PATH + "': mesh 4 'Empty' has no vertex streams");
}

TEST_F(SceneLoading, CountsLargerThanTheFileHoldsFailBeforeReading) {
    KVTSceneWriter writer;
    writer.addMesh(triangleMesh());
    // The mesh record's vertex count follows version, mesh count, id and "Tri\0".
    load(withInt(writer.getSceneBytes(), 16, 100000000));
    EXPECT_EQ(scene, nullptr);
    EXPECT_EQ(loader->getErrorMessage().find("Invalid scene file '" + PATH +
                                             "': mesh 10 'Tri' declares 1200000"),
              0u)
        << loader->getErrorMessage();

    load(withInt(writer.getSceneBytes(), 16, -3));
    expectFailure("Invalid scene file '" + PATH + "': mesh 10 'Tri' has a negative count");
}

// --- Damaged files ------------------------------------------------------------------------

TEST_F(SceneLoading, EveryTruncationFailsNamingTheFile) {
    const std::vector<unsigned char> whole = fullScene().getSceneBytes();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        testing::internal::CaptureStdout();
        load(std::vector<unsigned char>(whole.begin(), whole.begin() + size));
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(scene, nullptr) << size;
        EXPECT_EQ(loader->getErrorMessage().find("Invalid scene file '" + PATH + "': "), 0u)
            << size << ": " << loader->getErrorMessage();
    }
}

TEST_F(SceneLoading, EveryTruncationOfTheAnimationFileFailsNamingIt) {
    const KVTSceneWriter writer = fullScene();
    const std::vector<unsigned char> whole = writer.getAnimationBytes();
    for (std::size_t size = 1; size < whole.size(); ++size) {
        testing::internal::CaptureStdout();
        load(writer.getSceneBytes(),
             std::vector<unsigned char>(whole.begin(), whole.begin() + size));
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(scene, nullptr) << size;
        EXPECT_EQ(loader->getErrorMessage().find("Invalid animation file '" + PATH + ".kf': "), 0u)
            << size << ": " << loader->getErrorMessage();
    }
}

TEST_F(SceneLoading, AnUnknownNodeTypeFails) {
    KVTSceneWriter writer;
    writer.addNode(node(1, R::EMPTY_NODE, 0, -1, "Root"));
    writer.addNode(node(6, 4, 0, 1, "Odd"));
    load(writer);
    expectFailure("Invalid scene file '" + PATH + "': node 6 has the unknown type 4");
}

TEST_F(SceneLoading, VersionTwoFailsNamingBothVersions) {
    load(withInt(KVTSceneWriter().getSceneBytes(), 0, 2));
    expectFailure("Invalid object version in file '" + PATH +
                  "', File version states version 2. Expected version 1.");
}

TEST_F(SceneLoading, AMissingFileFailsAndAMissingAnimationFileDoesNot) {
    loader = std::make_unique<MemorySceneLoader>(PATH);
    EXPECT_EQ(loader->loadScene(), nullptr);
    EXPECT_EQ(loader->getErrorMessage(), "Object '" + PATH + "' not found");
    EXPECT_NE(load(KVTSceneWriter().getSceneBytes()), nullptr);
    EXPECT_TRUE(loader->isValid());
}

// --- Nodes and the tree ---------------------------------------------------------------------

TEST_F(SceneLoading, AMeshNodeWithAnUnknownMeshIsReportedAndStillMade) {
    KVTSceneWriter writer;
    writer.addNode(node(3, R::MESH_NODE, 99, -1, "Lost", 12));
    EXPECT_EQ(loadQuietly(writer), "ERROR : Cannot find mesh 99\n");
    ASSERT_NE(scene, nullptr);
    KVTObject* lost = scene->getObject("Lost");
    ASSERT_NE(lost, nullptr);
    EXPECT_EQ(lost->getMesh(), nullptr);
    EXPECT_EQ(lost->getMaterial(), nullptr);
}

TEST_F(SceneLoading, UnknownTextureAndLightIdsAreSkipped) {
    KVTSceneWriter writer;
    writer.addMaterial(R::Material{1, "Plain", {}, {}, 42});
    writer.addNode(node(8, R::LIGHT_NODE, 3, 0, "NoSuchLight", 0));
    EXPECT_EQ(loadQuietly(writer), "ERROR : Cannot find light 3\n");
    ASSERT_NE(scene, nullptr);
    EXPECT_EQ(scene->getMaterial("Plain")->getDiffuseMap(), "");
    EXPECT_EQ(scene->countLights(), 0);
}

TEST_F(SceneLoading, ObjectsJoinTheSceneInIdOrderWithTheirParents) {
    KVTSceneWriter writer;
    writer.addNode(node(30, R::EMPTY_NODE, 0, 20, "Grandchild"));
    writer.addNode(node(20, R::EMPTY_NODE, 0, 10, "Child"));
    writer.addNode(node(10, R::EMPTY_NODE, 0, -1, "Root"));
    writer.addNode(node(40, R::EMPTY_NODE, 0, 77, "Orphan"));
    ASSERT_NE(load(writer), nullptr);
    ASSERT_EQ(scene->countObjects(), 4);
    EXPECT_EQ(scene->getObject(0)->getName(), "Root");
    EXPECT_EQ(scene->getObject(1)->getName(), "Child");
    EXPECT_EQ(scene->getObject(2)->getName(), "Grandchild");
    EXPECT_EQ(scene->getObject(2)->getParent()->getParent(), scene->getObject(0));
    EXPECT_EQ(scene->getObject(3)->getParent(), nullptr);
}

TEST_F(SceneLoading, ParentLinksThatWouldMakeACycleAreRefused) {
    KVTSceneWriter writer;
    writer.addNode(node(1, R::EMPTY_NODE, 0, 2, "A"));
    writer.addNode(node(2, R::EMPTY_NODE, 0, 1, "B"));
    writer.addNode(node(3, R::EMPTY_NODE, 0, 3, "Self"));
    EXPECT_EQ(loadQuietly(writer), "ERROR : Node 2 cannot have its descendant 1 as parent\n"
                                   "ERROR : Node 3 cannot have its descendant 3 as parent\n");
    ASSERT_NE(scene, nullptr);
    EXPECT_EQ(scene->getObject("A")->getParent(), scene->getObject("B"));
    EXPECT_EQ(scene->getObject("B")->getParent(), nullptr);
    EXPECT_EQ(scene->getObject("Self")->getParent(), nullptr);
}

TEST_F(SceneLoading, ANodeIdGivenTwiceKeepsTheLaterNode) {
    KVTSceneWriter writer;
    writer.addNode(node(5, R::EMPTY_NODE, 0, -1, "First"));
    writer.addNode(node(5, R::EMPTY_NODE, 0, -1, "Second"));
    ASSERT_NE(load(writer), nullptr);
    ASSERT_EQ(scene->countObjects(), 1);
    EXPECT_EQ(scene->getObject(0)->getName(), "Second");
}

// --- Animations ---------------------------------------------------------------------------

TEST_F(SceneLoading, KeyTimesAreTruncatedToWholeSeconds) {
    KVTSceneWriter writer;
    writer.addNode(node(1, R::EMPTY_NODE, 0, -1, "Moving"));
    R::Animation keys = animation(R::OBJECT_ANIMATION_TOO, 1, {-2.0f, 2.7f, 5.0f});
    writer.addAnimation(keys);
    ASSERT_NE(load(writer), nullptr);
    const KVTAnimation* moving = scene->getObject("Moving")->getAnimation();
    ASSERT_NE(moving, nullptr);
    // Keys at 0, 2000 and 5000 ms with x = 0, 1, 2.
    EXPECT_EQ(moving->getTranslation(0)[0], 0.0f);
    EXPECT_EQ(moving->getTranslation(2000)[0], 1.0f);
    EXPECT_FLOAT_EQ(moving->getTranslation(2700)[0], 1.0f + 0.7f / 3.0f);
    EXPECT_EQ(moving->getDuration(), 5000u);
}

TEST_F(SceneLoading, KeyTimesOutsideMillisecondRangeAreClamped) {
    KVTSceneWriter writer;
    writer.addNode(node(1, R::EMPTY_NODE, 0, -1, "Moving"));
    writer.addAnimation(animation(R::OBJECT_ANIMATION, 1, {std::nanf(""), 1e30f}));
    ASSERT_NE(load(writer), nullptr);
    const KVTAnimation* moving = scene->getObject("Moving")->getAnimation();
    EXPECT_EQ(moving->getTranslation(0)[0], 0.0f);
    EXPECT_EQ(moving->getDuration(), 4294967000u);
}

TEST_F(SceneLoading, AnimationsForUnknownTargetsAreReportedByKind) {
    KVTSceneWriter writer;
    writer.addAnimation(animation(R::OBJECT_ANIMATION, 11, {0}));
    writer.addAnimation(animation(R::CAMERA_ANIMATION, 12, {0}));
    writer.addAnimation(animation(R::LIGHT_ANIMATION, 13, {0}));
    writer.addAnimation(animation(9, 14, {0}));
    EXPECT_EQ(loadQuietly(writer), "ERROR: Failed to find object with id 11\n"
                                   "ERROR: Failed to find camera with id 12\n"
                                   "ERROR: Failed to fing light with id 13\n");
    EXPECT_NE(scene, nullptr);
}

TEST_F(SceneLoading, KeyCountsLargerThanTheAnimationFileHoldsFail) {
    KVTSceneWriter writer;
    writer.addAnimation(animation(R::OBJECT_ANIMATION, 1, {0, 1}));
    // The key count follows the header and the animation count.
    load(writer.getSceneBytes(), withInt(writer.getAnimationBytes(), 8, 1000));
    expectFailure("Invalid animation file '" + PATH +
                  ".kf': animation 0 declares 1000 keys, more than the file holds");
}
