#include "KVTObject.h"

#include "KVTAnimation.h"
#include "KVTMaterial.h"
#include "ShaderInstance.h"
#include "Texture.h"
#include "VBO.h"

#include <GL/glew.h>

#include <algorithm>

namespace {

// What an object without a material of its own is drawn with.
KVTMaterial& fallbackMaterial() {
    static KVTMaterial material;
    return material;
}

} // namespace

KVTObject::KVTObject(unsigned int objectId) : id(objectId) {}

KVTObject::~KVTObject() {
    delete animation;
}

bool KVTObject::isSelfOrDescendantOf(const KVTObject* other) const {
    for (const KVTObject* at = this; at != nullptr; at = at->parent) {
        if (at == other) {
            return true;
        }
    }
    return false;
}

void KVTObject::setMatrix(const float* sixteen) {
    std::copy(sixteen, sixteen + 16, matrix.data());
}

void KVTObject::setAnimation(KVTAnimation* a) {
    if (a != animation) {
        delete animation;
    }
    animation = a;
}

KVTObject::Matrix4 KVTObject::getLocalMatrix(unsigned int time) const {
    if (animation != nullptr && !animation->isEmpty()) {
        return animation->getMatrix(time);
    }
    return matrix;
}

KVTObject::Matrix4 KVTObject::getWorldMatrix(unsigned int time) const {
    // Walked upwards without recursion, so a deep tree cannot exhaust the stack.
    Matrix4 world = getLocalMatrix(time);
    for (const KVTObject* at = parent; at != nullptr; at = at->parent) {
        world = at->getLocalMatrix(time).mult(world);
    }
    return world;
}

void KVTObject::applyMaterial() const {
    KVTMaterial* own = material;
    Texture* texture = own != nullptr ? own->getDiffuseTexture() : nullptr;
    if (texture != nullptr) {
        // The texture is shared: set this object's sampling just before binding.
        texture->setTextureEnv(GL_MODULATE);
        texture->setTextureWrap(GL_REPEAT);
        texture->bind();
    }
    KVTMaterial& used = own != nullptr ? *own : fallbackMaterial();
    if (shaderInstance != nullptr) {
        shaderInstance->use(&used);
    } else {
        used.use();
    }
}

void KVTObject::releaseMaterial() const {
    if (shaderInstance != nullptr) {
        shaderInstance->release();
    }
    if (material != nullptr && material->getDiffuseTexture() != nullptr) {
        material->getDiffuseTexture()->release();
    }
}

void KVTObject::draw(unsigned int time) const {
    if (mesh == nullptr) {
        return;
    }
    glPushMatrix();
    glMultMatrixf(getWorldMatrix(time).data());
    applyMaterial();
    mesh->draw();
    releaseMaterial();
    glPopMatrix();
}
