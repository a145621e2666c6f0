#pragma once

#include "KeyedObjects.h"

#include <map>
#include <string>
#include <vector>

class KVTCamera;
class KVTLight;
class KVTMaterial;
class KVTObject;
class VBO;

// A loaded 3D scene: objects in a parent/children tree, the meshes they draw, materials,
// lights and cameras, each found by name (of several with one name, the last added). The
// scene owns everything added to it. Objects are kept in the order added.
class KVTScene {
public:
    // OpenGL guarantees this many lights; further lights are not applied.
    static constexpr int MAX_LIGHTS = 8;

    // Out of line, where the held types are complete.
    KVTScene();
    ~KVTScene();
    KVTScene(const KVTScene&) = delete;
    KVTScene& operator=(const KVTScene&) = delete;

    void AddObject(KVTObject* object);
    int countObjects() const { return static_cast<int>(objects.size()); }
    // i must be below countObjects().
    KVTObject* getObject(int i) const { return objects[static_cast<std::size_t>(i)]; }
    // Null when no object has the name.
    KVTObject* getObject(const std::string& name) const;

    void addMesh(VBO* mesh) { meshes.push_back(mesh); }
    int countMeshes() const { return static_cast<int>(meshes.size()); }

    void addMaterial(std::string name, KVTMaterial* material) { materials.put(name, material); }
    KVTMaterial* getMaterial(const std::string& name) const { return materials.get(name); }
    int countMaterials() const { return static_cast<int>(materials.objects().size()); }

    // One light may be added under several names; it is owned once.
    void addLight(std::string name, KVTLight* light) { lights.put(name, light); }
    KVTLight* getLight(const std::string& name) const { return lights.get(name); }
    int countLights() const { return static_cast<int>(lights.objects().size()); }

    void AddCamera(std::string name, KVTCamera* camera) { cameras.put(name, camera); }
    KVTCamera* getCamera(const std::string& name) const { return cameras.get(name); }
    int countCameras() const { return static_cast<int>(cameras.objects().size()); }
    // The cameras by name, in name order.
    const std::map<std::string, KVTCamera*>& getCameras() const { return cameras.map(); }

    // Gives every material with a diffuse map the texture loaded from that file, found
    // through the texture pool's file map; a file not in the pool is reported and leaves
    // the material without texture.
    void mapTextureData();

    // Applies the lights (in name order) in the current model-view matrix, draws every
    // object at the time (milliseconds), and switches the lights off again.
    void draw(unsigned int time) const;

    // One line: the numbers of objects, meshes, materials, lights and cameras.
    std::string toString() const;

private:
    std::vector<KVTObject*> objects;
    std::vector<VBO*> meshes;
    KeyedObjects<KVTMaterial> materials;
    KeyedObjects<KVTLight> lights;
    KeyedObjects<KVTCamera> cameras;
};
