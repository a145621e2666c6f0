#include "DataObjectPool.h"
#include "KVTAnimation.h"
#include "KVTCamera.h"
#include "KVTDemosys.h"
#include "KVTLight.h"
#include "KVTMaterial.h"
#include "KVTObject.h"
#include "KVTObjectGroup.h"
#include "KVTScene.h"
#include "ShaderCache.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Matrix4 = Matrix<float, 4, 4, 16>;
const float HALF_PI = 1.57079632679f;

Matrix4 translation(float x, float y, float z) {
    Matrix4 m = Matrix4::identity();
    m[12] = x;
    m[13] = y;
    m[14] = z;
    return m;
}

// What OpenGL does with the matrix to the point (x, y, z, 1).
Vector<float, 3> transform(const Matrix4& m, float x, float y, float z) {
    Vector<float, 3> r;
    for (int row = 0; row < 3; ++row) {
        r[row] = m[row] * x + m[4 + row] * y + m[8 + row] * z + m[12 + row];
    }
    return r;
}

void expectNear(const Vector<float, 3>& v, float x, float y, float z) {
    EXPECT_NEAR(v[0], x, 1e-5f);
    EXPECT_NEAR(v[1], y, 1e-5f);
    EXPECT_NEAR(v[2], z, 1e-5f);
}

} // namespace

// --- Animation ---------------------------------------------------------------------------

TEST(KVTAnimation, InterpolatesLinearlyAndHoldsTheEndsOutsideTheKeys) {
    KVTAnimation a;
    a.addTranslation(3000, Vector<float, 3>(30, 0, -3));
    a.addTranslation(1000, Vector<float, 3>(10, 0, -1)); // added out of order
    a.init();
    expectNear(a.getTranslation(0), 10, 0, -1);
    expectNear(a.getTranslation(1500), 15, 0, -1.5f);
    expectNear(a.getTranslation(3000), 30, 0, -3);
    expectNear(a.getTranslation(99999), 30, 0, -3);
    EXPECT_EQ(a.getDuration(), 3000u);
    // No rotation keys: no rotation.
    expectNear(a.getRotation(1500), 0, 0, 0);
}

TEST(KVTAnimation, OfKeysAtOneTimeTheLastAddedStays) {
    KVTAnimation a;
    a.addRotation(0, Vector<float, 3>(0, 0, 0));
    a.addRotation(2000, Vector<float, 3>(1, 0, 0));
    a.addRotation(2000, Vector<float, 3>(2, 0, 0));
    a.addRotation(4000, Vector<float, 3>(4, 0, 0));
    a.init();
    EXPECT_EQ(a.countRotationKeys(), 3);
    expectNear(a.getRotation(2000), 2, 0, 0);
    expectNear(a.getRotation(1000), 1, 0, 0);
    expectNear(a.getRotation(3000), 3, 0, 0);
}

TEST(KVTAnimation, TheMatrixRotatesXThenYThenZAndTranslatesLast) {
    KVTAnimation a;
    a.addTranslation(0, Vector<float, 3>(10, 20, 30));
    a.addRotation(0, Vector<float, 3>(HALF_PI, 0, HALF_PI));
    a.init();
    // x takes +y to +z; then z takes +x to +y.
    expectNear(transform(a.getMatrix(0), 0, 1, 0), 10, 20, 31);
    expectNear(transform(a.getMatrix(0), 1, 0, 0), 10, 21, 30);
    // A quarter turn about y takes +z to +x.
    KVTAnimation y;
    y.addRotation(0, Vector<float, 3>(0, HALF_PI, 0));
    expectNear(transform(y.getMatrix(0), 0, 0, 1), 1, 0, 0);
}

// --- Objects and the tree -------------------------------------------------------------------

TEST(KVTObject, TheWorldTransformAppliesTheLocalOneFirstThenTheParents) {
    KVTObject root(1), child(2);
    child.setParent(&root);
    root.addChild(&child);
    KVTAnimation* turn = new KVTAnimation;
    turn->addRotation(0, Vector<float, 3>(0, 0, HALF_PI));
    turn->init();
    root.setAnimation(turn); // replaces the root's matrix
    root.setMatrix(translation(100, 100, 100));
    child.setMatrix(translation(1, 0, 0));
    // Child: x + 1; root: quarter turn about z.
    expectNear(transform(child.getWorldMatrix(0), 0, 0, 0), 0, 1, 0);
    EXPECT_TRUE(child.isSelfOrDescendantOf(&root));
    EXPECT_FALSE(root.isSelfOrDescendantOf(&child));
}

TEST(KVTObject, AnAnimationWithoutKeysLeavesTheMatrix) {
    KVTObject object;
    object.setMatrix(translation(4, 5, 6));
    object.setAnimation(new KVTAnimation);
    expectNear(transform(object.getLocalMatrix(500), 0, 0, 0), 4, 5, 6);
}

TEST(KVTObjectGroup, ATreeIsAddedParentsBeforeChildren) {
    KVTObject root(1), a(2), b(3), leaf(4);
    const std::pair<KVTObject*, KVTObject*> links[] = {{&root, &a}, {&root, &b}, {&a, &leaf}};
    for (auto [parent, child] : links) {
        child->setParent(parent);
        parent->addChild(child);
    }
    KVTObjectGroup group;
    group.addTree(&root);
    ASSERT_EQ(group.countObjects(), 4);
    EXPECT_EQ(group.getObject(0), &root);
    EXPECT_EQ(group.getObject(3), &leaf);
    KVTMaterial material;
    group.setMaterial(&material);
    EXPECT_EQ(leaf.getMaterial(), &material);
}

// --- Cameras and lights ---------------------------------------------------------------------

TEST(KVTCamera, TheViewMatrixUndoesTheCameraPlacement) {
    KVTCamera camera("eye");
    KVTAnimation* placement = new KVTAnimation;
    placement->addTranslation(0, Vector<float, 3>(3, -2, 7));
    placement->addRotation(0, Vector<float, 3>(0.3f, -1.1f, 0.7f));
    camera.setAnimation(placement);
    const Matrix4 view = camera.getViewMatrix(0);
    const Matrix4 place = camera.getCameraMatrix(0);
    // The camera's position is the view's origin; a point ahead of it lies on -z.
    expectNear(transform(view, 3, -2, 7), 0, 0, 0);
    const Vector<float, 3> ahead = transform(place, 0, 0, -5);
    expectNear(transform(view, ahead[0], ahead[1], ahead[2]), 0, 0, -5);
}

TEST(KVTLight, APointLightSitsAtItsTranslationADirectionalOneShinesAlongMinusZ) {
    KVTLight light(3);
    light.setColour(0.5f, 0.25f, 1);
    EXPECT_EQ(light.getColour()[3], 1.0f);
    light.setMatrix(translation(1, 2, 3).data());
    const Vector<float, 4> point = light.getPosition(0);
    EXPECT_EQ(point[0], 1.0f);
    EXPECT_EQ(point[2], 3.0f);
    EXPECT_EQ(point[3], 1.0f);
    light.setType(KVTLight::DIRECTIONAL);
    const Vector<float, 4> towards = light.getPosition(0);
    EXPECT_EQ(towards[2], 1.0f);
    EXPECT_EQ(towards[3], 0.0f);
}

// --- The scene and its pool -----------------------------------------------------------------

TEST(KVTScene, FindsByNameTheLastAddedAndOwnsALightUnderTwoNamesOnce) {
    KVTScene scene;
    auto* first = new KVTObject(1);
    auto* second = new KVTObject(2);
    first->setName("twin");
    second->setName("twin");
    scene.AddObject(first);
    scene.AddObject(second);
    EXPECT_EQ(scene.getObject("twin"), second);
    EXPECT_EQ(scene.getObject(0), first);
    EXPECT_EQ(scene.getObject("none"), nullptr);
    auto* lamp = new KVTLight;
    scene.addLight("a", lamp);
    scene.addLight("b", lamp);
    EXPECT_EQ(scene.countLights(), 1);
    EXPECT_EQ(scene.getLight("b"), lamp);
    scene.addMaterial("m", new KVTMaterial);
    scene.addMaterial("m", new KVTMaterial);
    EXPECT_EQ(scene.countMaterials(), 2);
}

TEST(DataObjectPool, WalksInKeyOrderReportsEachSceneAndDisposesThem) {
    testing::internal::CaptureStdout();
    {
        DataObjectPool pool;
        auto* ship = new KVTScene;
        ship->AddObject(new KVTObject);
        pool.addObject("ship", ship);
        pool.addObject("reef", new KVTScene);
        EXPECT_EQ(pool.getObject(0), pool.getObject("reef"));
        EXPECT_EQ(pool.getObject(1), ship);
        EXPECT_TRUE(pool.exists("ship"));
        EXPECT_EQ(pool.getObject("none"), nullptr);
        EXPECT_EQ(pool.size(), 2);
        EXPECT_EQ(pool.toString(), "DataObjectPool {\n"
                                   "    reef = KVTScene { objects = 0, meshes = 0, materials = 0, "
                                   "lights = 0, cameras = 0 }\n"
                                   "    ship = KVTScene { objects = 1, meshes = 0, materials = 0, "
                                   "lights = 0, cameras = 0 }\n"
                                   "}\n");
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "[Dispose objectPool]\n");
}

TEST(ShaderCacheDeathTest, HandsOutScenesInKeyOrderAndChecksTheIndex) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    DataObjectPool pool;
    auto* reef = new KVTScene;
    auto* ship = new KVTScene;
    pool.addObject("ship", ship);
    pool.addObject("reef", reef);
    KVTDemosys::sceneDataPool = &pool;
    ShaderCache cache;
    EXPECT_EQ(cache.GetSceneCount(), 2);
    EXPECT_EQ(cache.GetScene(0), reef);
    EXPECT_EQ(cache.GetScene("ship"), ship);
    EXPECT_EQ(cache.GetScene("wreck"), nullptr);
    EXPECT_DEATH(cache.GetScene(2),
                 "GetScene \\(line 90\\): i >= 0 && i < KVTDemosys::sceneDataPool->size");
    EXPECT_DEATH(cache.GetScene(-1), "GetScene");
    KVTDemosys::sceneDataPool = nullptr;
}
