#pragma once

#include <cstdio>
#include <string>
#include <vector>

// One file held whole in memory. Mode 0 reads the whole file at construction and parses it
// from memory with a read cursor (little-endian numbers, zero-terminated strings, lines).
// Modes 1 (append) and 2/3 (truncate) collect bytes with put() and write them out in one go.
//
// Reads never leave the data: reading past the end yields zeros (or empty strings), leaves
// the cursor at the end and marks the file as overrun, so a truncated or corrupt file can be
// detected after parsing instead of reading foreign memory.
class File {
public:
    enum Mode { READ = 0, APPEND = 1, TRUNCATE = 2, WRITE = 3 };

    // Only names the file; the archive reader fills data and the exists flag.
    explicit File(std::string name);
    File(std::string name, int mode);
    File(const char* name, int mode);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    static bool exists(std::string path);
    // True when the path names a folder on disk.
    static bool isFolder(const std::string& path);
    bool exists() const { return available; }
    void exists(bool flag) { available = flag; }

    std::string getFilename() const { return filename; }
    unsigned int getFileSize() const { return static_cast<unsigned int>(data.size()); }
    std::vector<char> get() const;
    std::vector<unsigned char> getUnsigned() const { return data; }
    std::string getAsString() const;
    std::vector<std::string> getAsLines() const;
    // Replaces the contents (archive entries, in-memory files in tests and tools).
    void setData(std::vector<unsigned char> bytes);

    unsigned int getReadOffset() const { return readOffset; }
    void setReadOffset(unsigned int offset);
    unsigned int bytesLeft() const;
    // True once a read since the last setReadOffset wanted more bytes than were left, or
    // the offset set lay past the end.
    bool overrun() const { return overrunFlag; }

    int readInt();
    float readFloat();
    char readChar();
    // Bytes up to the next 0 byte; "Object" when the very first byte is 0.
    std::string readString();
    std::string readString(int count);

    void put(int value);
    void put(unsigned int value);
    void put(float value);
    void put(unsigned char value);
    void put(std::string text);
    unsigned int getWriteOffset() const { return static_cast<unsigned int>(data.size()); }

    bool write();
    bool writeAs(const char* name);

private:
    void open(int openMode);
    void readAll();
    bool take(unsigned int count);
    unsigned int readLittleEndian32();

    std::string filename;
    std::vector<unsigned char> data;
    std::FILE* stream = nullptr;
    unsigned int size = 0;
    unsigned int readOffset = 0;
    bool available = false;
    bool overrunFlag = false;
};
