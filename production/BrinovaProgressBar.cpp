#include "BrinovaProgressBar.h"

#include "KVTIO.h"
#include "Texture.h"

#include <GL/glew.h>

#include <algorithm>
#include <iostream>

namespace {

const char* const BACKGROUND_FILE = "resources/graphics/Loader1.png";
const char* const OVERLAY_FILE = "resources/graphics/Loader2.png";

constexpr int LAST_STAGE = 6;
constexpr float STAGE_WIDTH = 0.3332f;
constexpr float FIRST_STAGE_RIGHT = -0.8f;

float stageRight(int stage) {
    return stage * STAGE_WIDTH + FIRST_STAGE_RIGHT;
}

// Steps of loading per stage: a seventh of the total, and at least one so that the stages
// always run out (a total below seven would otherwise never advance).
int stepsPerStage(int ticks) {
    return std::max(1, static_cast<int>(ticks / 7.0));
}

// The loading screen is drawn without a picture that is missing or damaged, and says so.
Texture* loadPicture(const char* file) {
    Texture* picture = KVTIO::loadTexture(file, GL_TEXTURE_2D, false);
    if (picture == nullptr) {
        std::cout << "Loading screen : the picture '" << file
                  << "' is missing or damaged; the loading screen goes without it" << std::endl;
    }
    return picture;
}

} // namespace

BrinovaProgressBar::~BrinovaProgressBar() {
    delete background;
    delete overlay;
}

void BrinovaProgressBar::loadData() {
    background = loadPicture(BACKGROUND_FILE);
    overlay = loadPicture(OVERLAY_FILE);
    resources.push_back(BACKGROUND_FILE);
    resources.push_back(OVERLAY_FILE);
}

void BrinovaProgressBar::draw() {
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_BLEND);
    glDisable(GL_CULL_FACE);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    glColor3f(1, 1, 1);
    drawBackground();

    glDisable(GL_DEPTH_TEST);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    if (overlay != nullptr) {
        overlay->bind();
        drawStages();
        overlay->release();
    }
    glDisable(GL_BLEND);
    glDisable(GL_COLOR_MATERIAL);
    showFrame();
}

void BrinovaProgressBar::drawBackground() const {
    if (background == nullptr) {
        return;
    }
    background->bind();
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(-1, 1);
    glTexCoord2f(1, 0);
    glVertex2f(1, 1);
    glTexCoord2f(1, 1);
    glVertex2f(1, -1);
    glTexCoord2f(0, 1);
    glVertex2f(-1, -1);
    glEnd();
    background->release();
}

// One strip for every stepsPerStage steps done, each reaching a stage further (up to the
// last), drawn over the earlier ones.
void BrinovaProgressBar::drawStages() const {
    int stage = 0;
    for (int step = 0; step < ticksDone; step += stepsPerStage(ticks)) {
        drawStage(stage);
        stage = std::min(stage + 1, LAST_STAGE);
    }
}

// A full-height strip from the left edge; the texture is spread so that u = (x + 1) / 2
// whatever the stage, keeping the overlay aligned with the background.
void BrinovaProgressBar::drawStage(int stage) const {
    const float right = stageRight(stage);
    const float u = stage * 0.1666f + 0.1f;
    glBegin(GL_QUADS);
    glTexCoord2f(0, 0);
    glVertex2f(-1, 1);
    glTexCoord2f(u, 0);
    glVertex2f(right, 1);
    glTexCoord2f(u, 1);
    glVertex2f(right, -1);
    glTexCoord2f(0, 1);
    glVertex2f(-1, -1);
    glEnd();
}
