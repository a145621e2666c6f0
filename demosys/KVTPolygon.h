#pragma once

class KVTVertex;

// A triangle or quad as pointers to its mesh vertices (not owned).
class KVTPolygon {
public:
    // Vertex count of the polygon set last, 3 or 4, shared by all polygons (0 before any).
    static int m_poly_size;

    void setVertexData3(KVTVertex* a, KVTVertex* b, KVTVertex* c);
    void setVertexData4(KVTVertex* a, KVTVertex* b, KVTVertex* c, KVTVertex* d);
    // Corner i (0 to 3); null where none was set.
    KVTVertex* getVertexData(int i) const;

private:
    KVTVertex* corners[4] = {};
};
