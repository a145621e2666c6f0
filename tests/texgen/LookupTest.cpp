#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using texgen::test::drawn;

TEST(Lookups, KernelHoldsGaussianWeightsFallingFromFullToNearlyNothing) {
    const texgen::Picture& k = drawn("Kernel.png");
    EXPECT_EQ(k.pixel(0, 0)[0], 255);
    EXPECT_LE(k.pixel(k.width - 1, 0)[0], 4);
    // A Gaussian is a straight line when its logarithm is plotted against distance squared.
    std::vector<double> xs, ys;
    for (int i = 0; i < k.width; ++i) {
        const int w = k.pixel(i, 0)[0];
        if (i > 0) {
            ASSERT_LE(w, k.pixel(i - 1, 0)[0]) << "rises at " << i;
        }
        if (w >= 16) {
            const double d = (i + 0.5) / k.width;
            xs.push_back(d * d);
            ys.push_back(std::log(w / 255.0));
        }
    }
    const double n = double(xs.size());
    double sx = 0, sy = 0, sxx = 0, sxy = 0, syy = 0;
    for (std::size_t i = 0; i < xs.size(); ++i) {
        sx += xs[i];
        sy += ys[i];
        sxx += xs[i] * xs[i];
        sxy += xs[i] * ys[i];
        syy += ys[i] * ys[i];
    }
    const double r = (n * sxy - sx * sy) / std::sqrt((n * sxx - sx * sx) * (n * syy - sy * sy));
    EXPECT_LT(r, -0.9995);
}

TEST(Lookups, ThresholdRampRisesOnEveryChannelFromBlackToFull) {
    const texgen::Picture& t = drawn("Threshold.png");
    for (int c = 0; c < 3; ++c) {
        SCOPED_TRACE(c);
        EXPECT_LE(t.pixel(0, 0)[c], 10);
        EXPECT_EQ(t.pixel(t.width - 1, 0)[c], 255);
        for (int i = 1; i < t.width; ++i) {
            ASSERT_GE(t.pixel(i, 0)[c], t.pixel(i - 1, 0)[c]) << "falls at " << i;
        }
        EXPECT_NEAR(t.pixel(t.width / 2, 0)[c], 128, 24);
    }
}

TEST(Lookups, NoiseIsEvenlySpreadAndUncorrelated) {
    const texgen::Picture& p = drawn("Noise.png");
    const double count = double(p.width) * p.height;
    for (int c = 0; c < 3; ++c) {
        SCOPED_TRACE(c);
        std::vector<int> histogram(8, 0);
        double sum = 0.0, neighbourProduct = 0.0, channelProduct = 0.0, squares = 0.0;
        for (int y = 0; y < p.height; ++y) {
            for (int x = 0; x < p.width; ++x) {
                const double value = p.pixel(x, y)[c] - 127.5;
                const double right = p.pixel((x + 1) % p.width, y)[c] - 127.5;
                const double other = p.pixel(x, y)[(c + 1) % 3] - 127.5;
                ++histogram[p.pixel(x, y)[c] / 32];
                sum += value;
                squares += value * value;
                neighbourProduct += value * right;
                channelProduct += value * other;
            }
        }
        EXPECT_NEAR(sum / count, 0.0, 2.0);
        for (int bin : histogram) {
            EXPECT_NEAR(bin, count / 8, count / 8 * 0.05);
        }
        EXPECT_LT(std::fabs(neighbourProduct / squares), 0.03);
        EXPECT_LT(std::fabs(channelProduct / squares), 0.03);
    }
}
