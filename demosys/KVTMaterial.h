#pragma once

#include "Vector.h"

#include <string>
#include <utility>

class Texture;

// The fixed-function material of scene objects. The four colours lie back to back as three
// floats each, followed by the shininess, and OpenGL is handed four floats from each colour's
// start: so each colour's alpha is the next field's first value (ambient alpha = diffuse red,
// ..., specular alpha = shininess). With the defaults the ambient alpha is 1 and the diffuse
// alpha 0. The borrowing is intended and kept.
class KVTMaterial {
public:
    // The four floats OpenGL gets for each colour, alpha borrowed as described above.
    const float* ambientRGBA() const { return colours + AMBIENT; }
    const float* diffuseRGBA() const { return colours + DIFFUSE; }
    const float* emissiveRGBA() const { return colours + EMISSIVE; }
    const float* specularRGBA() const { return colours + SPECULAR; }

    const std::string& getName() const { return name; }
    Vector<float, 3> getAmbient() const { return colour(AMBIENT); }
    Vector<float, 3> getDiffuse() const { return colour(DIFFUSE); }
    Vector<float, 3> getEmissive() const { return colour(EMISSIVE); }
    Vector<float, 3> getSpecular() const { return colour(SPECULAR); }
    float getShininess() const { return colours[SHININESS]; }
    Texture* getDiffuseTexture() const { return diffuseTexture; }
    Texture* getNormalTexture() const { return normalTexture; }
    const std::string& getDiffuseMap() const { return diffuseMap; }
    const std::string& getNormalMap() const { return normalMap; }

    void setName(std::string n) { name = std::move(n); }
    void setAmbient(float r, float g, float b) { setColour(AMBIENT, r, g, b); }
    void setDiffuse(float r, float g, float b) { setColour(DIFFUSE, r, g, b); }
    void setEmissive(float r, float g, float b) { setColour(EMISSIVE, r, g, b); }
    void setSpecular(float r, float g, float b) { setColour(SPECULAR, r, g, b); }
    void setShininess(float s) { colours[SHININESS] = s; }
    // Textures are owned by the texture pool.
    void setDiffuseTexture(Texture* t) { diffuseTexture = t; }
    void setNormalTexture(Texture* t) { normalTexture = t; }
    void setDiffuseMap(std::string file) { diffuseMap = std::move(file); }
    void setNormalMap(std::string file) { normalMap = std::move(file); }

    void print() const;
    // Sets the front-and-back material: ambient, diffuse, emission, specular (four floats
    // each, alpha borrowed as described above), then the shininess.
    void use() const;
    // Sets front-and-back ambient and diffuse both to the colour.
    void useColor(float r, float g, float b, float a) const;
    void useColor(const Vector<float, 4>& rgba) const;

private:
    enum { AMBIENT = 0, DIFFUSE = 3, EMISSIVE = 6, SPECULAR = 9, SHININESS = 12 };

    Vector<float, 3> colour(int at) const;
    void setColour(int at, float r, float g, float b);

    std::string name;
    float colours[13] = {1, 0, 0, 1, 0, 0, 0, 0, 0, 0.25f, 0.25f, 0.25f, 10.0f};
    Texture* diffuseTexture = nullptr;
    Texture* normalTexture = nullptr;
    std::string diffuseMap;
    std::string normalMap;
};
