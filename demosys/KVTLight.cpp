#include "KVTLight.h"

#include "KVTAnimation.h"

#include <GL/glew.h>

#include <algorithm>

KVTLight::KVTLight(unsigned int lightId) : id(lightId) {}

KVTLight::~KVTLight() {
    delete animation;
}

void KVTLight::setColour(float r, float g, float b) {
    colour = Vector<float, 4>(r, g, b, 1.0f);
}

void KVTLight::setMatrix(const float* sixteen) {
    std::copy(sixteen, sixteen + 16, matrix.data());
}

void KVTLight::setAnim(KVTAnimation* a) {
    if (a != animation) {
        delete animation;
    }
    animation = a;
}

Vector<float, 4> KVTLight::getPosition(unsigned int time) const {
    const Matrix<float, 4, 4, 16> m =
        animation != nullptr && !animation->isEmpty() ? animation->getMatrix(time) : matrix;
    if (type == DIRECTIONAL) {
        return Vector<float, 4>(m[8], m[9], m[10], 0.0f);
    }
    return Vector<float, 4>(m[12], m[13], m[14], 1.0f);
}

void KVTLight::apply(int index, unsigned int time) const {
    const GLenum light = GL_LIGHT0 + static_cast<GLenum>(index);
    const float none[4] = {0, 0, 0, 1};
    glLightfv(light, GL_AMBIENT, none);
    glLightfv(light, GL_DIFFUSE, colour.data());
    glLightfv(light, GL_SPECULAR, colour.data());
    glLightfv(light, GL_POSITION, getPosition(time).data());
    glEnable(light);
}

void KVTLight::disable(int index) {
    glDisable(GL_LIGHT0 + static_cast<GLenum>(index));
}
