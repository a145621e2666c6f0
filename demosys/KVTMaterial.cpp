#include "KVTMaterial.h"

#include <GL/glew.h>

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

void KVTMaterial::use() const {
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambientRGBA());
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuseRGBA());
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, emissiveRGBA());
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specularRGBA());
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, getShininess());
}

void KVTMaterial::useColor(float r, float g, float b, float a) const {
    const float rgba[4] = {r, g, b, a};
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, rgba);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, rgba);
}

void KVTMaterial::useColor(const Vector<float, 4>& rgba) const {
    useColor(rgba[0], rgba[1], rgba[2], rgba[3]);
}
