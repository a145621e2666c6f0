// The underwater scene's geometry without OpenGL: the random draws, the two meshes and the
// weed quads with the ribbons they are made of.
#include "KVTMesh.h"
#include "Ribbon.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "UnderwaterEffect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <memory>
#include <vector>

using Vec3 = Vector<float, 3>;

TEST(UnderwaterGeometry, RandomValuesStayInRangeInStepsOfATenThousandth) {
    std::srand(11);
    float lowest = 1, highest = -1;
    for (int i = 0; i < 100000; ++i) {
        const float v = UnderwaterEffect::rnd_in_float(-0.5f, 0.5f);
        lowest = std::min(lowest, v);
        highest = std::max(highest, v);
        const float steps = (v + 0.5f) * 10000.0f;
        ASSERT_NEAR(steps, std::round(steps), 0.01) << v;
        ASSERT_LE(UnderwaterEffect::rnd_in_float(-100, 100), -100 + 0.9999f + 1e-4f);
    }
    EXPECT_GE(lowest, -0.5f);
    EXPECT_LT(lowest, -0.499f);
    EXPECT_LE(highest, 0.4999f + 1e-6f);
    EXPECT_GT(highest, 0.499f);
}

TEST(UnderwaterGeometry, TheSurfaceStopsOneCellShortOfTheFarEdges) {
    const std::unique_ptr<KVTMesh> mesh = UnderwaterEffect::makeOceanSurface(64, 200);
    ASSERT_EQ(mesh->getNumVertices(), 4096);
    ASSERT_EQ(mesh->getNumFaces(), 3969);
    const Vec3* p = mesh->getVertexPointer();
    EXPECT_FLOAT_EQ(p[0].x(), -100.0f);
    EXPECT_FLOAT_EQ(p[0].z(), 100.0f);
    EXPECT_FLOAT_EQ(p[4095].x(), 100.0f - 200.0f / 64);
    EXPECT_FLOAT_EQ(p[4095].z(), 100.0f - 63 * 200.0f / 64);
    EXPECT_FLOAT_EQ(mesh->getTexCoordPointer()[4095].x(), 63.0f / 64);
    // Cell (row 1, column 2) is i, i + N, i + N + 1, i + 1 with i = 66.
    const std::uint32_t* face = mesh->getPolygonPointer() + (63 + 2) * 4;
    EXPECT_EQ((std::vector<std::uint32_t>(face, face + 4)),
              (std::vector<std::uint32_t>{66, 130, 131, 67}));
    // Flat: every normal faces down, to the viewer below.
    for (int i = 0; i < 4096; ++i) {
        ASSERT_NEAR(mesh->getVertexNormalPointer()[i].y(), -1.0f, 1e-5f) << i;
    }
}

TEST(UnderwaterGeometry, TheFloorIsFacetedWithoutCracks) {
    const int n = 256;
    const std::unique_ptr<KVTMesh> mesh = UnderwaterEffect::makeOceanFloor(n, 200);
    ASSERT_EQ(mesh->getNumVertices(), 262144);
    ASSERT_EQ(mesh->getNumFaces(), 65536);
    const Vec3* p = mesh->getVertexPointer();
    float lowest = 1e9f, highest = -1e9f;
    int cracks = 0;
    for (int k = 0; k < n * n; ++k) {
        ASSERT_EQ(mesh->getPolygonPointer()[4 * k + 3], static_cast<std::uint32_t>(4 * k + 3));
        ASSERT_FLOAT_EQ(p[4 * k + 1].x(), -100.0f + (k % n) * 200.0f / n);
        ASSERT_FLOAT_EQ(p[4 * k + 1].z(), 100.0f - (k / n) * 200.0f / n);
        lowest = std::min(lowest, p[4 * k].y());
        highest = std::max(highest, p[4 * k].y());
        // Corners 2, 3 are the next cell's 1, 0; corners 0, 3 are the next row's 1, 2.
        if (k % n + 1 < n) {
            cracks += p[4 * k + 2].y() != p[4 * k + 5].y();
            cracks += p[4 * k + 3].y() != p[4 * k + 4].y();
        }
        if (k / n + 1 < n) {
            cracks += p[4 * k].y() != p[4 * (k + n) + 1].y();
            cracks += p[4 * k + 3].y() != p[4 * (k + n) + 2].y();
        }
        ASSERT_GT(mesh->getFaceNormalPointer()[k].y(), 0.0f) << "faces point up, out of the floor";
    }
    EXPECT_EQ(cracks, 0);
    // Hills of three times the Perlin value (which strays a little past 1) and terraces of up
    // to 1.5 either way.
    EXPECT_GT(highest - lowest, 3.0f);
    EXPECT_LT(highest - lowest, 2 * (3 * 1.5f + 1.5f));
}

TEST(UnderwaterGeometry, ARibbonsFirstVertexNeverMoves) {
    Ribbon ribbon(Vec3(1.0f, 2.0f, 3.0f), 0.01f, 100, 42);
    const std::vector<float> shaped = ribbon.vertices;
    ribbon.recalcVertices(Vec3(0.7f, -1.3f, 2.2f));
    EXPECT_EQ(std::vector<float>(ribbon.vertices.begin(), ribbon.vertices.begin() + 3),
              (std::vector<float>{1.0f, 2.0f, 3.0f}));
    EXPECT_NE(ribbon.vertices, shaped) << "the rest follows the offset";
    ribbon.recalcVertices(Vec3(0.0f, 0.0f, 0.0f));
    EXPECT_EQ(ribbon.vertices, shaped) << "offset zero is the strand's own shape";
}

class UnderwaterWeed : public testing::Test {
protected:
    void SetUp() override {
        std::srand(3);
        effect.initWeed();
        offset = track(0.0f, 40.0f); // rises 0.2 a second
        effect.ribbons_noise_offset = offset.get();
    }

    void setCounts(float ribs, float vertices) {
        ribsTrack = track(ribs, ribs);
        verticesTrack = track(vertices, vertices);
        effect.num_ribs = ribsTrack.get();
        effect.num_ribs_verts = verticesTrack.get();
    }

    // With the counts asked for, the quads of each of the given number of strands (or all
    // the corners when no strand is expected).
    std::size_t quadsPerStrand(float ribs, float vertices, std::size_t strands) {
        setCounts(ribs, vertices);
        const std::size_t corners = effect.buildWeedQuads(1000).size();
        return strands == 0 ? corners : corners / strands / 4;
    }

    static std::unique_ptr<TrackInterpolate> track(float first, float after200s) {
        auto result = std::make_unique<TrackInterpolate>("value");
        result->addKeyframe(new TrackKeyFrameInterpolate(0, TrackInterpolate::LINEAR, first));
        result->addKeyframe(
            new TrackKeyFrameInterpolate(4000, TrackInterpolate::LINEAR, after200s));
        return result;
    }

    UnderwaterEffect effect;
    std::unique_ptr<TrackInterpolate> offset, ribsTrack, verticesTrack;
};

TEST_F(UnderwaterWeed, CountsOfStrandsAndSegmentsAreClamped) {
    EXPECT_EQ(quadsPerStrand(25, 100, 20), 99u) << "20 strands at most, 98 segments and a tip";
    EXPECT_EQ(quadsPerStrand(7.9f, 100, 7), 99u);
    EXPECT_EQ(quadsPerStrand(0, 100, 0), 0u);
    EXPECT_EQ(quadsPerStrand(-3, 100, 0), 0u);
    EXPECT_EQ(quadsPerStrand(20, 1, 20), 1u) << "below 2 vertices only the tips";
    EXPECT_EQ(quadsPerStrand(20, 500, 20), 99u);
}

// The first strand is the first ribbon reshaped by the offsets read at t, t / 2 and 2t. Its
// quads rise a step a segment and sway by the ribbon's x and z times the height; the
// half-width grows every segment and carries on into the next strand.
TEST_F(UnderwaterWeed, StrandsFollowTheirRibbonsAndWiden) {
    const int segments = 8;
    setCounts(2, segments + 2);
    const unsigned int time = 3000;
    const std::vector<Vec3> quads = effect.buildWeedQuads(time);

    std::srand(3);
    Ribbon expected(Vec3(0, 0, 0), 0.01f, 100, std::rand());
    expected.recalcVertices(
        Vec3(offset->getValue(time), offset->getValue(time / 2), offset->getValue(time * 2)));
    const float* v = expected.getVertices();
    float s = 0.0f;
    float w = UnderwaterEffect::WEED_HALF_WIDTH;
    for (int j = 0; j < segments; ++j) {
        const Vec3* quad = &quads[static_cast<std::size_t>(j) * 4];
        EXPECT_FLOAT_EQ(quad[0].x(), (v[3 * j] - w) * s) << j;
        EXPECT_FLOAT_EQ(quad[1].z(), v[3 * j + 2] * s) << j;
        s += UnderwaterEffect::WEED_RISE;
        EXPECT_FLOAT_EQ(quad[2].y(), s) << j;
        EXPECT_FLOAT_EQ(quad[2].x(), (v[3 * j + 3] + w) * s) << j;
        w += UnderwaterEffect::WEED_WIDENING;
    }
    const Vec3* tip = &quads[segments * 4];
    EXPECT_EQ(tip[2].x(), tip[3].x()) << "the tip closes in one point";

    const auto halfWidthOfSecondSegment = [&quads](std::size_t strand) {
        const Vec3* quad = &quads[strand * (segments + 1) * 4 + 4];
        return (quad[1].x() - quad[0].x()) / (2 * quad[0].y());
    };
    EXPECT_NEAR(halfWidthOfSecondSegment(1) - halfWidthOfSecondSegment(0),
                segments * UnderwaterEffect::WEED_WIDENING, 1e-6f);
}
