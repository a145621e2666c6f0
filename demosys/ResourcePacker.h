#pragma once

#include <string>

class ResourceLoader;

// Packs the resources of the production the loader has loaded into "resources.7z" in the
// working folder, the way its packing script says: writes the loader's script for the 7zz
// archiver (non-solid, strongest compression, one addition per declared resource), runs it
// with the shell, and then checks that the archive holds every resource the script names.
// Files in the resource folder that the production does not declare stay out. The
// archiver's output is left in "resources.7z.log".
// False with error set when the script cannot be written or run, or the archive lacks an
// entry (a declared file that is missing, or an archiver that failed).
bool packLoadedResources(ResourceLoader& loader, std::string& error);
