#pragma once

// The full-screen quad that every screen pass draws, and the matrix save/restore around it.
class Geometry {
public:
    Geometry() = delete;

    // One quad from (-1,-1) to (1,1) in the current matrices, texture coordinates 0..1.
    static void drawUnitQuad();
    // Pushes projection and model-view, loading identity into both; model-view stays selected.
    static void PushAllMatices();
    // Pops projection, then model-view; model-view stays selected.
    static void PopAllMatrices();
    // The unit quad with identity matrices: covers the current viewport whatever the matrices.
    static void drawUnitQuadFullscreen();
};
