#pragma once

#include "DataTexturePool.h"
#include "Vector.h"

#include <memory>
#include <string>

class KVTScene;

// A box in world space, empty until a point is added.
struct Bounds {
    Vector<float, 3> low{0, 0, 0};
    Vector<float, 3> high{0, 0, 0};
    bool empty = true;

    void add(const Vector<float, 3>& point);
    Vector<float, 3> centre() const { return (low + high) * 0.5f; }
    // Half the diagonal: the radius of a sphere around the box.
    float radius() const;
};

// A model or scene file loaded by the engine's scene loader, with the textures its materials
// name. An OBJ model is converted in memory, as obj2scene converts it; any other file is read
// as a scene file. Textures are looked for beside the file, then in "../graphics/" (a scene
// in resources/objects/ finds the production's pictures).
class ModelScene {
public:
    ModelScene();
    ~ModelScene();
    ModelScene(const ModelScene&) = delete;
    ModelScene& operator=(const ModelScene&) = delete;

    // Needs the OpenGL context. False with a message naming the file when it cannot be read
    // (a missing file reads as a scene file that is not there).
    bool load(const std::string& path);
    KVTScene& scene() { return *model; }
    const std::string& getErrorMessage() const { return errorMessage; }

    // The box around every mesh, placed as it is at the time (milliseconds).
    Bounds bounds(unsigned int time) const;

private:
    bool loadObj(const std::string& path);
    bool loadSceneFile(const std::string& path);
    void loadTextures(const std::string& path);
    bool fail(std::string message);

    std::unique_ptr<KVTScene> model;
    DataTexturePool textures;
    std::string errorMessage;
};
