#include "KVTObjectGroup.h"

#include "KVTObject.h"

void KVTObjectGroup::addTree(KVTObject* root) {
    // Breadth first with an explicit list, so a deep tree cannot exhaust the stack.
    std::size_t first = objects.size();
    objects.push_back(root);
    for (std::size_t at = first; at < objects.size(); ++at) {
        KVTObject* object = objects[at];
        for (int i = 0; i < object->countChildren(); ++i) {
            objects.push_back(object->getChild(i));
        }
    }
}

void KVTObjectGroup::setShaderInstance(ShaderInstance* instance) {
    for (KVTObject* object : objects) {
        object->setShaderInstance(instance);
    }
}

void KVTObjectGroup::setMaterial(KVTMaterial* material) {
    for (KVTObject* object : objects) {
        object->setMaterial(material);
    }
}

void KVTObjectGroup::draw(unsigned int time) const {
    for (const KVTObject* object : objects) {
        object->draw(time);
    }
}
