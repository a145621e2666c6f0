#pragma once

#include "Matrix.h"
#include "Vector.h"

#include <vector>

// Keyframed translation and rotation of a scene object, camera or light, keyed by time in
// milliseconds and evaluated linearly between keys. Before the first key the first value
// holds, after the last key the last one. Rotations are Euler angles in radians, applied
// about x, then y, then z; the transform is translation * Rz * Ry * Rx.
class KVTAnimation {
public:
    void addTranslation(unsigned int time, Vector<float, 3> translation);
    void addRotation(unsigned int time, Vector<float, 3> rotation);
    // Call after the last key is added: of several keys at one time only the last added
    // stays, so that evaluation never divides by a zero interval.
    void init();

    bool isEmpty() const { return translations.empty() && rotations.empty(); }
    int countTranslationKeys() const { return static_cast<int>(translations.size()); }
    int countRotationKeys() const { return static_cast<int>(rotations.size()); }
    // The time of the last key of either kind.
    unsigned int getDuration() const;

    Vector<float, 3> getTranslation(unsigned int time) const;
    Vector<float, 3> getRotation(unsigned int time) const;
    // In OpenGL's element order, ready for glMultMatrixf.
    Matrix<float, 4, 4, 16> getMatrix(unsigned int time) const;

private:
    struct Key {
        unsigned int time;
        Vector<float, 3> value;
    };

    // Keeps keys in time order; an equal time goes after the keys already there.
    static void insert(std::vector<Key>& keys, unsigned int time, Vector<float, 3> value);
    static void dropShadowedKeys(std::vector<Key>& keys);
    static Vector<float, 3> evaluate(const std::vector<Key>& keys, unsigned int time);

    std::vector<Key> translations;
    std::vector<Key> rotations;
};
