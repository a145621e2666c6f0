#include "ResourcePacker.h"

#include <spawn.h>
#include <sys/wait.h>

#include <cstring>
#include <filesystem>
#include <system_error>
#include <vector>

extern char** environ;

namespace fs = std::filesystem;

namespace {

const char* const ARCHIVER = "7zz";

// Runs the archiver in the given folder and waits for it; its exit status, or a negative
// errno-style code when it could not be started.
int runArchiver(const fs::path& folder, std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    pid_t child = 0;
    const int started = posix_spawnp(&child, ARCHIVER, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (started != 0) {
        return -started;
    }
    int status = 0;
    if (waitpid(child, &status, 0) < 0 || !WIFEXITED(status)) {
        return -ECHILD;
    }
    return WEXITSTATUS(status);
}

// The folder as an absolute path without a trailing separator.
fs::path folderPath(const std::string& folder) {
    std::error_code ignored;
    fs::path path = fs::absolute(folder, ignored).lexically_normal();
    return path.has_filename() ? path : path.parent_path();
}

std::string archiverFailure(int status, const std::string& resourceFolder) {
    if (status < 0) {
        return std::string("Cannot run ") + ARCHIVER + " : " + std::strerror(-status);
    }
    return std::string(ARCHIVER) + " failed with status " + std::to_string(status) + " packing '" +
           resourceFolder + "'";
}

} // namespace

bool packResources(const std::string& resourceFolder, const std::string& archivePath,
                   std::string& error) {
    std::error_code failure;
    const fs::path folder = folderPath(resourceFolder);
    if (!fs::is_directory(folder, failure)) {
        error = "Resource folder '" + resourceFolder + "' not found";
        return false;
    }
    const fs::path archive = fs::absolute(archivePath, failure);
    const fs::path partial = archive.string() + ".part";
    fs::remove(partial, failure);
    const int status = runArchiver(folder.parent_path(),
                                   {ARCHIVER, "a", "-t7z", "-ms=off", "-mx=9", "-bso0", "-bsp0",
                                    "--", partial.string(), folder.filename().string()});
    if (status != 0) {
        fs::remove(partial, failure);
        error = archiverFailure(status, resourceFolder);
        return false;
    }
    fs::rename(partial, archive, failure);
    if (failure) {
        error = "Cannot write '" + archivePath + "' : " + failure.message();
        return false;
    }
    return true;
}
