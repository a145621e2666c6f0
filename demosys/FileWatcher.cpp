#include "FileWatcher.h"

namespace fs = std::filesystem;

void FileWatcher::watchFolder(const std::string& folder) {
    folders.push_back(folder);
    stamps = look();
}

void FileWatcher::watchFile(const std::string& file) {
    files.push_back(file);
    stamps = look();
}

std::vector<std::string> FileWatcher::changes() {
    Stamps now = look();
    std::vector<std::string> changed;
    for (const auto& [path, current] : now) {
        auto before = stamps.find(path);
        if (before == stamps.end() || before->second != current) {
            changed.push_back(path);
        }
    }
    stamps = std::move(now);
    return changed;
}

// A file that vanishes between the listing and its stat (an editor saving by rename) is
// simply left out of this look and counts as changed at the next.
void FileWatcher::stamp(const fs::path& file, Stamps& into) {
    std::error_code failure;
    const fs::file_time_type modified = fs::last_write_time(file, failure);
    const std::uintmax_t size = failure ? 0 : fs::file_size(file, failure);
    if (!failure) {
        into[file.string()] = Stamp{modified, size};
    }
}

FileWatcher::Stamps FileWatcher::look() const {
    Stamps found;
    for (const std::string& folder : folders) {
        std::error_code failure;
        for (fs::recursive_directory_iterator it(folder, failure), end; !failure && it != end;
             it.increment(failure)) {
            if (it->is_regular_file(failure)) {
                stamp(it->path(), found);
            }
        }
    }
    for (const std::string& file : files) {
        stamp(file, found);
    }
    return found;
}
