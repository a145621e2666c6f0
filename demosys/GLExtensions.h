#pragma once

#include <set>
#include <string>
#include <vector>

// The OpenGL extensions the driver offers and a few implementation limits, read once when
// made (a context must be current), plus a checklist of extensions a production requires.
class GLExtensions {
public:
    static int MAX_VERTEX_ATTRIBS;
    static int MAX_VERTEX_UNIFORM_COMPONENTS;
    static int MAX_VARYING_FLOATS;
    static int MAX_VERTEX_TEXTURE_IMAGE_UNITS;
    static int MAX_COMBINED_TEXTURE_IMAGE_UNITS;
    static int MAX_TEXTURE_COORDS;
    static int MAX_FRAGMENT_UNIFORM_COMPONENTS;
    static int MAX_TEXTURE_SIZE;
    // Never queried: always 0.
    static int MAX_VERTEX_SHADER_INSTRUCTIONS;
    static int MAX_FRAGMENT_LIGHTS;

    GLExtensions();

    void getImplementationIndependentAPIValues();
    // Exact, case-sensitive.
    bool isSupported(const std::string& name) const;
    void addToChecklist(std::string name);
    // Looks up every checklist entry, adding the absent ones to the missing list.
    bool isSupported();
    std::string getErrorMessage() const;
    // Every extension name in sorted order, each followed by " ", then a line end. Also
    // prints the block of limits.
    std::string toString() const;

private:
    std::set<std::string> extensions;
    std::vector<std::string> checklist;
    std::vector<std::string> missing;
};
