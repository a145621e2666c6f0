#pragma once

#include "Vector.h"

#include <string>
#include <string_view>
#include <vector>

class Texture;

// One GLSL vertex/fragment pair compiled and linked into a program, with uniform setters by
// name and a table of the textures bound to texture units while it is in use. A uniform's
// location is asked of the driver once per name and kept until the program is linked again.
// Compile and link failures clear the valid flag and keep the driver's log in the error
// message. The table does not own its textures.
class Shader {
public:
    Shader();
    ~Shader();
    Shader(const Shader&) = delete;
    Shader& operator=(const Shader&) = delete;

    bool setVertexSource(std::string source);
    bool setFragmentSource(std::string source);
    bool link();

    // Makes the program current and forgets the texture table.
    void use();
    // Leaves the program and releases every texture in the table.
    void release();
    void deactivateTextureUnits();
    void activateTextureUnits() {}
    void clearTextureUnitList();

    // Binds the texture on the unit and points the named sampler at that unit.
    void setTextureUnit(unsigned int unit, std::string_view name, Texture* texture);
    void setTextureUnit0(std::string_view name, Texture* texture) {
        setTextureUnit(0, name, texture);
    }
    void setTextureUnit1(std::string_view name, Texture* texture) {
        setTextureUnit(1, name, texture);
    }
    void setTextureUnit2(std::string_view name, Texture* texture) {
        setTextureUnit(2, name, texture);
    }
    void setTextureUnit3(std::string_view name, Texture* texture) {
        setTextureUnit(3, name, texture);
    }

    // The integer goes through the float entry point, as the engine has always set it: fine
    // for float uniforms, an OpenGL error on int and sampler uniforms.
    void setUniform1i(std::string_view name, int value);
    void setUniform1f(std::string_view name, float value);
    // The vector setters stay silent when the name is not found; the others report it.
    void setUniform2f(std::string_view name, float x, float y);
    void setUniform3f(std::string_view name, float x, float y, float z);
    void setUniform4f(std::string_view name, float x, float y, float z, float w);
    void setUniform2fv(std::string_view name, Vector<float, 2> v);
    void setUniform3fv(std::string_view name, Vector<float, 3> v);
    void setUniform4fv(std::string_view name, Vector<float, 4> v);
    void setUniform3x3m(std::string_view name, float* matrix);
    void setUniform4x4m(std::string_view name, float* matrix);

    // Trades programs, shader objects and sources with other, keeping this object's texture
    // table: a program rebuilt elsewhere takes the place of this one for whoever holds it.
    void swapProgram(Shader& other);
    unsigned int getProgramHandle() const { return program; }
    bool isValid() const { return valid; }
    std::string getErrorMessage() const { return errorMessage; }
    std::string toString() const;

private:
    bool compile(unsigned int& object, unsigned int kind, const std::string& source);
    // The uniform's location; -1 when absent, which is reported when asked to.
    int location(std::string_view name, bool reportMissing) const;
    // The location from the names asked for since the last link, or from the driver.
    int cachedLocation(std::string_view name) const;

    struct UniformLocation {
        std::string name;
        int location;
    };

    std::string vertexSource;
    std::string fragmentSource;
    unsigned int vertexShader = 0;
    unsigned int fragmentShader = 0;
    unsigned int program = 0;
    bool valid = true;
    std::string errorMessage;
    std::vector<Texture*> textureUnits;
    // The locations asked for since the last link; a shader uses few, so a scan finds them.
    mutable std::vector<UniformLocation> uniformLocations;
};
