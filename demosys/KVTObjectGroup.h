#pragma once

#include <vector>

class KVTMaterial;
class KVTObject;
class ShaderInstance;

// A selection of a scene's objects handled together: drawn, or given one shader instance or
// material, at once. Holds the objects without owning them; the scene does.
class KVTObjectGroup {
public:
    void addObject(KVTObject* object) { objects.push_back(object); }
    // Adds the object and all its descendants, parents before children.
    void addTree(KVTObject* root);

    int countObjects() const { return static_cast<int>(objects.size()); }
    KVTObject* getObject(int i) const { return objects[static_cast<std::size_t>(i)]; }

    void setShaderInstance(ShaderInstance* instance);
    void setMaterial(KVTMaterial* material);
    // Draws every object at the time (milliseconds), in the order they were added.
    void draw(unsigned int time) const;

private:
    std::vector<KVTObject*> objects;
};
