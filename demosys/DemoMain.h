#pragma once

#include <functional>
#include <string>

class ProgressBar;
class ResourceDefinition;
class ShaderCache;

// The start of a demo program: reads the command line, changes to the executable's folder
// so resources/ beside it is found, shows the launcher (unless options choose the screen),
// then loads, runs and disposes the production. A production hands in how to make its parts.
class DemoMain {
public:
    struct Production {
        std::function<ProgressBar*()> makeProgressBar;
        std::function<ShaderCache*()> makeShaderCache;
        std::function<ResourceDefinition*()> makeResources;
        // Where its shaders and sync text are edited, for --dev's live reload; empty for none.
        std::string sourceFolder;
    };

    // The program's exit status: 0 after a normal run, 2 for invalid options, 1 when the
    // resources are missing or offline rendering could not write its pictures.
    static int run(int argc, char** argv, const Production& production);
};
