#include "KVTPolygon.h"

#include "KVTAssert.h"

int KVTPolygon::m_poly_size = 0;

void KVTPolygon::setVertexData3(KVTVertex* a, KVTVertex* b, KVTVertex* c) {
    m_poly_size = 3;
    corners[0] = a;
    corners[1] = b;
    corners[2] = c;
    corners[3] = nullptr;
}

void KVTPolygon::setVertexData4(KVTVertex* a, KVTVertex* b, KVTVertex* c, KVTVertex* d) {
    m_poly_size = 4;
    corners[0] = a;
    corners[1] = b;
    corners[2] = c;
    corners[3] = d;
}

KVTVertex* KVTPolygon::getVertexData(int i) const {
    KVT_ASSERT(i >= 0 && i < 4, "demosys/KVTPolygon", "getVertexData");
    return corners[i];
}
