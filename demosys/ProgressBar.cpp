#include "ProgressBar.h"

#include "KVTDemosys.h"

#include <GL/glew.h>

#include <SDL.h>

namespace {

// An axis-aligned quad in normalised device coordinates.
void fillQuad(float left, float bottom, float right, float top) {
    glBegin(GL_QUADS);
    glVertex2f(left, bottom);
    glVertex2f(right, bottom);
    glVertex2f(right, top);
    glVertex2f(left, top);
    glEnd();
}

void pushIdentity(GLenum matrixMode) {
    glMatrixMode(matrixMode);
    glPushMatrix();
    glLoadIdentity();
}

void popMatrix(GLenum matrixMode) {
    glMatrixMode(matrixMode);
    glPopMatrix();
}

} // namespace

ProgressBar::ProgressBar(float height, float width, float centerY, int ticks)
    : height(height), width(width), centerY(centerY), ticks(ticks) {}

void ProgressBar::tick() {
    if (ticksDone == ticks) {
        return;
    }
    progress = static_cast<float>(ticksDone) / static_cast<float>(ticks);
    ++ticksDone;
    draw();
}

void ProgressBar::draw() {
    pushIdentity(GL_PROJECTION);
    pushIdentity(GL_MODELVIEW);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    drawBar();
    glColor3f(1, 1, 1);
    glDisable(GL_COLOR_MATERIAL);
    popMatrix(GL_PROJECTION);
    popMatrix(GL_MODELVIEW);
    showFrame();
}

// A white frame, a black inside, and a white fill growing from the left with the progress.
void ProgressBar::drawBar() const {
    const float left = -width / 2;
    const float right = width / 2;
    const float bottom = centerY - height / 2;
    const float top = centerY + height / 2;
    glColor3f(1, 1, 1);
    fillQuad(left, bottom, right, top);
    glColor3f(0, 0, 0);
    fillQuad(left + 0.01f, bottom + 0.012f, right - 0.01f, top - 0.012f);
    glColor3f(1, 1, 1);
    const float fillRight = left + 0.015f + (width - 0.03f) * progress;
    fillQuad(left + 0.015f, bottom + 0.019f, fillRight, top - 0.019f);
}

void ProgressBar::showFrame() {
    if (KVTDemosys::screen != nullptr) {
        SDL_GL_SwapWindow(KVTDemosys::screen);
    }
}
