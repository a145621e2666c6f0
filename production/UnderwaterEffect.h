#pragma once

#include "Effect.h"
#include "Vector.h"

#include <memory>
#include <vector>

class KVTMesh;
class ParticleSystem;
class Ribbon;
class VBODynamic;

// The underwater scene of the opening and the outro: a faceted, noise-shaped ocean floor lit
// by a lamp at the eye and by caustics from above, the wave surface seen from below, swaying
// weed and drifting debris. The 3D picture goes through an edge-enhancing pass and a dilation
// that turns it into a soft, painterly glow; the debris is laid over the filtered picture.
// While the "camera" instance is active the scene is seen through the system camera.
class UnderwaterEffect : public Effect {
public:
    // Both meshes span WORLD_SIZE units; the surface has 64 cells a side, the floor 256.
    static constexpr int WORLD_SIZE = 200;
    static constexpr int SURFACE_CELLS = 64;
    static constexpr int FLOOR_CELLS = 256;
    static constexpr int DEBRIS_WIDTH = 16;
    static constexpr int DEBRIS_HEIGHT = 128;
    static constexpr int NUM_WEEDS = 20;
    static constexpr int WEED_VERTICES = 100;
    // A strand rises this much per segment: the float just below 0.1.
    static constexpr float WEED_RISE = 0.099999994f;
    static constexpr float WEED_HALF_WIDTH = 0.01f;
    static constexpr float WEED_WIDENING = 0.000025f;
    // One texel of the production's 1024-wide screen passes, whatever the target size.
    static constexpr float VIEWPORT_STEP = 0.0009765625f;

    UnderwaterEffect();
    ~UnderwaterEffect() override;

    Effect* getInstance() override { return new UnderwaterEffect; }
    void registerTracks() override;
    void init() override;
    void draw(unsigned int time, unsigned int frameTime, FBO* target) override;

    // rand() as a multiple of 0.0001 from lo, wrapped into the width of the range.
    static float rnd_in_float(float lo, float hi);
    void generateDebris();
    void generateOceanSurface();
    void generateOceanFloor();
    void initWeed();
    // The weed as white immediate-mode quads, face culling off while they are drawn.
    void drawWeed(unsigned int time);

    // The meshes without any GL: a cells x cells grid of shared vertices, and the faceted
    // floor of cells x cells quads with four vertices each. Normals are computed.
    static std::unique_ptr<KVTMesh> makeOceanSurface(int cells, int size);
    static std::unique_ptr<KVTMesh> makeOceanFloor(int cells, int size);
    // The weed of this time as GL_QUADS corners, four per quad, strand after strand.
    const std::vector<Vector<float, 3>>& buildWeedQuads(unsigned int time);

    std::unique_ptr<KVTMesh> surfaceMesh;
    std::unique_ptr<VBODynamic> surfaceBuffer;
    std::unique_ptr<KVTMesh> floorMesh;
    std::unique_ptr<VBODynamic> floorBuffer;
    int gridSize = 0;
    int worldSize = WORLD_SIZE;
    float scroll[3] = {0.0f, 0.0f, 0.0f};
    std::unique_ptr<ParticleSystem> debris;

    // GL_LIGHT0 and the material, set by init().
    Vector<float, 4> lightAmbient;
    Vector<float, 4> lightDiffuse;
    Vector<float, 4> lightSpecular;
    Vector<float, 4> lightPosition;
    Vector<float, 4> materialAmbient;
    Vector<float, 4> materialDiffuse;
    Vector<float, 4> materialSpecular;
    float shininess[1] = {};

    std::vector<std::unique_ptr<Ribbon>> weeds;
    int numWeeds = 0;
    int weedVertices = 0;

    Shader* floorShader = nullptr;   // "point_light"
    Shader* laplaceShader = nullptr; // "laplace"
    Shader* dilateShader = nullptr;  // "dilate"
    Shader* wavesShader = nullptr;   // "waves"
    Shader* spriteShader = nullptr;  // "particlesprite_shader"
    FBO* sceneTarget = nullptr;      // "offscreen0": the 3D picture
    FBO* filterTarget = nullptr;     // "offscreen1": between the two screen passes
    Texture* oceanSurfaceTexture = nullptr;
    Texture* waveNormals0 = nullptr;
    Texture* waveNormals1 = nullptr;
    Texture* waveNormals2 = nullptr;
    Texture* particleTexture = nullptr; // assigned, not drawn with
    Texture* debrisTexture = nullptr;   // "puff_particle"

    TrackInterpolate* wave_time = nullptr;
    TrackInterpolate* ribbons_noise_offset = nullptr;
    TrackInterpolate* num_ribs = nullptr;
    TrackInterpolate* num_ribs_verts = nullptr;
    TrackInterpolate* deb_size = nullptr;

private:
    void setLightAndMaterial();
    void applyCamera();
    void drawFloor(unsigned int time);
    void drawSurface();
    void drawWeedInWater(unsigned int time);
    void advanceScroll(unsigned int frameTime);
    void filterInto(FBO* target);
    void drawDebris(unsigned int time, FBO* target);

    std::vector<Vector<float, 3>> weedQuads;
};
