// The fluid effect with the production's own shaders and pictures, checked by reading its
// half-float fields back: projection, advection, walls, the seeding modes, the composite, and
// ten seconds of stirring.
#include "FluidEffect.h"
#include "FBO.h"
#include "GLTestSupport.h"
#include "ProductionFiles.h"
#include "Shader.h"
#include "Texture.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "Vector.h"

#include <GL/glew.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

const int DYE = 256;
const int GRID = 64;
using Field = std::vector<float>;

std::unique_ptr<FBO> floatField(int side, GLint internalFormat, GLenum format) {
    return std::make_unique<FBO>(side, side, false, false, internalFormat, format, GL_FLOAT);
}

// A square field, bottom row first: its red channel, or RGB for the dye.
Field read(FBO* fbo) {
    const int side = FBO::getWidth(fbo);
    const bool dye = side == DYE;
    Field values(static_cast<std::size_t>(side) * side * (dye ? 3 : 1));
    FBO::bind(fbo);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, side, side, dye ? GL_RGB : GL_RED, GL_FLOAT, values.data());
    return values;
}

void upload(FBO* fbo, const Field& values) {
    const int side = FBO::getWidth(fbo);
    glBindTexture(GL_TEXTURE_2D, FBO::getColorBuffer(fbo, 0)->getID());
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, side, side, side == DYE ? GL_RGB : GL_RED, GL_FLOAT,
                    values.data());
    glBindTexture(GL_TEXTURE_2D, 0);
}

Field filled(int side, int channels, float value) {
    return Field(static_cast<std::size_t>(side) * side * channels, value);
}

// A picture as the effect lays it into a field: drawn full-screen.
Field pictureInField(Texture* picture, int side) {
    std::unique_ptr<FBO> field =
        side == DYE ? floatField(DYE, GL_RGB16F, GL_RGB) : floatField(GRID, GL_R16F, GL_RED);
    FBO::bind(field.get());
    picture->drawQuadFS();
    return read(field.get());
}

double dot(const Field& a, const Field& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += static_cast<double>(a[i]) * b[i];
    }
    return sum;
}

// Root mean square of the divergence over the cells inside the walls, u and v being the flows
// across each cell's left and bottom faces.
double divergenceRms(const Field& u, const Field& v) {
    double sum = 0.0;
    for (int y = 1; y < GRID - 2; ++y) {
        for (int x = 1; x < GRID - 2; ++x) {
            const int i = y * GRID + x;
            const double divergence = GRID * (u[i + 1] - u[i] + v[i + GRID] - v[i]);
            sum += divergence * divergence;
        }
    }
    return std::sqrt(sum / ((GRID - 3) * (GRID - 3)));
}

// How far a velocity field is from the picture's grey scaled about 128 by the best positive
// factor, relative to the field (1 when no positive factor fits).
double velocityMisfit(const Field& field, Field grey) {
    for (float& g : grey) {
        g -= 128.0f / 255.0f;
    }
    const double scale = dot(field, grey) / dot(grey, grey);
    double misfit = 0.0;
    for (std::size_t i = 0; i < field.size(); ++i) {
        misfit += (field[i] - scale * grey[i]) * (field[i] - scale * grey[i]);
    }
    return scale > 0.0 ? std::sqrt(misfit / dot(field, field)) : 1.0;
}

double meanAbsDifference(const Field& a, const Field& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += std::fabs(a[i] - b[i]);
    }
    return sum / a.size();
}

double maxMagnitude(const Field& values) {
    double largest = 0.0;
    for (float value : values) {
        largest = std::max(largest, static_cast<double>(std::fabs(value)));
    }
    return largest;
}

// Standard deviation: how far the dye is from an even wash.
double contrast(const Field& values) {
    const double mean = dot(values, Field(values.size(), 1.0f)) / values.size();
    return std::sqrt(dot(values, values) / values.size() - mean * mean);
}

void saveDye(const std::string& path, const Field& rgb) {
    std::vector<unsigned char> rgba;
    for (std::size_t i = 0; i < rgb.size(); ++i) {
        rgba.push_back(static_cast<unsigned char>(std::clamp(rgb[i], 0.0f, 1.0f) * 255));
        if (i % 3 == 2) {
            rgba.push_back(255);
        }
    }
    gltest::savePng(path, DYE, DYE, rgba);
}

bool wallsClosed(const Field& u, const Field& v) {
    for (int i = 0; i < GRID; ++i) {
        if (u[i * GRID] != 0.0f || u[i * GRID + GRID - 1] != 0.0f || v[i] != 0.0f ||
            v[(GRID - 1) * GRID + i] != 0.0f) {
            return false;
        }
    }
    return true;
}

class FluidEffectTest : public testing::Test {
protected:
    void SetUp() override {
        gltest::resetState(64, 64);
        for (FBO* FluidEffect::*slot : {&FluidEffect::m_densities_source, &FluidEffect::m_densities,
                                        &FluidEffect::m_densities_prev, &FluidEffect::m_d_tmp}) {
            framebuffers.push_back(floatField(DYE, GL_RGB16F, GL_RGB));
            fluid.*slot = framebuffers.back().get();
        }
        for (FBO* FluidEffect::*slot :
             {&FluidEffect::m_velocities_u_source, &FluidEffect::m_velocities_v_source,
              &FluidEffect::m_velocities_u, &FluidEffect::m_velocities_v,
              &FluidEffect::m_velocities_u_prev, &FluidEffect::m_velocities_v_prev,
              &FluidEffect::m_v_tmp}) {
            framebuffers.push_back(floatField(GRID, GL_R16F, GL_RED));
            fluid.*slot = framebuffers.back().get();
        }
        Shader* FluidEffect::*shaderSlots[] = {
            &FluidEffect::addSourceShader,    &FluidEffect::advectShader,
            &FluidEffect::divergenceShader,   &FluidEffect::pressureShader,
            &FluidEffect::gradientUShader,    &FluidEffect::gradientVShader,
            &FluidEffect::boundariesShader,   &FluidEffect::normalizeShader,
            &FluidEffect::screenOpacityShader};
        const char* shaderFiles[] = {"AddSource",    "Advect",        "ProjectPass0",
                                     "ProjectPass1", "ProjectPass2u", "ProjectPass2v",
                                     "Boundaries",   "Normalize",     "ScreenOpacity"};
        for (int i = 0; i < 9; ++i) {
            shaders.push_back(gltest::productionShader(shaderFiles[i]));
            fluid.*shaderSlots[i] = shaders.back().get();
        }
        // The order of the production's list: six velocity pictures, then six dye pictures.
        Texture* FluidEffect::*pictureSlots[] = {
            &FluidEffect::uSource,          &FluidEffect::vSource,
            &FluidEffect::uSource2,         &FluidEffect::vSource2,
            &FluidEffect::uSource3,         &FluidEffect::vSource3,
            &FluidEffect::vaskSmall,        &FluidEffect::lumoSmall,
            &FluidEffect::orinSmall,        &FluidEffect::quilletSmall,
            &FluidEffect::korvathlogoSmall, &FluidEffect::brinovalogoSmall};
        const char* pictureFiles[] = {
            "Velocities.png",  "Velocities2.png",  "Velocities3.png",      "Velocities4.png",
            "Velocities5.png", "Velocities6.png",  "VaskSmall.png",        "LumoSmall.png",
            "OrinSmall.png",   "QuilletSmall.png", "KorvathLogoSmall.png", "BrinovaLogoSmall.png"};
        for (int i = 0; i < 12; ++i) {
            pictures.push_back(gltest::productionPicture(pictureFiles[i], GL_TEXTURE_2D, false));
            fluid.*pictureSlots[i] = pictures.back().get();
        }
        ASSERT_FALSE(HasFailure());
        fluid.staging0 = staging0.get();
        fluid.staging1 = staging1.get();
        tracks.set(fluid.source, 0.0f);
        tracks.set(fluid.timeStep, 0.02f);
        tracks.set(fluid.xpos, 0.0f);
        tracks.set(fluid.ypos, 0.0f);
        tracks.set(fluid.opacity, 1.0f);
        fluid.init();
    }

    void TearDown() override { EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)); }

    // Index of the velocity picture (0-5) a velocity field was made from, or -1. Freshly
    // seeded, a field misfits its picture by a part in a thousand, one projection later by
    // about a fifth (the pictures are not divergence-free on this grid to the last texel); any
    // other picture misfits by nearly all of the field.
    int velocityPictureOf(const Field& field) {
        for (int i = 0; i < 6; ++i) {
            if (velocityMisfit(field, pictureInField(pictures[i].get(), GRID)) < 0.5) {
                return i;
            }
        }
        return -1;
    }

    // Index of the dye picture (6-11) the dye is, texel for texel, or -1.
    int dyePictureOf(const Field& dye) {
        for (int i = 6; i < 12; ++i) {
            if (meanAbsDifference(dye, pictureInField(pictures[i].get(), DYE)) < 0.01) {
                return i;
            }
        }
        return -1;
    }

    void drawFrames(int count, unsigned int firstTime, unsigned int frameTime) {
        for (int frame = 0; frame < count; ++frame) {
            fluid.draw(firstTime + frame * frameTime, frameTime, target.get());
        }
    }

    FluidEffect fluid;
    gltest::TrackValues tracks;
    std::vector<std::unique_ptr<FBO>> framebuffers;
    std::vector<std::unique_ptr<Shader>> shaders;
    std::vector<std::unique_ptr<Texture>> pictures;
    std::unique_ptr<FBO> staging0 = gltest::rgbaTarget(160, 90);
    std::unique_ptr<FBO> staging1 = gltest::rgbaTarget(160, 90);
    std::unique_ptr<FBO> target = gltest::rgbaTarget(160, 90);
};

// A source of fluid (the gradient of a bump: all divergence) laid over a swirl (the curl of a
// bump: no divergence at all on this grid). Projection must take out the first and keep the
// second; eight relaxations do not finish the job in one frame, the frames that follow do.
TEST_F(FluidEffectTest, ProjectionTakesOutTheDivergenceAndKeepsTheSwirl) {
    auto bump = [](int x, int y, double cx, double cy, double sigma) {
        return std::exp(-((x - cx) * (x - cx) + (y - cy) * (y - cy)) / (2 * sigma * sigma));
    };
    auto stream = [&](int x, int y) { return 0.004 * bump(x, y, 36, 28, 6); };
    auto potential = [&](int x, int y) { return 0.001 * bump(x, y, 28, 34, 2); };
    Field swirlU = filled(GRID, 1, 0.0f), swirlV = swirlU, u = swirlU, v = swirlU;
    double sourceEnergy = 0.0;
    for (int y = 1; y < GRID - 1; ++y) {
        for (int x = 1; x < GRID - 1; ++x) {
            const int i = y * GRID + x;
            swirlU[i] = static_cast<float>(GRID * (stream(x, y + 1) - stream(x, y)));
            swirlV[i] = static_cast<float>(-GRID * (stream(x + 1, y) - stream(x, y)));
            const double sourceU = GRID * (potential(x, y) - potential(x - 1, y));
            const double sourceV = GRID * (potential(x, y) - potential(x, y - 1));
            sourceEnergy += sourceU * sourceU + sourceV * sourceV;
            u[i] = static_cast<float>(swirlU[i] + sourceU);
            v[i] = static_cast<float>(swirlV[i] + sourceV);
        }
    }
    upload(fluid.m_velocities_u, u);
    upload(fluid.m_velocities_v, v);
    const double before = divergenceRms(read(fluid.m_velocities_u), read(fluid.m_velocities_v));

    fluid.tmp = fluid.m_v_tmp;
    fluid.project();
    const Field projectedU = read(fluid.m_velocities_u);
    const Field projectedV = read(fluid.m_velocities_v);
    const double after = divergenceRms(projectedU, projectedV);
    for (int frame = 1; frame < 10; ++frame) {
        fluid.project();
    }
    const double afterTen = divergenceRms(read(fluid.m_velocities_u), read(fluid.m_velocities_v));
    std::cout << "divergence rms " << before << " -> " << after << " after one projection (x"
              << after / before << "), " << afterTen << " after ten (x" << afterTen / before << ")"
              << std::endl;
    EXPECT_LT(after, 0.45 * before);
    EXPECT_LT(afterTen, 0.06 * before);

    const double swirlKept = (dot(projectedU, swirlU) + dot(projectedV, swirlV)) /
                             (dot(swirlU, swirlU) + dot(swirlV, swirlV));
    double sourceLeft = 0.0;
    for (std::size_t i = 0; i < u.size(); ++i) {
        sourceLeft +=
            std::pow(projectedU[i] - swirlU[i], 2) + std::pow(projectedV[i] - swirlV[i], 2);
    }
    EXPECT_NEAR(swirlKept, 1.0, 0.01);
    EXPECT_LT(sourceLeft, 0.35 * sourceEnergy);
}

// A round dot of dye in an even flow of u = 0.5 and v = -0.25 texture widths per unit of
// time: each step of 0.02 carries it 2.56 texels right and 1.28 down. A plain bilinear trace
// would also widen it by f(1 - f) texels squared per step and axis (f the fraction of a
// texel moved: 4.5 over these ten steps); the corrected trace must keep well under that.
TEST_F(FluidEffectTest, AdvectionCarriesDyeByTheTimeStepAndKeepsItSharp) {
    upload(fluid.m_velocities_u, filled(GRID, 1, 0.5f));
    upload(fluid.m_velocities_v, filled(GRID, 1, -0.25f));
    Field spot = filled(DYE, 3, 0.0f);
    for (int i = 0; i < DYE * DYE; ++i) {
        const double dx = i % DYE - 90.0, dy = i / DYE - 150.0;
        spot[i * 3 + 1] = static_cast<float>(std::exp(-(dx * dx + dy * dy) / 18.0));
    }
    upload(fluid.m_densities_prev, spot);
    // Mass, centre and spread (mean squared distance from the centre) of the green dye.
    auto moments = [](const Field& rgb) {
        double mass = 0.0, x = 0.0, y = 0.0, squares = 0.0;
        for (int i = 0; i < DYE * DYE; ++i) {
            const double value = rgb[i * 3 + 1], px = i % DYE + 0.5, py = i / DYE + 0.5;
            mass += value;
            x += value * px;
            y += value * py;
            squares += value * (px * px + py * py);
        }
        return std::vector<double>{mass, x / mass, y / mass,
                                   squares / mass - (x * x + y * y) / (mass * mass)};
    };
    const std::vector<double> start = moments(read(fluid.m_densities_prev));

    for (int step = 0; step < 10; ++step) {
        fluid.advect(fluid.m_densities_prev, fluid.m_densities, fluid.m_velocities_u,
                     fluid.m_velocities_v, 0);
        std::swap(fluid.m_densities, fluid.m_densities_prev);
    }
    const Field after = read(fluid.m_densities_prev);
    saveDye("/tmp/fluid_advected_dot.png", after);
    const std::vector<double> end = moments(after);
    EXPECT_NEAR(end[0], start[0], 0.05 * start[0]);
    EXPECT_NEAR(end[1] - start[1], 25.6, 1.0);
    EXPECT_NEAR(end[2] - start[2], -12.8, 1.0);
    EXPECT_LT(end[3] - start[3], 2.5);
}

TEST_F(FluidEffectTest, WallsStopTheFlowAcrossTheBordersAndKeepTheEnableState) {
    Field u = filled(GRID, 1, 0.3f);
    u[20 * GRID + 20] = 20.0f; // a runaway texel, beyond what any field may hold
    upload(fluid.m_velocities_u, u);
    upload(fluid.m_velocities_v, filled(GRID, 1, -0.2f));
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    const Vector<float, 4> anyValues(0.0f, 0.0f, -0.025f, 0.0f);
    fluid.drawConstantBoundaries(anyValues, fluid.m_velocities_u, 0, 1);
    fluid.drawConstantBoundaries(anyValues, fluid.m_velocities_v, 1, 1);
    EXPECT_TRUE(glIsEnabled(GL_DEPTH_TEST));
    EXPECT_TRUE(glIsEnabled(GL_CULL_FACE));
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);

    const Field walledU = read(fluid.m_velocities_u);
    const Field walledV = read(fluid.m_velocities_v);
    EXPECT_TRUE(wallsClosed(walledU, walledV));
    // Along the walls and inside, the flow goes on as it was.
    EXPECT_NEAR(walledU[30], 0.3f, 1e-3);
    EXPECT_NEAR(walledU[30 * GRID + 30], 0.3f, 1e-3);
    EXPECT_NEAR(walledV[30 * GRID], -0.2f, 1e-3);
    EXPECT_NEAR(walledV[30 * GRID + 30], -0.2f, 1e-3);
    EXPECT_EQ(walledU[20 * GRID + 20], 10.5f);
}

// Modes 1 to 6 seed their pictures (indices into the fixture's pictures); 0 and 3.5 only
// clear the previous step; a step of the "source" track restarts the fluid on that frame.
TEST_F(FluidEffectTest, ModesSeedTheirPicturesAndAChangeRestartsTheFluidAtOnce) {
    const int seeding[6][3] = {{10, 4, 5}, {11, 2, 3}, {6, 2, 3}, {7, 4, 3}, {8, 4, 5}, {9, 2, 5}};
    for (int mode = 1; mode <= 6; ++mode) {
        fluid.resetBuffers(static_cast<float>(mode));
        EXPECT_EQ(dyePictureOf(read(fluid.m_densities)), seeding[mode - 1][0]) << mode;
        EXPECT_EQ(velocityPictureOf(read(fluid.m_velocities_u)), seeding[mode - 1][1]) << mode;
        EXPECT_EQ(velocityPictureOf(read(fluid.m_velocities_v)), seeding[mode - 1][2]) << mode;
    }

    for (float mode : {0.0f, 3.5f}) {
        fluid.resetBuffers(3.0f);
        for (int step = 0; step < 3; ++step) {
            fluid.velocity_pass();
            fluid.density_pass();
        }
        const Field dye = read(fluid.m_densities), u = read(fluid.m_velocities_u);
        ASSERT_GT(maxMagnitude(read(fluid.m_densities_prev)), 0.5);
        fluid.resetBuffers(mode);
        EXPECT_EQ(maxMagnitude(read(fluid.m_densities_prev)), 0.0) << mode;
        EXPECT_EQ(maxMagnitude(read(fluid.m_velocities_u_prev)), 0.0) << mode;
        EXPECT_EQ(maxMagnitude(read(fluid.m_velocities_v_prev)), 0.0) << mode;
        EXPECT_EQ(read(fluid.m_densities), dye) << mode;
        EXPECT_EQ(read(fluid.m_velocities_u), u) << mode;
    }

    // With the time step at zero nothing moves, so the dye shows which picture seeded it.
    TrackInterpolate source("source");
    source.addKeyframe(new TrackKeyFrameInterpolate(0, TrackInterpolate::STEP, 3.0f));
    source.addKeyframe(new TrackKeyFrameInterpolate(20, TrackInterpolate::STEP, 5.0f));
    fluid.source = &source;
    tracks.set(fluid.timeStep, 0.0f);
    drawFrames(20, 0, 50);
    EXPECT_EQ(dyePictureOf(read(fluid.m_densities)), 6);
    drawFrames(1, 1000, 50);
    EXPECT_EQ(fluid.previousSourceMode, 5.0f);
    EXPECT_EQ(dyePictureOf(read(fluid.m_densities)), 8);
    EXPECT_EQ(velocityPictureOf(read(fluid.m_velocities_u)), 4);
    EXPECT_EQ(velocityPictureOf(read(fluid.m_velocities_v)), 5);
}

TEST_F(FluidEffectTest, TheCompositeShowsTheBackgroundAndTheDyeAtItsOpacityOverIt) {
    glClearColor(0.2f, 0.4f, 0.6f, 1.0f);
    FBO::clearNow(staging0.get());
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    const gltest::Rgba background{51, 102, 153, 255};
    std::vector<unsigned char> backgroundEverywhere;
    for (int i = 0; i < 160 * 90; ++i) {
        backgroundEverywhere.insert(backgroundEverywhere.end(), {51, 102, 153, 255});
    }

    // Mode 0 from the start: no dye at all.
    drawFrames(3, 0, 50);
    EXPECT_TRUE(FBO::hasClearFlag(target.get()));
    EXPECT_EQ(gltest::readRgba(0, 0, 160, 90), backgroundEverywhere);

    // Dye of (0.8, 0.4, 0) everywhere, shown at half opacity in a rectangle centred on
    // (0.3, -0.2), a third of the width and 1 / 1.8 of the height across: pixels 77.3 to
    // 130.7 across and 11.0 to 61.0 up. Over the background it blends to (133, 133, 153).
    Field dye;
    for (int i = 0; i < DYE * DYE; ++i) {
        dye.insert(dye.end(), {0.8f, 0.4f, 0.0f});
    }
    upload(fluid.m_densities, dye);
    tracks.set(fluid.source, 3.0f);
    fluid.previousSourceMode = 3.0f;
    tracks.set(fluid.timeStep, 0.0f);
    tracks.set(fluid.opacity, 0.5f);
    tracks.set(fluid.xpos, 0.3f);
    tracks.set(fluid.ypos, -0.2f);
    drawFrames(1, 200, 50);
    gltest::savePng("/tmp/fluid_composite.png", 160, 90, gltest::readRgba(0, 0, 160, 90));
    for (auto [x, y] : {std::pair{104, 36}, {79, 36}, {129, 36}, {104, 12}, {104, 60}}) {
        const gltest::Rgba pixel = gltest::pixelAt(x, y);
        EXPECT_NEAR(pixel.r, 133, 2) << x << "," << y;
        EXPECT_NEAR(pixel.g, 133, 2) << x << "," << y;
        EXPECT_NEAR(pixel.b, 153, 2) << x << "," << y;
    }
    for (auto [x, y] : {std::pair{20, 36}, {76, 36}, {132, 36}, {104, 9}, {104, 63}}) {
        EXPECT_EQ(gltest::pixelAt(x, y), background) << x << "," << y;
    }
}

// Ten seconds of the most turbulent mode at sixty steps a second: the dye keeps swirling,
// neither blowing up (no colour beyond the picture's own, no growing velocity) nor fading
// into an even blur (it keeps its contrast), and the walls hold throughout.
TEST_F(FluidEffectTest, TenSecondsOfStirringNeitherBlowUpNorBlurTheDyeAway) {
    tracks.set(fluid.source, 5.0f);
    tracks.set(fluid.timeStep, 1.0f / 60.0f);
    drawFrames(1, 0, 16);
    const Field first = read(fluid.m_densities);
    const double firstSpeed = maxMagnitude(read(fluid.m_velocities_u));

    drawFrames(600, 16, 16);
    const Field last = read(fluid.m_densities);
    const double lastSpeed = maxMagnitude(read(fluid.m_velocities_u));
    saveDye("/tmp/fluid_mode5_0s.png", first);
    saveDye("/tmp/fluid_mode5_10s.png", last);
    EXPECT_LE(maxMagnitude(last), maxMagnitude(first) + 1e-3);
    EXPECT_LT(lastSpeed, firstSpeed);
    EXPECT_GT(lastSpeed, 0.2 * firstSpeed);
    EXPECT_GT(contrast(last), 0.5 * contrast(first));
    EXPECT_GT(meanAbsDifference(first, last), 0.05);
    EXPECT_TRUE(wallsClosed(read(fluid.m_velocities_u), read(fluid.m_velocities_v)));
}

} // namespace
