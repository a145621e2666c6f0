#include "KVTCamera.h"

#include "KVTAnimation.h"
#include "KVTDemosys.h"

#include <GL/glew.h>

#include <algorithm>

KVTCamera::KVTCamera(std::string cameraName) : name(std::move(cameraName)) {}

KVTCamera::~KVTCamera() {
    delete animation;
}

void KVTCamera::setMatrix(const float* sixteen) {
    std::copy(sixteen, sixteen + 16, matrix.data());
}

void KVTCamera::setAnimation(KVTAnimation* a) {
    if (a != animation) {
        delete animation;
    }
    animation = a;
}

KVTCamera::Matrix4 KVTCamera::getCameraMatrix(unsigned int time) const {
    if (animation != nullptr && !animation->isEmpty()) {
        return animation->getMatrix(time);
    }
    return matrix;
}

KVTCamera::Matrix4 KVTCamera::getViewMatrix(unsigned int time) const {
    const Matrix4 camera = getCameraMatrix(time);
    Matrix4 view = Matrix4::identity();
    // Transposed rotation; element (row r, column c) is at c * 4 + r.
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            view[c * 4 + r] = camera[r * 4 + c];
        }
    }
    // Translation: -R^T * t.
    for (int r = 0; r < 3; ++r) {
        view[12 + r] =
            -(view[r] * camera[12] + view[4 + r] * camera[13] + view[8 + r] * camera[14]);
    }
    return view;
}

void KVTCamera::use(unsigned int time) const {
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(getViewMatrix(time).data());
    KVTDemosys::cameraActive = true;
}

void KVTCamera::release() {
    KVTDemosys::cameraActive = false;
}
