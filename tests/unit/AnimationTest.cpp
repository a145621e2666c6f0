#include "Animation.h"
#include "AnimationObjectController.h"
#include "AnimationParser.h"
#include "Camera.h"
#include "KVTObject.h"

#include <cstdio>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>

namespace {

const char* const FOUR_KEYFRAMES = "KVTANI1\n"
                                   "keyframes 4\n"
                                   "pos 0 0 0\n"
                                   "rot 0 0\n"
                                   "pos 10 -2 4.5\n"
                                   "rot 15 90\n"
                                   "pos 20 0 0\n"
                                   "rot 30 -90\n"
                                   "pos 30 0 0\n"
                                   "rot 0 0\n";

void expectVectorNear(const Vector<float, 3>& v, float x, float y, float z) {
    EXPECT_NEAR(v.x(), x, 1e-4);
    EXPECT_NEAR(v.y(), y, 1e-4);
    EXPECT_NEAR(v.z(), z, 1e-4);
}

std::unique_ptr<Animation> parse(const std::string& text) {
    AnimationParser parser("test.ani", text);
    EXPECT_TRUE(parser.isValid()) << parser.getErrorMessage();
    return parser.takeAnimation();
}

std::string parseError(const std::string& text) {
    AnimationParser parser("resources/misc/bad.ani", text);
    EXPECT_FALSE(parser.isValid());
    EXPECT_EQ(parser.takeAnimation(), nullptr);
    return parser.getErrorMessage();
}

// A path of keyframes whose x, pitch and heading all hold the given values.
std::unique_ptr<Animation> path(std::initializer_list<float> values, int type) {
    auto animation = std::make_unique<Animation>();
    for (float v : values) {
        animation->addKeyframe(new Keyframe(Vector<float, 3>(v, 2 * v, 0), v, -v));
    }
    animation->setInterpolationType(type);
    return animation;
}

std::string printedBy(Animation& animation, double t) {
    testing::internal::CaptureStdout();
    animation.next(t);
    return testing::internal::GetCapturedStdout();
}

} // namespace

TEST(AnimationParser, ReadsKeyframesInFileOrder) {
    const std::unique_ptr<Animation> animation = parse(FOUR_KEYFRAMES);
    ASSERT_EQ(animation->countKeyFrames(), 4);
    const Keyframe* second = animation->getKeyFrame(1);
    expectVectorNear(second->getPosition(), 10, -2, 4.5f);
    EXPECT_FLOAT_EQ(second->getPitch(), 15);
    EXPECT_FLOAT_EQ(second->getHeading(), 90);
    EXPECT_FLOAT_EQ(animation->getKeyFrame(2)->getHeading(), -90);
    EXPECT_EQ(animation->toString(), "Animation { keyframes = 4");
}

TEST(AnimationParser, AcceptsAnyLabelsBlankLinesAndATrimmedHeader) {
    const std::unique_ptr<Animation> animation =
        parse("KVTANI1 \r\n\nn 1\n\nwhere  1.5 2 3\nangles 4 5\n");
    ASSERT_EQ(animation->countKeyFrames(), 1);
    expectVectorNear(animation->getKeyFrame(0)->getPosition(), 1.5f, 2, 3);
    EXPECT_FLOAT_EQ(animation->getKeyFrame(0)->getHeading(), 5);
    EXPECT_EQ(parse("KVTANI1\ncount 0\n")->countKeyFrames(), 0);
}

TEST(AnimationParser, RejectsAnotherHeader) {
    EXPECT_EQ(parseError("KVTANI2\ncount 0\n"), "Error while loading animation data\n"
                                                "File : 'resources/misc/bad.ani' have invalid "
                                                "header\n");
    EXPECT_EQ(parseError(""), "Error while loading animation data\n"
                              "File : 'resources/misc/bad.ani' have invalid header\n");
}

TEST(AnimationParser, ReportsAMissingFile) {
    AnimationParser parser("no/such/folder/path.ani");
    EXPECT_FALSE(parser.isValid());
    EXPECT_EQ(parser.getErrorMessage(), "Error while loading animation data\n"
                                        "File 'no/such/folder/path.ani' not found!\n");
}

TEST(AnimationParser, LoadsAFileFromDisk) {
    const std::string name = testing::TempDir() + "AnimationParser_LoadsAFileFromDisk.ani";
    std::ofstream(name) << FOUR_KEYFRAMES;
    AnimationParser parser(name);
    ASSERT_TRUE(parser.isValid()) << parser.getErrorMessage();
    const std::unique_ptr<Animation> animation = parser.takeAnimation();
    EXPECT_EQ(animation->countKeyFrames(), 4);
    EXPECT_EQ(parser.takeAnimation(), nullptr); // handed out once
    std::remove(name.c_str());
}

TEST(AnimationParser, StopsAtCountsTheFileCannotHold) {
    const std::string heading = "Error while loading animation data\n"
                                "File : 'resources/misc/bad.ani' is corrupt: ";
    EXPECT_EQ(parseError("KVTANI1\n"), heading + "no keyframe count\n");
    EXPECT_EQ(parseError("KVTANI1\n3\npos 0 0 0\nrot 0 0\n"), heading + "no keyframe count\n");
    EXPECT_EQ(parseError("KVTANI1\nn 2\npos 0 0 0\nrot 0 0\npos 1 1 1\n"),
              heading + "it promises 2 keyframes but holds lines for 1\n");
    EXPECT_EQ(parseError("KVTANI1\nn -1\n"),
              heading + "it promises -1 keyframes but holds lines for 0\n");
    EXPECT_EQ(parseError("KVTANI1\nn 2147483647\npos 0 0 0\nrot 0 0\n"),
              heading + "it promises 2147483647 keyframes but holds lines for 1\n");
}

TEST(AnimationParser, StopsAtLinesWithTooFewValues) {
    const std::string heading = "Error while loading animation data\n"
                                "File : 'resources/misc/bad.ani' is corrupt: ";
    EXPECT_EQ(parseError("KVTANI1\nn 2\npos 0 0 0\nrot 0 0\npos 1 1\nrot 0 0\n"),
              heading + "keyframe 1 has too few values\n");
    EXPECT_EQ(parseError("KVTANI1\nn 1\npos 0 0 0\nrot 0\n"),
              heading + "keyframe 0 has too few values\n");
}

TEST(Animation, LinearRunsBetweenNeighboursAndStopsBeforeTheLast) {
    const std::unique_ptr<Animation> animation = path({0, 10}, Animation::LINEAR);
    EXPECT_EQ(printedBy(*animation, 0.5), "");
    expectVectorNear(animation->getPosition(), 5, 10, 0);
    EXPECT_FLOAT_EQ(animation->getPitch(), 5);
    EXPECT_FLOAT_EQ(animation->getHeading(), -5);

    EXPECT_EQ(printedBy(*animation, 1), "OUT OF RANGE 1\n");
    expectVectorNear(animation->getPosition(), 5, 10, 0); // unchanged
    EXPECT_EQ(printedBy(*animation, -0.5), "OUT OF RANGE -1\n");
    EXPECT_FLOAT_EQ(animation->getPitch(), 5);
}

TEST(Animation, LinearPicksTheSegmentOfTheProgress) {
    const std::unique_ptr<Animation> animation = path({0, 10, 30, 60}, Animation::LINEAR);
    animation->next(0.5); // x = 1.5: halfway between 10 and 30
    EXPECT_FLOAT_EQ(animation->getPitch(), 20);
    animation->next(0.9); // x = 2.7
    EXPECT_NEAR(animation->getPitch(), 51, 1e-4);
    EXPECT_EQ(printedBy(*path({7}, Animation::LINEAR), 0), "OUT OF RANGE 0\n");
}

TEST(Animation, CatmullRomRunsFromTheSecondKeyframeToTheOneBeforeTheLast) {
    const std::unique_ptr<Animation> animation = path({2, 3, 10, 0}, Animation::CATMULL_ROM);
    animation->next(0);
    EXPECT_EQ(animation->getPitch(), 3);
    expectVectorNear(animation->getPosition(), 3, 6, 0);
    animation->next(0.5); // 0.5 * (-0.125 * 2 + 1.125 * 3 + 1.125 * 10 - 0.125 * 0)
    EXPECT_FLOAT_EQ(animation->getPitch(), 7.1875f);
    expectVectorNear(animation->getPosition(), 7.1875f, 14.375f, 0);
    EXPECT_FLOAT_EQ(animation->getHeading(), -7.1875f);
    animation->next(0.999);
    EXPECT_NEAR(animation->getPitch(), 10, 0.01);

    EXPECT_EQ(printedBy(*animation, 1), "OUT OF RANGE [0] -> 1\n");
    EXPECT_NEAR(animation->getPitch(), 10, 0.01); // unchanged
}

TEST(Animation, CatmullRomPicksTheSegmentOfTheProgress) {
    const std::unique_ptr<Animation> animation = path({3, 1, 4, 1, 5, 9}, Animation::CATMULL_ROM);
    animation->next(0.5); // x = 1.5: between keyframes 2 and 3, shaped by 1 and 4
    EXPECT_FLOAT_EQ(animation->getPitch(),
                    0.5f * (-0.125f * 1 + 1.125f * 4 + 1.125f * 1 - 0.125f * 5));
    animation->next(2.0 / 3);
    EXPECT_NEAR(animation->getPitch(), 1, 1e-5);
    EXPECT_EQ(printedBy(*path({1, 2, 3}, Animation::CATMULL_ROM), 0), "OUT OF RANGE [-1] -> 0\n");
    EXPECT_EQ(printedBy(*animation, -0.1), "OUT OF RANGE [2] -> -1\n");
}

TEST(Animation, UnknownInterpolationDoesNothing) {
    const std::unique_ptr<Animation> animation = path({0, 10, 20, 30}, 2);
    EXPECT_EQ(printedBy(*animation, 0.5), "");
    EXPECT_EQ(animation->getPitch(), 0);
    expectVectorNear(animation->getPosition(), 0, 0, 0);
}

// Within its span the object rides the path: it stands where a camera on the path would,
// looks the way that camera looks, and the camera's view turns it back to no rotation.
TEST(AnimationObjectController, MovesTheObjectAlongThePathWithinItsSpanOnly) {
    Animation path;
    path.addKeyframe(new Keyframe(Vector<float, 3>(0, 0, 0), 0.0f, 0.0f));
    path.addKeyframe(new Keyframe(Vector<float, 3>(10, 4, -2), 60.0f, 120.0f));
    std::unique_ptr<AnimationObjectController> controller(path.getObjectController());
    controller->setStartTime(KVTTime(0, 1, 0));
    controller->setEndTime(KVTTime(0, 3, 0));
    controller->animate(2000); // no object yet: nothing to move
    KVTObject object;
    controller->setObject(&object);
    controller->animate(500);
    controller->animate(3500);
    for (int k = 0; k < 16; ++k) {
        EXPECT_EQ(object.getMatrix()[k], k % 5 == 0 ? 1.0f : 0.0f) << "outside the span " << k;
    }

    controller->animate(2000); // halfway: (5, 2, -1), pitch 30, heading 60
    const KVTObject::Matrix4 pose = object.getMatrix();
    expectVectorNear(Vector<float, 3>(pose[12], pose[13], pose[14]), 5, 2, -1);
    EXPECT_EQ(pose[15], 1.0f);
    Camera camera;
    camera.setPitch(30);
    camera.setHeading(60);
    const KVTObject::Matrix4 undone = camera.updateOrientation().mult(pose);
    for (int column = 0; column < 3; ++column) {
        for (int row = 0; row < 4; ++row) {
            EXPECT_NEAR(undone[column * 4 + row], column == row ? 1 : 0, 1e-5) << column << row;
        }
    }
    // The object's front is its -z axis.
    expectVectorNear(Vector<float, 3>(-pose[8], -pose[9], -pose[10]), camera.getDirection().x(),
                     camera.getDirection().y(), camera.getDirection().z());
    EXPECT_NEAR(camera.getDirection().y(), -0.5f, 1e-5) << "a positive pitch looks down";
}
