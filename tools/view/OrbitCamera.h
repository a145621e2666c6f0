#pragma once

#include "Matrix.h"
#include "Vector.h"

struct Bounds;

// A camera that circles a target point: its heading turns about the world's y axis, its
// elevation lifts it above the target's horizon, and it keeps its distance. It starts three
// quarters on, from a little above.
class OrbitCamera {
public:
    using Matrix4 = Matrix<float, 4, 4, 16>;

    // Aims at the centre of the box and steps back until the box fills the view (vertical field
    // of view in degrees, width / height), keeping the direction.
    void frame(const Bounds& bounds, float fovDegrees, float aspect);
    // Mouse movement in pixels: across turns the heading, up and down the elevation.
    void turn(float dx, float dy);
    // Wheel steps: forward comes closer.
    void zoom(float steps);

    Vector<float, 3> eye() const;
    // Where the camera is, in the form KVTCamera takes: its x, y and z axes (it looks along
    // -z) and its position, in OpenGL's element order.
    Matrix4 placement() const;

private:
    Vector<float, 3> target{0, 0, 0};
    float distance = 5.0f;
    float headingDegrees = 35.0f;
    float elevationDegrees = 25.0f;
};
