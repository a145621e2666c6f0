#include "KVTMaterial.h"

#include <iostream>

Vector<float, 3> KVTMaterial::colour(int at) const {
    return Vector<float, 3>(colours[at], colours[at + 1], colours[at + 2]);
}

void KVTMaterial::setColour(int at, float r, float g, float b) {
    colours[at] = r;
    colours[at + 1] = g;
    colours[at + 2] = b;
}

void KVTMaterial::print() const {
    const Vector<float, 3> amb = getAmbient();
    const Vector<float, 3> dif = getDiffuse();
    std::cout << "Material : " << name << std::endl;
    std::cout << "Amb : " << amb.x() << ", " << amb.y() << ", " << amb.z() << std::endl;
    std::cout << "Dif : " << dif.x() << ", " << dif.y() << ", " << dif.z() << std::endl;
}
