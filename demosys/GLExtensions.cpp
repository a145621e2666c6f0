#include "GLExtensions.h"

#include "KVTDemosys.h"
#include "StringTokenizer.h"

#include <GL/glew.h>

#include <iostream>

int GLExtensions::MAX_VERTEX_ATTRIBS = 0;
int GLExtensions::MAX_VERTEX_UNIFORM_COMPONENTS = 0;
int GLExtensions::MAX_VARYING_FLOATS = 0;
int GLExtensions::MAX_VERTEX_TEXTURE_IMAGE_UNITS = 0;
int GLExtensions::MAX_COMBINED_TEXTURE_IMAGE_UNITS = 0;
int GLExtensions::MAX_TEXTURE_COORDS = 0;
int GLExtensions::MAX_FRAGMENT_UNIFORM_COMPONENTS = 0;
int GLExtensions::MAX_TEXTURE_SIZE = 0;
int GLExtensions::MAX_VERTEX_SHADER_INSTRUCTIONS = 0;
int GLExtensions::MAX_FRAGMENT_LIGHTS = 0;

GLExtensions::GLExtensions() {
    const GLubyte* names = glGetString(GL_EXTENSIONS);
    if (names != nullptr) {
        StringTokenizer tokens(reinterpret_cast<const char*>(names), " ");
        while (tokens.hasMoreTokens()) {
            extensions.insert(tokens.getNext());
        }
    }
    getImplementationIndependentAPIValues();
    KVTDemosys::glErrPrint("getImplementationIndependentAPIValues");
}

void GLExtensions::getImplementationIndependentAPIValues() {
    glGetIntegerv(GL_MAX_VERTEX_ATTRIBS, &MAX_VERTEX_ATTRIBS);
    glGetIntegerv(GL_MAX_VERTEX_UNIFORM_COMPONENTS, &MAX_VERTEX_UNIFORM_COMPONENTS);
    glGetIntegerv(GL_MAX_VARYING_FLOATS, &MAX_VARYING_FLOATS);
    glGetIntegerv(GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS, &MAX_VERTEX_TEXTURE_IMAGE_UNITS);
    glGetIntegerv(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, &MAX_COMBINED_TEXTURE_IMAGE_UNITS);
    glGetIntegerv(GL_MAX_TEXTURE_COORDS, &MAX_TEXTURE_COORDS);
    glGetIntegerv(GL_MAX_FRAGMENT_UNIFORM_COMPONENTS, &MAX_FRAGMENT_UNIFORM_COMPONENTS);
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &MAX_TEXTURE_SIZE);
}

bool GLExtensions::isSupported(const std::string& name) const {
    return extensions.count(name) != 0;
}

void GLExtensions::addToChecklist(std::string name) {
    checklist.push_back(std::move(name));
}

bool GLExtensions::isSupported() {
    bool allThere = true;
    for (const std::string& name : checklist) {
        if (!isSupported(name)) {
            missing.push_back(name);
            allThere = false;
        }
    }
    return allThere;
}

std::string GLExtensions::getErrorMessage() const {
    std::string text = "Error: Your OpenGL implementation is missing the following extensions :\n";
    for (const std::string& name : missing) {
        text += " - " + name + "\n";
    }
    return text;
}

std::string GLExtensions::toString() const {
    std::cout << "--- Implementation Independent API Values ---" << std::endl;
    std::cout << "GL_MAX_VERTEX_ATTRIBS ................... " << MAX_VERTEX_ATTRIBS << std::endl;
    std::cout << "GL_MAX_VERTEX_UNIFORM_COMPONENTS_ARB .... " << MAX_VERTEX_UNIFORM_COMPONENTS
              << std::endl;
    std::cout << "GL_MAX_VARYING_FLOATS_ARB ............... " << MAX_VARYING_FLOATS << std::endl;
    std::cout << "GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS_ARB ... " << MAX_VERTEX_TEXTURE_IMAGE_UNITS
              << std::endl;
    std::cout << "GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS_ARB . " << MAX_COMBINED_TEXTURE_IMAGE_UNITS
              << std::endl;
    std::cout << "GL_MAX_TEXTURE_COORDS_ARB ............... " << MAX_TEXTURE_COORDS << std::endl;
    std::cout << "GL_MAX_FRAGMENT_UNIFORM_COMPONENTS_ARB .. " << MAX_FRAGMENT_UNIFORM_COMPONENTS
              << std::endl;
    std::cout << "GL_MAX_TEXTURE_SIZE ..................... " << MAX_TEXTURE_SIZE << std::endl;
    std::cout << "GL_MAX_VERTEX_SHADER_INSTRUCTIONS_EXT ... " << MAX_VERTEX_SHADER_INSTRUCTIONS
              << std::endl;
    std::cout << "GL_MAX_FRAGMENT_LIGHTS_EXT .............. " << MAX_FRAGMENT_LIGHTS << std::endl;
    std::cout << "---------------------------------------------" << std::endl;
    std::string text;
    for (const std::string& name : extensions) {
        text += name + " ";
    }
    return text + "\n";
}
