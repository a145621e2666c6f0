#include "Geometry.h"

#include <GL/glew.h>

void Geometry::drawUnitQuad() {
    glBegin(GL_QUADS);
    glTexCoord2f(0, 1);
    glVertex2f(-1, 1);
    glTexCoord2f(0, 0);
    glVertex2f(-1, -1);
    glTexCoord2f(1, 0);
    glVertex2f(1, -1);
    glTexCoord2f(1, 1);
    glVertex2f(1, 1);
    glEnd();
}

void Geometry::PushAllMatices() {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
}

void Geometry::PopAllMatrices() {
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
}

void Geometry::drawUnitQuadFullscreen() {
    PushAllMatices();
    drawUnitQuad();
    PopAllMatrices();
}
