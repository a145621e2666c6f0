#include "KVTSceneRecord.h"

#include <algorithm>

namespace KVTSceneRecord {

Matrix16 identityMatrix() {
    Matrix16 m{};
    m[0] = m[5] = m[10] = m[15] = 1;
    return m;
}

void Mesh::fitBounds() {
    bboxMin = Float3{};
    bboxMax = Float3{};
    for (std::size_t i = 0; i + 2 < positions.size(); i += 3) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const float value = positions[i + axis];
            bboxMin[axis] = i == 0 ? value : std::min(bboxMin[axis], value);
            bboxMax[axis] = i == 0 ? value : std::max(bboxMax[axis], value);
        }
    }
}

} // namespace KVTSceneRecord
