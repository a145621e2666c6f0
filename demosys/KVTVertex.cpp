#include "KVTVertex.h"

#include "KVTAssert.h"

int KVTVertex::getPolyIndex(int i) const {
    KVT_ASSERT(i >= 0 && i < getPolyListSize(), "demosys/KVTVertex", "getPolyIndex");
    return faces[i];
}
