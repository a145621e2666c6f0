#pragma once

#include "Matrix.h"
#include "Vector.h"

// A pitch/heading/position camera. Its rotation is built from two quaternions, each held as
// a Vector<float, 4> in (w, x, y, z) order. Angles are in degrees.
class Camera {
public:
    float getPitch() const { return pitch; }
    float getHeading() const { return heading; }
    float getForwardVelocity() const { return forwardVelocity; }
    Vector<float, 3> getPosition() const { return position; }
    // The unit viewing direction of the last orientation update.
    Vector<float, 3> getDirection() const { return direction; }
    // The heading-first rotation of the last update, (w, x, y, z).
    Vector<float, 4> getQuat() const { return rotation; }
    // The 16 floats of the heading-first rotation matrix of the last update.
    const float* getRawMatrix() const { return matrix.data(); }

    void setPitch(float p) { pitch = p; }
    void setHeading(float h) { heading = h; }
    void setPosition(Vector<float, 3> p) { position = p; }

    // Angles, velocity and position to zero; the rotation state stays as it is.
    void reset();
    void changePitch(float degrees);
    void changeHeading(float degrees);
    void changeVelocity(float delta);
    // Tilting is not supported; both do nothing.
    void tiltLeft() {}
    void tiltRight() {}
    void printInfo() const;

    // Everything of setting up the view that needs no OpenGL: rebuilds the pitch and heading
    // quaternions, the rotation, its matrix and the direction, and moves the position by the
    // forward velocity along the direction. Returns the pitch-first rotation matrix, which is
    // the one to multiply into the model-view matrix before translating by -position.
    Matrix<float, 4, 4, 16> updateOrientation();
    // Selects the model-view matrix, updates the orientation, multiplies the rotation in and
    // translates by -position.
    void setGLMatrixes();

private:
    float pitch = 0;
    float heading = 0;
    float maxPitchRate = 5.0f;
    float maxHeadingRate = 5.0f;
    float maxForwardVelocity = 100.0f;
    float forwardVelocity = 0;
    Vector<float, 3> direction;
    Vector<float, 4> rotation{1, 0, 0, 0};
    Vector<float, 4> pitchQuat{1, 0, 0, 0};
    Vector<float, 4> headingQuat{1, 0, 0, 0};
    Vector<float, 3> position;
    Matrix<float, 4, 4, 16> matrix = Matrix<float, 4, 4, 16>::identity();
};
