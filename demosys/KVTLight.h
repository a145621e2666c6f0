#pragma once

#include "Matrix.h"
#include "Vector.h"

#include <string>

class KVTAnimation;

// A scene light, applied as one OpenGL light. Its matrix (OpenGL element order) places it:
// a point light sits at the translation; a directional light shines along the matrix's -z
// axis. An animation with keys replaces the matrix. Owns its animation.
class KVTLight {
public:
    // Light types as the scene file numbers them; every other type is taken as a point light.
    static constexpr int POINT = 0;
    static constexpr int DIRECTIONAL = 1;

    explicit KVTLight(unsigned int id = 0);
    ~KVTLight();
    KVTLight(const KVTLight&) = delete;
    KVTLight& operator=(const KVTLight&) = delete;

    unsigned int getID() const { return id; }
    const std::string& getName() const { return name; }
    void setName(std::string n) { name = std::move(n); }
    int getType() const { return type; }
    void setType(int t) { type = t; }
    // The alpha is always 1.
    void setColour(float r, float g, float b);
    Vector<float, 4> getColour() const { return colour; }
    void setMatrix(const float* sixteen);
    const Matrix<float, 4, 4, 16>& getMatrix() const { return matrix; }
    // Takes the animation over; a previous one is deleted.
    void setAnim(KVTAnimation* a);
    KVTAnimation* getAnim() const { return animation; }

    // The homogeneous position OpenGL is given: w = 1 for a point light, w = 0 (the
    // direction towards the light) for a directional one.
    Vector<float, 4> getPosition(unsigned int time) const;
    // Enables GL_LIGHT0 + index with the colour as diffuse and specular and no ambient part,
    // positioned in the current model-view matrix.
    void apply(int index, unsigned int time) const;
    static void disable(int index);

private:
    unsigned int id;
    std::string name;
    int type = POINT;
    Vector<float, 4> colour{1, 1, 1, 1};
    Matrix<float, 4, 4, 16> matrix = Matrix<float, 4, 4, 16>::identity();
    KVTAnimation* animation = nullptr;
};
