#include "KVTAnimation.h"

#include <algorithm>
#include <cmath>

namespace {

// Rz * Ry * Rx for the angles (radians), in OpenGL's element order (column by column).
Matrix<float, 4, 4, 16> eulerRotation(const Vector<float, 3>& angles) {
    const float cx = std::cos(angles[0]), sx = std::sin(angles[0]);
    const float cy = std::cos(angles[1]), sy = std::sin(angles[1]);
    const float cz = std::cos(angles[2]), sz = std::sin(angles[2]);
    Matrix<float, 4, 4, 16> m = Matrix<float, 4, 4, 16>::identity();
    m[0] = cz * cy;
    m[1] = sz * cy;
    m[2] = -sy;
    m[4] = cz * sy * sx - sz * cx;
    m[5] = sz * sy * sx + cz * cx;
    m[6] = cy * sx;
    m[8] = cz * sy * cx + sz * sx;
    m[9] = sz * sy * cx - cz * sx;
    m[10] = cy * cx;
    return m;
}

} // namespace

void KVTAnimation::insert(std::vector<Key>& keys, unsigned int time, Vector<float, 3> value) {
    auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                  [](unsigned int t, const Key& key) { return t < key.time; });
    keys.insert(after, Key{time, value});
}

void KVTAnimation::addTranslation(unsigned int time, Vector<float, 3> translation) {
    insert(translations, time, translation);
}

void KVTAnimation::addRotation(unsigned int time, Vector<float, 3> rotation) {
    insert(rotations, time, rotation);
}

void KVTAnimation::dropShadowedKeys(std::vector<Key>& keys) {
    std::vector<Key> kept;
    for (const Key& key : keys) {
        if (!kept.empty() && kept.back().time == key.time) {
            kept.back() = key;
        } else {
            kept.push_back(key);
        }
    }
    keys.swap(kept);
}

void KVTAnimation::init() {
    dropShadowedKeys(translations);
    dropShadowedKeys(rotations);
}

unsigned int KVTAnimation::getDuration() const {
    unsigned int last = 0;
    if (!translations.empty()) {
        last = translations.back().time;
    }
    if (!rotations.empty()) {
        last = std::max(last, rotations.back().time);
    }
    return last;
}

Vector<float, 3> KVTAnimation::evaluate(const std::vector<Key>& keys, unsigned int time) {
    if (keys.empty()) {
        return Vector<float, 3>();
    }
    auto next = std::upper_bound(keys.begin(), keys.end(), time,
                                 [](unsigned int t, const Key& key) { return t < key.time; });
    if (next == keys.begin()) {
        return keys.front().value;
    }
    if (next == keys.end()) {
        return keys.back().value;
    }
    const Key& before = *(next - 1);
    const float t =
        static_cast<float>(time - before.time) / static_cast<float>(next->time - before.time);
    return before.value.linearInterpolate(next->value, t);
}

Vector<float, 3> KVTAnimation::getTranslation(unsigned int time) const {
    return evaluate(translations, time);
}

Vector<float, 3> KVTAnimation::getRotation(unsigned int time) const {
    return evaluate(rotations, time);
}

Matrix<float, 4, 4, 16> KVTAnimation::getMatrix(unsigned int time) const {
    Matrix<float, 4, 4, 16> m = eulerRotation(getRotation(time));
    const Vector<float, 3> t = getTranslation(time);
    m[12] = t[0];
    m[13] = t[1];
    m[14] = t[2];
    return m;
}
