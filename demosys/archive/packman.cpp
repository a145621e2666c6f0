#include "packman.h"

#include "SevenZipCoders.h"

#include <archive.h>
#include <archive_entry.h>

#include <climits>
#include <cstdint>
#include <string>
#include <vector>

namespace {

struct Entry {
    std::string name;
    std::int64_t size;
    bool regularFile;
};

// The open archive: its entry table, and a reader left just after the entry it delivered
// last, so that entries asked for in archive order are reached without reopening.
// libarchive has no random access: an entry is reached by walking the headers and skipping
// the data of those before it, which in a non-solid archive is a seek, not a decode.
struct OpenArchive {
    std::string path;
    std::vector<Entry> entries;
    struct archive* reader = nullptr;
    int nextEntry = 0;
};

OpenArchive current;
// Size of the entry last looked up, -1 when it was not found.
int fileSize = -1;

const std::size_t READ_BLOCK_SIZE = 64 * 1024;

struct archive* openReader(const std::string& path) {
    struct archive* reader = archive_read_new();
    archive_read_support_format_7zip(reader);
    if (archive_read_open_filename(reader, path.c_str(), READ_BLOCK_SIZE) != ARCHIVE_OK) {
        archive_read_free(reader);
        return nullptr;
    }
    return reader;
}

// True when a header was read; warnings (a name that did not convert) are not faults.
bool nextHeader(struct archive* reader, struct archive_entry** entry, int& result) {
    result = archive_read_next_header(reader, entry);
    return result == ARCHIVE_OK || result == ARCHIVE_WARN;
}

void closeReader() {
    if (current.reader != nullptr) {
        archive_read_free(current.reader);
        current.reader = nullptr;
    }
    current.nextEntry = 0;
}

// Any fault while walking the headers makes the whole archive count as damaged.
bool readEntryTable(struct archive* reader, std::vector<Entry>& entries) {
    struct archive_entry* entry = nullptr;
    int result = ARCHIVE_OK;
    while (nextHeader(reader, &entry, result)) {
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

bool positionReaderAt(int index) {
    if (current.reader == nullptr || current.nextEntry > index) {
        closeReader();
        current.reader = openReader(current.path);
        if (current.reader == nullptr) {
            return false;
        }
    }
    struct archive_entry* entry = nullptr;
    int result = ARCHIVE_OK;
    for (; current.nextEntry < index; ++current.nextEntry) {
        if (!nextHeader(current.reader, &entry, result) ||
            archive_read_data_skip(current.reader) != ARCHIVE_OK) {
            return false;
        }
    }
    ++current.nextEntry;
    return nextHeader(current.reader, &entry, result);
}

// libarchive checks the entry's CRC when its last bytes are read and reports a mismatch
// as an error from that read.
bool readEntryData(unsigned char* dest, std::int64_t size) {
    std::int64_t done = 0;
    while (done < size) {
        const la_ssize_t got =
            archive_read_data(current.reader, dest + done, static_cast<std::size_t>(size - done));
        if (got <= 0) {
            return false;
        }
        done += got;
    }
    return true;
}

bool extract(int index, unsigned char* dest) {
    if (positionReaderAt(index) && readEntryData(dest, current.entries[index].size)) {
        return true;
    }
    closeReader();
    return false;
}

} // namespace

int packman_init(const char* path) {
    packman_shutdown();
    if (!SevenZipCoders::allTrusted(path)) {
        return 1;
    }
    struct archive* reader = openReader(path);
    if (reader == nullptr) {
        return 1;
    }
    std::vector<Entry> entries;
    const bool complete = readEntryTable(reader, entries);
    archive_read_free(reader);
    if (!complete) {
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
    closeReader();
    current = OpenArchive();
    fileSize = -1;
}
