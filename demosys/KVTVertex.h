#pragma once

#include <vector>

// The faces that use one mesh vertex, in the order they were set.
class KVTVertex {
public:
    void addPolygonIndex(int face) { faces.push_back(face); }
    int getPolyListSize() const { return static_cast<int>(faces.size()); }
    int getPolyIndex(int i) const;

private:
    std::vector<int> faces;
};
