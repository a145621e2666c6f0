#pragma once

#include <string>

// Packs a resource folder into the resource archive with the 7zz archiver: non-solid (each
// entry decodes on its own) at the strongest compression, as the packing script does. Entries
// are named by the folder's own name and the paths below it, so packing the folder
// "resources" gives entries such as "resources/graphics/x.png", the names the engine asks
// for. An archive already there is replaced only once the new one is complete.
// False with error set when the folder is missing or the archiver fails.
bool packResources(const std::string& resourceFolder, const std::string& archivePath,
                   std::string& error);
