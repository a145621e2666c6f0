#pragma once

#include "Matrix.h"

#include <string>

class KVTAnimation;

// A camera of a scene. Its matrix (OpenGL element order) places the camera in the world,
// looking along its -z axis with +y up; the view matrix is its inverse. An animation with
// keys replaces the matrix. The projection is left to the caller. Owns its animation.
class KVTCamera {
public:
    using Matrix4 = Matrix<float, 4, 4, 16>;

    explicit KVTCamera(std::string name = "");
    ~KVTCamera();
    KVTCamera(const KVTCamera&) = delete;
    KVTCamera& operator=(const KVTCamera&) = delete;

    const std::string& getName() const { return name; }
    void setName(std::string n) { name = std::move(n); }
    void setMatrix(const float* sixteen);
    const Matrix4& getMatrix() const { return matrix; }
    // Takes the animation over; a previous one is deleted.
    void setAnimation(KVTAnimation* a);
    KVTAnimation* getAnimation() const { return animation; }

    // Where the camera is at the time (milliseconds).
    Matrix4 getCameraMatrix(unsigned int time) const;
    // The inverse of the camera matrix, taken as a rotation plus a translation.
    Matrix4 getViewMatrix(unsigned int time) const;
    // Makes this the current view: loads the view matrix as the model-view matrix and marks
    // a scene camera as driving the view (KVTDemosys::cameraActive).
    void use(unsigned int time) const;
    // Clears that mark; the matrices stay as they are.
    static void release();

private:
    std::string name;
    Matrix4 matrix = Matrix4::identity();
    KVTAnimation* animation = nullptr;
};
