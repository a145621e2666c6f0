#include "File.h"

#include <cstring>
#include <sys/stat.h>

File::File(std::string name) : filename(std::move(name)) {}

File::File(std::string name, int openMode) : filename(std::move(name)) {
    open(openMode);
}

File::File(const char* name, int openMode) : File(std::string(name), openMode) {}

File::~File() {
    if (stream != nullptr) {
        std::fclose(stream);
    }
}

void File::open(int openMode) {
    const char* how = "rb";
    if (openMode == APPEND) {
        how = "ab";
    } else if (openMode == TRUNCATE || openMode == WRITE) {
        how = "wb";
    }
    stream = std::fopen(filename.c_str(), how);
    if (stream == nullptr) {
        available = false;
        return;
    }
    available = true;
    if (openMode == READ) {
        readAll();
    }
}

void File::readAll() {
    std::fseek(stream, 0, SEEK_END);
    long length = std::ftell(stream);
    std::fseek(stream, 0, SEEK_SET);
    if (length < 0) {
        available = false;
        return;
    }
    size = static_cast<unsigned int>(length);
    data.resize(size);
    size_t got = size == 0 ? 0 : std::fread(data.data(), 1, size, stream);
    data.resize(got);
}

bool File::exists(std::string path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

bool File::isFolder(const std::string& path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::vector<char> File::get() const {
    return std::vector<char>(data.begin(), data.end());
}

std::string File::getAsString() const {
    return std::string(data.begin(), data.end());
}

std::vector<std::string> File::getAsLines() const {
    std::vector<std::string> lines;
    std::string line;
    for (size_t i = 0; i < data.size(); ++i) {
        char c = static_cast<char>(data[i]);
        line += c;
        bool crlf = c == '\r' && i + 1 < data.size() && data[i + 1] == '\n';
        if (crlf || c == '\n') {
            line.pop_back();
            lines.push_back(line);
            line.clear();
            if (crlf) {
                ++i;
            }
        }
    }
    lines.push_back(line);
    return lines;
}

void File::setData(std::vector<unsigned char> bytes) {
    data = std::move(bytes);
    readOffset = 0;
    overrunFlag = false;
}

void File::setReadOffset(unsigned int offset) {
    overrunFlag = false;
    if (offset > data.size()) {
        overrunFlag = true;
        offset = static_cast<unsigned int>(data.size());
    }
    readOffset = offset;
}

unsigned int File::bytesLeft() const {
    return static_cast<unsigned int>(data.size()) - readOffset;
}

// Claims count bytes at the cursor; on a short file claims nothing and marks the overrun.
bool File::take(unsigned int count) {
    if (count > bytesLeft()) {
        overrunFlag = true;
        readOffset = static_cast<unsigned int>(data.size());
        return false;
    }
    return true;
}

unsigned int File::readLittleEndian32() {
    if (!take(4)) {
        return 0;
    }
    const unsigned char* p = &data[readOffset];
    readOffset += 4;
    return static_cast<unsigned int>(p[0]) | static_cast<unsigned int>(p[1]) << 8 |
           static_cast<unsigned int>(p[2]) << 16 | static_cast<unsigned int>(p[3]) << 24;
}

int File::readInt() {
    return static_cast<int>(readLittleEndian32());
}

float File::readFloat() {
    unsigned int bits = readLittleEndian32();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

char File::readChar() {
    if (!take(1)) {
        return 0;
    }
    return static_cast<char>(data[readOffset++]);
}

std::string File::readString() {
    std::string text;
    while (readOffset < data.size() && data[readOffset] != 0) {
        text += static_cast<char>(data[readOffset++]);
    }
    if (readOffset < data.size()) {
        ++readOffset;
    } else {
        overrunFlag = true;
    }
    return text.empty() ? "Object" : text;
}

std::string File::readString(int count) {
    if (count < 0 || !take(static_cast<unsigned int>(count))) {
        return "";
    }
    std::string text(data.begin() + readOffset, data.begin() + readOffset + count);
    readOffset += static_cast<unsigned int>(count);
    return text;
}

void File::put(int value) {
    put(static_cast<unsigned int>(value));
}

void File::put(unsigned int value) {
    for (int shift = 0; shift < 32; shift += 8) {
        data.push_back(static_cast<unsigned char>(value >> shift));
    }
}

void File::put(float value) {
    unsigned int bits;
    std::memcpy(&bits, &value, sizeof bits);
    put(bits);
}

void File::put(unsigned char value) {
    data.push_back(value);
}

void File::put(std::string text) {
    data.insert(data.end(), text.begin(), text.end());
}

bool File::write() {
    if (stream == nullptr) {
        return false;
    }
    bool written = data.empty() || std::fwrite(data.data(), 1, data.size(), stream) == data.size();
    bool closed = std::fclose(stream) == 0;
    stream = nullptr;
    return written && closed;
}

bool File::writeAs(const char* name) {
    filename = name;
    if (stream != nullptr) {
        std::fclose(stream);
    }
    stream = std::fopen(filename.c_str(), "wb");
    if (stream == nullptr) {
        return false;
    }
    return write();
}
