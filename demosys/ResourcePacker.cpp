#include "ResourcePacker.h"

#include "ResourceLoader.h"
#include "archive/packman.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstring>
#include <vector>

extern char** environ;

namespace {

const char* const ARCHIVE = "resources.7z";
const char* const ARCHIVER = "7zz";
const char* const SCRIPT = "resources.7z.sh";

// Runs the script with the shell and waits for it; false with error set when it could not
// be run to its end. Its exit status is that of its last line, so it says nothing of the
// lines before: the archive is checked instead.
bool runScript(const char* script, std::string& error) {
    char shell[] = "sh";
    std::string path = script;
    char* argv[] = {shell, path.data(), nullptr};
    pid_t child = 0;
    const int started = posix_spawnp(&child, shell, nullptr, nullptr, argv, environ);
    if (started != 0) {
        error = std::string("Cannot run the packing script : ") + std::strerror(started);
        return false;
    }
    int status = 0;
    if (waitpid(child, &status, 0) < 0 || !WIFEXITED(status)) {
        error = "The packing script did not finish";
        return false;
    }
    return true;
}

// The first resource the archive lacks, or an empty string when it holds them all.
std::string firstMissingEntry(const std::vector<std::string>& resources) {
    for (const std::string& path : resources) {
        if (packman_getFileSize(path.c_str()) < 0) {
            return path;
        }
    }
    return "";
}

bool checkArchive(const std::vector<std::string>& resources, std::string& error) {
    const std::string seeLog = std::string(" (see ") + ARCHIVE + ".log)";
    if (packman_init(ARCHIVE) != 0) {
        error = std::string("The packing script wrote no readable '") + ARCHIVE + "'" + seeLog;
        return false;
    }
    const std::string missing = firstMissingEntry(resources);
    packman_shutdown();
    if (!missing.empty()) {
        error = std::string("'") + ARCHIVE + "' lacks '" + missing + "'" + seeLog;
        return false;
    }
    return true;
}

} // namespace

bool packLoadedResources(ResourceLoader& loader, std::string& error) {
    if (!loader.createCopyScript(ARCHIVER, SCRIPT)) {
        error = std::string("Cannot write the packing script '") + SCRIPT + "'";
        return false;
    }
    const bool ran = runScript(SCRIPT, error);
    std::remove(SCRIPT);
    return ran && checkArchive(ResourceLoader::packedResources(), error);
}
