#include "packman.h"

#include "SevenZipCoders.h"

#include <archive.h>
#include <archive_entry.h>

#include <climits>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Entry {
    std::string name;
    std::int64_t size;
    bool regularFile;
};

// The open archive: its path and the entry table built at opening. libarchive has no random
// access: an entry is reached by walking the headers and skipping the data before it, which
// in a non-solid archive is a seek, not a decode, but only until the reader has decoded
// anything. So every request opens a reader of its own (a header parse, well under a
// millisecond) instead of walking on from the last entry read.
struct OpenArchive {
    std::string path;
    std::vector<Entry> entries;
};

OpenArchive current;
// Size of the entry last looked up, -1 when it was not found.
int fileSize = -1;
// Why the archive could not be opened or the last entry could not be decoded.
std::string lastError;

const std::size_t READ_BLOCK_SIZE = 64 * 1024;

using Reader = std::unique_ptr<struct archive, int (*)(struct archive*)>;

Reader openReader(const std::string& path) {
    Reader reader(archive_read_new(), archive_read_free);
    archive_read_support_format_7zip(reader.get());
    if (archive_read_open_filename(reader.get(), path.c_str(), READ_BLOCK_SIZE) != ARCHIVE_OK) {
        reader.reset();
    }
    return reader;
}

// True when a header was read; warnings (a name that did not convert) are not faults.
bool isHeader(int result) {
    return result == ARCHIVE_OK || result == ARCHIVE_WARN;
}

// Any fault while walking the headers makes the whole archive count as damaged.
bool readEntryTable(struct archive* reader, std::vector<Entry>& entries) {
    struct archive_entry* entry = nullptr;
    int result = ARCHIVE_OK;
    while (isHeader(result = archive_read_next_header(reader, &entry))) {
        const char* name = archive_entry_pathname_utf8(entry);
        if (name == nullptr) {
            name = archive_entry_pathname(entry);
        }
        entries.push_back({name != nullptr ? name : "",
                           archive_entry_size_is_set(entry) ? archive_entry_size(entry) : -1,
                           archive_entry_filetype(entry) == AE_IFREG});
        if (archive_read_data_skip(reader) != ARCHIVE_OK) {
            return false;
        }
    }
    return result == ARCHIVE_EOF;
}

// The first regular file of that name; entries too large for an int size count as absent.
int findEntry(const char* name) {
    for (std::size_t i = 0; i < current.entries.size(); ++i) {
        const Entry& entry = current.entries[i];
        if (entry.regularFile && entry.name == name) {
            return entry.size >= 0 && entry.size <= INT_MAX ? static_cast<int>(i) : -1;
        }
    }
    return -1;
}

bool skipTo(struct archive* reader, int index) {
    struct archive_entry* entry = nullptr;
    for (int i = 0; i < index; ++i) {
        if (!isHeader(archive_read_next_header(reader, &entry)) ||
            archive_read_data_skip(reader) != ARCHIVE_OK) {
            return false;
        }
    }
    return isHeader(archive_read_next_header(reader, &entry));
}

// libarchive checks the entry's CRC when its last bytes are read and reports a mismatch
// as an error from that read.
bool readEntryData(struct archive* reader, unsigned char* dest, std::int64_t size) {
    std::int64_t done = 0;
    while (done < size) {
        const la_ssize_t got =
            archive_read_data(reader, dest + done, static_cast<std::size_t>(size - done));
        if (got <= 0) {
            return false;
        }
        done += got;
    }
    return true;
}

bool extract(int index, unsigned char* dest) {
    const Reader reader = openReader(current.path);
    if (reader != nullptr && skipTo(reader.get(), index) &&
        readEntryData(reader.get(), dest, current.entries[index].size)) {
        return true;
    }
    const char* why = reader != nullptr ? archive_error_string(reader.get()) : nullptr;
    lastError = "entry '" + current.entries[index].name + "' of '" + current.path +
                "' is damaged: " + (why != nullptr ? why : "it cannot be decoded");
    return false;
}

} // namespace

int packman_init(const char* path) {
    packman_shutdown();
    const std::string named = std::string("'") + path + "'";
    if (!SevenZipCoders::allTrusted(path)) {
        lastError = named + " is missing, damaged, not a 7z archive, or packed with a coder "
                            "this reader does not trust";
        return 1;
    }
    const Reader reader = openReader(path);
    std::vector<Entry> entries;
    if (reader == nullptr || !readEntryTable(reader.get(), entries)) {
        const char* why = reader != nullptr ? archive_error_string(reader.get()) : nullptr;
        lastError = named + " is damaged: " + (why != nullptr ? why : "its entries cannot be read");
        return 1;
    }
    current.path = path;
    current.entries = std::move(entries);
    return 0;
}

int packman_getFileIndex(const char* name) {
    const int index = findEntry(name);
    fileSize = index < 0 ? -1 : static_cast<int>(current.entries[index].size);
    return index;
}

int packman_getFileSize(const char* name) {
    packman_getFileIndex(name);
    return fileSize;
}

int packman_getFile(const char* name, unsigned char* dest) {
    fileSize = -1;
    const int index = packman_getFileIndex(name);
    return index >= 0 && extract(index, dest) ? 0 : 1;
}

void packman_shutdown() {
    current = OpenArchive();
    fileSize = -1;
    lastError.clear();
}

const char* packman_getError() {
    return lastError.c_str();
}
