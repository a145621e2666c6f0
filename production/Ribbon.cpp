#include "Ribbon.h"

Ribbon::Ribbon(Vector<float, 3> first, float sampleStep, int vertexCount, int seed)
    : start(first), step(sampleStep), numVertices(vertexCount),
      vertices(static_cast<std::size_t>(vertexCount) * 3, 0.0f) {
    SetSeed(seed);
    generateRibbon();
}

void Ribbon::generateRibbon() {
    SetFrequency(1.1);
    SetOctaveCount(2);
    SetPersistence(0.5);
    if (numVertices > 0) {
        vertices[0] = start.x();
        vertices[1] = start.y();
        vertices[2] = start.z();
    }
    sampleFrom(Vector<float, 3>(0.3f, 0.5f, 0.0f));
}

void Ribbon::recalcVertices(Vector<float, 3> offset) {
    sampleFrom(Vector<float, 3>(offset.x() + 0.3f, offset.y() + 0.5f, offset.z()));
}

// Each coordinate reads its own line through the noise, so x, y and z sway independently.
void Ribbon::sampleFrom(Vector<float, 3> p) {
    for (int i = 1; i < numVertices; ++i) {
        float* vertex = &vertices[static_cast<std::size_t>(i) * 3];
        vertex[0] = static_cast<float>(2.0 * GetValue(p.x(), 0.5, p.z()));
        vertex[1] = static_cast<float>(2.0 * GetValue(0.3, p.y(), 0.0));
        vertex[2] = static_cast<float>(2.0 * GetValue(0.0, 0.2, p.z()));
        p = p + Vector<float, 3>(step, step, step);
    }
}
