#pragma once

#include "Vector.h"

#include <libnoise/module/perlin.h>

#include <vector>

// One strand of sea weed: a polyline of numVertices points whose shape is Perlin noise (the
// ribbon is its own noise module). Vertex 0 is the fixed start; every further vertex samples
// the noise step further along. Moving the sample position by an offset makes the strand sway.
class Ribbon : public noise::module::Perlin {
public:
    Ribbon(Vector<float, 3> start, float step, int numVertices, int seed);

    // Sets the noise up and shapes the strand from the noise's origin.
    void generateRibbon();
    // Reshapes the strand from the origin moved by offset; vertex 0 stays where it is.
    void recalcVertices(Vector<float, 3> offset);
    // numVertices x 3 floats, vertex after vertex.
    float* getVertices() { return vertices.data(); }

    Vector<float, 3> start;
    float step;
    int numVertices;
    std::vector<float> vertices;

private:
    void sampleFrom(Vector<float, 3> p);
};
