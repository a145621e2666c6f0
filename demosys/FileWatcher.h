#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

// Notices files that change: every file under the watched folders and the watched files
// themselves, compared by modification time and size with the previous look. A look is a
// few stat calls, cheap enough to repeat several times a second in place of an operating
// system's change notification.
class FileWatcher {
public:
    // Remembers the present state, so that only later changes count.
    void watchFolder(const std::string& folder);
    void watchFile(const std::string& file);
    // The files changed or added since the previous look, as paths under what was watched.
    std::vector<std::string> changes();

private:
    struct Stamp {
        std::filesystem::file_time_type modified;
        std::uintmax_t size;
        bool operator!=(const Stamp& other) const {
            return modified != other.modified || size != other.size;
        }
    };
    using Stamps = std::map<std::string, Stamp>;

    Stamps look() const;
    static void stamp(const std::filesystem::path& file, Stamps& into);

    std::vector<std::string> folders;
    std::vector<std::string> files;
    Stamps stamps;
};
