#pragma once

#include "Matrix.h"

#include <string>
#include <vector>

class KVTAnimation;
class KVTMaterial;
class ShaderInstance;
class VBO;

// One node of a scene: a place in the parent/children tree with a local transform, and
// optionally a mesh drawn with a material through a shader instance. The matrix is in
// OpenGL's element order (translation in elements 12, 13, 14) and goes to glMultMatrixf as
// it is; the world transform is the parent's world transform times the local one.
//
// The scene owns its objects, meshes and materials; the shader instance belongs to the
// shader cache. An object owns only its animation.
class KVTObject {
public:
    using Matrix4 = Matrix<float, 4, 4, 16>;

    explicit KVTObject(unsigned int id = 0);
    ~KVTObject();
    KVTObject(const KVTObject&) = delete;
    KVTObject& operator=(const KVTObject&) = delete;

    unsigned int getID() const { return id; }
    const std::string& getName() const { return name; }
    void setName(std::string n) { name = std::move(n); }

    // The links are not checked: they must not make a cycle.
    void setParent(KVTObject* p) { parent = p; }
    KVTObject* getParent() const { return parent; }
    void addChild(KVTObject* child) { children.push_back(child); }
    int countChildren() const { return static_cast<int>(children.size()); }
    KVTObject* getChild(int i) const { return children[static_cast<std::size_t>(i)]; }
    // Whether other is this object or one of its ancestors.
    bool isSelfOrDescendantOf(const KVTObject* other) const;

    void setMatrix(const float* sixteen);
    void setMatrix(const Matrix4& m) { matrix = m; }
    const Matrix4& getMatrix() const { return matrix; }

    void setMesh(VBO* m) { mesh = m; }
    VBO* getMesh() const { return mesh; }
    void setMaterial(KVTMaterial* m) { material = m; }
    KVTMaterial* getMaterial() const { return material; }
    void setShaderInstance(ShaderInstance* s) { shaderInstance = s; }
    ShaderInstance* getShaderInstance() const { return shaderInstance; }
    // Takes the animation over (a previous one is deleted). An animation with keys replaces
    // the local matrix.
    void setAnimation(KVTAnimation* a);
    KVTAnimation* getAnimation() const { return animation; }

    // The local transform at the time (milliseconds): the animation's, or the matrix.
    Matrix4 getLocalMatrix(unsigned int time) const;
    Matrix4 getWorldMatrix(unsigned int time) const;

    // Draws the mesh, if any, with the world transform multiplied into the current model-view
    // matrix: with the shader instance when there is one, else with the fixed-function
    // material; a diffuse texture is modulated with the lit colour.
    void draw(unsigned int time) const;

private:
    void applyMaterial() const;
    void releaseMaterial() const;

    unsigned int id;
    std::string name;
    KVTObject* parent = nullptr;
    std::vector<KVTObject*> children;
    Matrix4 matrix = Matrix4::identity();
    VBO* mesh = nullptr;
    KVTMaterial* material = nullptr;
    ShaderInstance* shaderInstance = nullptr;
    KVTAnimation* animation = nullptr;
};
