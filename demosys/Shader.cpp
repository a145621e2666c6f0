#include "Shader.h"

#include "KVTAssert.h"
#include "KVTDemosys.h"
#include "Texture.h"

#include <GL/glew.h>

#include <algorithm>
#include <iostream>
#include <utility>

namespace {

const int MAX_TEXTURE_UNITS = 8;

// The driver's log of a shader or program object (both have the same pair of queries).
std::string infoLog(GLuint object, PFNGLGETSHADERIVPROC getLength,
                    PFNGLGETSHADERINFOLOGPROC getLog) {
    GLint length = 0;
    getLength(object, GL_INFO_LOG_LENGTH, &length);
    if (length <= 0) {
        return "";
    }
    std::string log(static_cast<std::size_t>(length), '\0');
    GLsizei written = 0;
    getLog(object, length, &written, log.data());
    log.resize(static_cast<std::size_t>(written));
    return log;
}

} // namespace

Shader::Shader() {
    GLint units = 0;
    glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, &units);
    textureUnits.assign(static_cast<std::size_t>(std::clamp(units, 0, MAX_TEXTURE_UNITS)), nullptr);
}

Shader::~Shader() {
    if (program != 0) {
        if (vertexShader != 0) {
            glDetachShader(program, vertexShader);
        }
        if (fragmentShader != 0) {
            glDetachShader(program, fragmentShader);
        }
    }
    glDeleteShader(vertexShader);
    glDeleteShader(fragmentShader);
    glDeleteProgram(program);
}

bool Shader::compile(unsigned int& object, unsigned int kind, const std::string& source) {
    glDeleteShader(object); // a recompiled source replaces the old object
    object = glCreateShader(kind);
    const char* text = source.c_str();
    glShaderSource(object, 1, &text, nullptr);
    glCompileShader(object);
    GLint compiled = GL_FALSE;
    glGetShaderiv(object, GL_COMPILE_STATUS, &compiled);
    if (compiled == GL_TRUE) {
        return true;
    }
    errorMessage += infoLog(object, glGetShaderiv, glGetShaderInfoLog);
    valid = false;
    return false;
}

bool Shader::setVertexSource(std::string source) {
    vertexSource = std::move(source);
    return compile(vertexShader, GL_VERTEX_SHADER, vertexSource);
}

bool Shader::setFragmentSource(std::string source) {
    fragmentSource = std::move(source);
    return compile(fragmentShader, GL_FRAGMENT_SHADER, fragmentSource);
}

void Shader::swapProgram(Shader& other) {
    std::swap(vertexSource, other.vertexSource);
    std::swap(fragmentSource, other.fragmentSource);
    std::swap(vertexShader, other.vertexShader);
    std::swap(fragmentShader, other.fragmentShader);
    std::swap(program, other.program);
    std::swap(valid, other.valid);
    std::swap(errorMessage, other.errorMessage);
}

bool Shader::link() {
    uniformLocations.clear();
    glDeleteProgram(program);
    program = glCreateProgram();
    glAttachShader(program, vertexShader);
    glAttachShader(program, fragmentShader);
    glLinkProgram(program);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == GL_TRUE) {
        return true;
    }
    const std::string log = infoLog(program, glGetProgramiv, glGetProgramInfoLog);
    errorMessage += log.empty() ? "Unknown error while linking shader pair" : log;
    valid = false;
    return false;
}

void Shader::use() {
    glUseProgram(program);
    clearTextureUnitList();
}

void Shader::release() {
    glUseProgram(0);
    deactivateTextureUnits();
}

void Shader::deactivateTextureUnits() {
    for (std::size_t unit = 0; unit < textureUnits.size(); ++unit) {
        if (textureUnits[unit] != nullptr) {
            glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
            textureUnits[unit]->release();
        }
    }
    glActiveTexture(GL_TEXTURE0);
}

void Shader::clearTextureUnitList() {
    std::fill(textureUnits.begin(), textureUnits.end(), nullptr);
}

void Shader::setTextureUnit(unsigned int unit, std::string_view name, Texture* texture) {
    KVT_ASSERT(unit < textureUnits.size(), "demosys/Shader", "setTextureUnit");
    const GLint at = cachedLocation(name);
    glActiveTexture(GL_TEXTURE0 + unit);
    texture->bind();
    glUniform1i(at, static_cast<GLint>(unit));
    glActiveTexture(GL_TEXTURE0);
    textureUnits[unit] = texture;
}

int Shader::cachedLocation(std::string_view name) const {
    for (const UniformLocation& known : uniformLocations) {
        if (known.name == name) {
            return known.location;
        }
    }
    std::string key(name); // the driver wants a terminated name
    const GLint at = glGetUniformLocation(program, key.c_str());
    uniformLocations.push_back({std::move(key), at});
    return at;
}

int Shader::location(std::string_view name, bool reportMissing) const {
    const GLint at = cachedLocation(name);
    if (at == -1 && reportMissing) {
        std::cout << "Error: Uniform variable '" << name << "' not found!" << std::endl;
        KVTDemosys::system_error = true;
    }
    return at;
}

void Shader::setUniform1i(std::string_view name, int value) {
    const GLint at = location(name, true);
    if (at != -1) {
        glUniform1f(at, static_cast<float>(value));
    }
}

void Shader::setUniform1f(std::string_view name, float value) {
    const GLint at = location(name, true);
    if (at != -1) {
        glUniform1f(at, value);
    }
}

void Shader::setUniform2f(std::string_view name, float x, float y) {
    const GLint at = location(name, false);
    if (at != -1) {
        glUniform2f(at, x, y);
    }
}

void Shader::setUniform3f(std::string_view name, float x, float y, float z) {
    const GLint at = location(name, false);
    if (at != -1) {
        glUniform3f(at, x, y, z);
    }
}

void Shader::setUniform4f(std::string_view name, float x, float y, float z, float w) {
    const GLint at = location(name, false);
    if (at != -1) {
        glUniform4f(at, x, y, z, w);
    }
}

void Shader::setUniform2fv(std::string_view name, Vector<float, 2> v) {
    const GLint at = location(name, false);
    if (at != -1) {
        glUniform2fv(at, 1, v.data());
    }
}

void Shader::setUniform3fv(std::string_view name, Vector<float, 3> v) {
    const GLint at = location(name, false);
    if (at != -1) {
        glUniform3fv(at, 1, v.data());
    }
}

void Shader::setUniform4fv(std::string_view name, Vector<float, 4> v) {
    const GLint at = location(name, false);
    if (at != -1) {
        glUniform4fv(at, 1, v.data());
    }
}

void Shader::setUniform3x3m(std::string_view name, float* matrix) {
    const GLint at = location(name, true);
    if (at != -1) {
        glUniformMatrix3fv(at, 1, GL_FALSE, matrix);
    }
}

void Shader::setUniform4x4m(std::string_view name, float* matrix) {
    const GLint at = location(name, true);
    if (at != -1) {
        glUniformMatrix4fv(at, 1, GL_FALSE, matrix);
    }
}

std::string Shader::toString() const {
    return "Shader(vshader size = " + std::to_string(vertexSource.size()) +
           ", fragshader size = " + std::to_string(fragmentSource.size()) +
           ", pref=" + std::to_string(program) + ", vref=" + std::to_string(vertexShader) +
           ", fref=" + std::to_string(fragmentShader) + ")";
}
