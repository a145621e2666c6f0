#include "SevenZipCoders.h"

#include <lzma.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

const unsigned char SIGNATURE[6] = {'7', 'z', 0xBC, 0xAF, 0x27, 0x1C};
const std::uint64_t SIGNATURE_HEADER_SIZE = 32;
// A header lists names, sizes and coders; anything larger is a damaged size field.
const std::uint64_t MAX_HEADER_SIZE = 64u << 20;
// 7-Zip packs a header once; deeper nesting is damage, not an archive.
const int MAX_HEADER_PACKING = 4;
// 7-Zip's own limits for one folder.
const std::uint64_t MAX_CODERS = 64;
const std::uint64_t MAX_CODER_STREAMS = 64;
// libarchive allocates the dictionary an LZMA coder asks for; 7-Zip's strongest level
// uses 64 MiB.
const std::uint64_t MAX_DICTIONARY = 1u << 30;
const unsigned char LZMA2_LARGEST_DICTIONARY = 40;

enum Property : std::uint64_t {
    END = 0x00,
    HEADER = 0x01,
    ARCHIVE_PROPERTIES = 0x02,
    ADDITIONAL_STREAMS_INFO = 0x03,
    MAIN_STREAMS_INFO = 0x04,
    FILES_INFO = 0x05,
    PACK_INFO = 0x06,
    UNPACK_INFO = 0x07,
    SUBSTREAMS_INFO = 0x08,
    SIZE = 0x09,
    CRC = 0x0A,
    FOLDER = 0x0B,
    CODERS_UNPACK_SIZE = 0x0C,
    NUM_UNPACK_STREAM = 0x0D,
    ENCODED_HEADER = 0x17,
};

// Coder flags: the low nibble is the id's length.
const unsigned char CODER_ID_LENGTH = 0x0F;
const unsigned char CODER_IS_COMPLEX = 0x10;
const unsigned char CODER_HAS_PROPERTIES = 0x20;
const unsigned char CODER_UNSUPPORTED = 0xC0;

const Bytes LZMA = {0x03, 0x01, 0x01};
const Bytes LZMA2 = {0x21};
const Bytes TRUSTED_CODERS[] = {
    {0x00}, // stored
    LZMA,
    LZMA2,
    {0x03, 0x03, 0x01, 0x03}, // BCJ
    {0x03, 0x03, 0x01, 0x1B}, // BCJ2
    {0x04, 0x01, 0x08},       // Deflate
    {0x04, 0x02, 0x02},       // BZip2
};

struct Coder {
    Bytes id;
    Bytes properties;
};

struct Folder {
    std::vector<Coder> coders;
    std::uint64_t outStreams = 0;
    std::vector<std::uint64_t> unpackSizes;
    bool crcDefined = false;
};

struct StreamsInfo {
    std::uint64_t packPosition = 0;
    std::vector<std::uint64_t> packSizes;
    std::vector<Folder> folders;
};

// Reads a header block; a read past its end fails the reader and yields zeros, so a damaged
// header ends the parse instead of reading foreign memory.
class HeaderReader {
public:
    explicit HeaderReader(const Bytes& block) : next(block.data()), left(block.size()) {}

    bool ok() const { return good; }
    std::uint64_t remaining() const { return left; }

    // Fails the reader unless the condition holds.
    bool require(bool condition) {
        good = good && condition;
        return good;
    }

    unsigned char byte() {
        if (left == 0) {
            good = false;
            return 0;
        }
        --left;
        return *next++;
    }

    // 7z's variable-length number: each leading one bit of the first byte adds a
    // little-endian byte; the first byte's remaining bits are the number's top part.
    std::uint64_t number() {
        const unsigned char first = byte();
        std::uint64_t value = 0;
        unsigned char mask = 0x80;
        for (int i = 0; i < 8; ++i, mask >>= 1) {
            if ((first & mask) == 0) {
                const std::uint64_t top = first & (mask - 1u);
                return value | (top << (8 * i));
            }
            value |= static_cast<std::uint64_t>(byte()) << (8 * i);
        }
        return value;
    }

    // A count of items that take at least one byte each: more than are left is damage.
    std::uint64_t count() {
        const std::uint64_t value = number();
        return require(value <= left) ? value : 0;
    }

    Bytes bytes(std::uint64_t length) {
        if (length > left) {
            fail();
            return {};
        }
        Bytes out(next, next + length);
        skip(length);
        return out;
    }

    void skip(std::uint64_t length) {
        if (length > left) {
            fail();
            return;
        }
        next += length;
        left -= length;
    }

    bool expect(std::uint64_t property) { return require(number() == property); }

private:
    void fail() {
        good = false;
        left = 0;
    }

    const unsigned char* next;
    std::uint64_t left;
    bool good = true;
};

// The CRC values themselves are not needed: only which ones are there.
std::vector<bool> readDigests(HeaderReader& reader, std::uint64_t count) {
    if (!reader.require(count / 8 <= reader.remaining())) {
        return {};
    }
    std::vector<bool> defined(count, true);
    if (reader.byte() == 0) {
        const Bytes bits = reader.bytes((count + 7) / 8);
        if (!reader.ok()) {
            return {};
        }
        for (std::uint64_t i = 0; i < count; ++i) {
            defined[i] = ((bits[i / 8] >> (7 - i % 8)) & 1u) != 0;
        }
    }
    reader.skip(4 * static_cast<std::uint64_t>(std::count(defined.begin(), defined.end(), true)));
    return defined;
}

bool readPackInfo(HeaderReader& reader, StreamsInfo& info) {
    info.packPosition = reader.number();
    const std::uint64_t streams = reader.count();
    for (std::uint64_t property = reader.number(); reader.ok() && property != END;
         property = reader.number()) {
        if (property == SIZE) {
            info.packSizes.clear();
            for (std::uint64_t i = 0; i < streams; ++i) {
                info.packSizes.push_back(reader.number());
            }
        } else if (property == CRC) {
            readDigests(reader, streams);
        } else {
            return false;
        }
    }
    return reader.ok();
}

bool readCoder(HeaderReader& reader, Coder& coder, std::uint64_t& inStreams,
               std::uint64_t& outStreams) {
    const unsigned char flags = reader.byte();
    if ((flags & CODER_UNSUPPORTED) != 0) {
        return false;
    }
    coder.id = reader.bytes(flags & CODER_ID_LENGTH);
    inStreams = 1;
    outStreams = 1;
    if ((flags & CODER_IS_COMPLEX) != 0) {
        inStreams = reader.number();
        outStreams = reader.number();
    }
    if ((flags & CODER_HAS_PROPERTIES) != 0) {
        coder.properties = reader.bytes(reader.number());
    }
    return reader.ok() && inStreams <= MAX_CODER_STREAMS && outStreams <= MAX_CODER_STREAMS;
}

bool readFolder(HeaderReader& reader, Folder& folder) {
    const std::uint64_t coders = reader.number();
    if (coders == 0 || coders > MAX_CODERS) {
        return false;
    }
    std::uint64_t inTotal = 0;
    for (std::uint64_t i = 0; i < coders; ++i) {
        Coder coder;
        std::uint64_t in = 0, out = 0;
        if (!readCoder(reader, coder, in, out)) {
            return false;
        }
        folder.coders.push_back(std::move(coder));
        inTotal += in;
        folder.outStreams += out;
    }
    if (folder.outStreams == 0) {
        return false;
    }
    // Every output but the folder's last feeds another coder's input through a bind pair;
    // the inputs left over are the packed streams.
    const std::uint64_t bindPairs = folder.outStreams - 1;
    for (std::uint64_t i = 0; i < bindPairs; ++i) {
        reader.number();
        reader.number();
    }
    if (inTotal <= bindPairs) {
        return false;
    }
    const std::uint64_t packedStreams = inTotal - bindPairs;
    for (std::uint64_t i = 0; packedStreams > 1 && i < packedStreams; ++i) {
        reader.number();
    }
    return reader.ok();
}

bool readUnpackInfo(HeaderReader& reader, StreamsInfo& info) {
    if (!reader.expect(FOLDER)) {
        return false;
    }
    const std::uint64_t folders = reader.count();
    if (reader.byte() != 0) {
        return false; // folders kept elsewhere: 7-Zip never writes that
    }
    for (std::uint64_t i = 0; i < folders; ++i) {
        info.folders.emplace_back();
        if (!readFolder(reader, info.folders.back())) {
            return false;
        }
    }
    if (!reader.expect(CODERS_UNPACK_SIZE)) {
        return false;
    }
    for (Folder& folder : info.folders) {
        for (std::uint64_t i = 0; i < folder.outStreams; ++i) {
            folder.unpackSizes.push_back(reader.number());
        }
    }
    for (std::uint64_t property = reader.number(); reader.ok() && property != END;
         property = reader.number()) {
        if (property != CRC) {
            return false;
        }
        const std::vector<bool> defined = readDigests(reader, folders);
        for (std::size_t i = 0; i < defined.size(); ++i) {
            info.folders[i].crcDefined = defined[i];
        }
    }
    return reader.ok();
}

// How many files each folder holds. libarchive sizes its tables by these counts before it
// reads on, so they are held to what the header has room for: every file after a folder's
// first has its size listed.
bool readSubStreamsInfo(HeaderReader& reader, const StreamsInfo& info) {
    std::vector<std::uint64_t> streams(info.folders.size(), 1);
    std::uint64_t property = reader.number();
    if (property == NUM_UNPACK_STREAM) {
        std::uint64_t listedSizes = 0;
        for (std::uint64_t& count : streams) {
            count = reader.number();
            if (!reader.require(count <= reader.remaining() + 1)) {
                return false;
            }
            listedSizes += count > 0 ? count - 1 : 0;
            if (!reader.require(listedSizes <= reader.remaining())) {
                return false;
            }
        }
        property = reader.number();
    }
    if (property == SIZE) {
        for (std::uint64_t count : streams) {
            for (std::uint64_t i = 1; i < count; ++i) {
                reader.number();
            }
        }
        property = reader.number();
    }
    if (property == CRC) {
        std::uint64_t unknownCrcs = 0;
        for (std::size_t i = 0; i < streams.size(); ++i) {
            const bool known = streams[i] == 1 && info.folders[i].crcDefined;
            unknownCrcs += known ? 0 : streams[i];
        }
        readDigests(reader, unknownCrcs);
        property = reader.number();
    }
    return reader.ok() && property == END;
}

enum class Extent { CODERS, WHOLE };

// Reads how data is packed: pack streams and folders with their coders, and with
// Extent::WHOLE also the files per folder up to the closing property.
bool readStreamsInfo(HeaderReader& reader, StreamsInfo& info, Extent extent) {
    std::uint64_t property = reader.number();
    if (property == PACK_INFO) {
        if (!readPackInfo(reader, info)) {
            return false;
        }
        property = reader.number();
    }
    if (property == UNPACK_INFO) {
        if (!readUnpackInfo(reader, info)) {
            return false;
        }
        if (extent == Extent::CODERS) {
            return true;
        }
        property = reader.number();
    }
    if (extent == Extent::CODERS) {
        return reader.ok();
    }
    if (property == SUBSTREAMS_INFO) {
        if (!readSubStreamsInfo(reader, info)) {
            return false;
        }
        property = reader.number();
    }
    return reader.ok() && property == END;
}

std::uint64_t dictionarySize(const Coder& coder) {
    const Bytes& properties = coder.properties;
    if (coder.id == LZMA) {
        return properties.size() == 5
                   ? static_cast<std::uint64_t>(properties[1]) | properties[2] << 8 |
                         properties[3] << 16 | static_cast<std::uint64_t>(properties[4]) << 24
                   : UINT64_MAX;
    }
    if (coder.id == LZMA2) {
        if (properties.size() != 1 || properties[0] > LZMA2_LARGEST_DICTIONARY) {
            return UINT64_MAX;
        }
        const unsigned int bits = properties[0];
        return static_cast<std::uint64_t>(2u | (bits & 1u)) << (bits / 2 + 11);
    }
    return 0;
}

bool trusted(const Coder& coder) {
    return std::find(std::begin(TRUSTED_CODERS), std::end(TRUSTED_CODERS), coder.id) !=
               std::end(TRUSTED_CODERS) &&
           dictionarySize(coder) <= MAX_DICTIONARY;
}

bool allTrusted(const StreamsInfo& info) {
    for (const Folder& folder : info.folders) {
        for (const Coder& coder : folder.coders) {
            if (!trusted(coder)) {
                return false;
            }
        }
    }
    return true;
}

using FileHandle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

struct ArchiveFile {
    FileHandle handle{nullptr, std::fclose};
    std::uint64_t size = 0;
};

bool readAt(ArchiveFile& file, std::uint64_t offset, std::uint64_t length, Bytes& out) {
    if (offset > file.size || length > file.size - offset ||
        fseeko(file.handle.get(), static_cast<off_t>(offset), SEEK_SET) != 0) {
        return false;
    }
    out.resize(length);
    return std::fread(out.data(), 1, out.size(), file.handle.get()) == out.size();
}

// Unpacks a header packed with LZMA or LZMA2, the coders 7-Zip uses for headers.
bool lzmaDecode(const Coder& coder, const Bytes& packed, std::uint64_t size, Bytes& out) {
    lzma_filter filters[2] = {};
    filters[0].id = coder.id == LZMA ? LZMA_FILTER_LZMA1 : LZMA_FILTER_LZMA2;
    filters[1].id = LZMA_VLI_UNKNOWN;
    if (lzma_properties_decode(&filters[0], nullptr, coder.properties.data(),
                               coder.properties.size()) != LZMA_OK) {
        return false;
    }
    std::unique_ptr<void, void (*)(void*)> options(filters[0].options, std::free);
    // The dictionary never needs to be larger than the output: a damaged dictionary size
    // must not allocate gigabytes.
    auto* lzmaOptions = static_cast<lzma_options_lzma*>(filters[0].options);
    if (lzmaOptions->dict_size > size) {
        lzmaOptions->dict_size =
            static_cast<std::uint32_t>(size < LZMA_DICT_SIZE_MIN ? LZMA_DICT_SIZE_MIN : size);
    }
    lzma_stream stream = LZMA_STREAM_INIT;
    if (lzma_raw_decoder(&stream, filters) != LZMA_OK) {
        return false;
    }
    out.resize(size);
    stream.next_in = packed.data();
    stream.avail_in = packed.size();
    stream.next_out = out.data();
    stream.avail_out = out.size();
    lzma_ret result = LZMA_OK;
    while (result == LZMA_OK && stream.avail_out > 0) {
        const std::size_t before = stream.avail_out;
        result = lzma_code(&stream, LZMA_RUN);
        if (stream.avail_out == before) {
            break;
        }
    }
    const bool complete = stream.avail_out == 0 && (result == LZMA_OK || result == LZMA_STREAM_END);
    lzma_end(&stream);
    return complete;
}

bool unpackHeader(ArchiveFile& file, const StreamsInfo& info, Bytes& header) {
    if (info.folders.size() != 1 || info.packSizes.empty()) {
        return false;
    }
    const Folder& folder = info.folders.front();
    if (folder.coders.size() != 1 || folder.unpackSizes.size() != 1) {
        return false;
    }
    const Coder& coder = folder.coders.front();
    const std::uint64_t size = folder.unpackSizes.front();
    if ((coder.id != LZMA && coder.id != LZMA2) || !trusted(coder) || size > MAX_HEADER_SIZE ||
        info.packPosition > file.size) {
        return false;
    }
    Bytes packed;
    return readAt(file, SIGNATURE_HEADER_SIZE + info.packPosition, info.packSizes.front(),
                  packed) &&
           lzmaDecode(coder, packed, size, header);
}

// The plain header: archive properties, the streams, then the file list, of which only the
// count is read (libarchive sizes its entry table by it before reading the list).
bool plainHeaderTrusted(HeaderReader& reader) {
    std::uint64_t property = reader.number();
    if (property == ARCHIVE_PROPERTIES) {
        for (std::uint64_t type = reader.number(); reader.ok() && type != END;
             type = reader.number()) {
            reader.skip(reader.number());
        }
        property = reader.number();
    }
    if (property == ADDITIONAL_STREAMS_INFO) {
        return false; // neither 7-Zip nor libarchive uses them
    }
    if (property == MAIN_STREAMS_INFO) {
        StreamsInfo main;
        if (!readStreamsInfo(reader, main, Extent::WHOLE) || !allTrusted(main)) {
            return false;
        }
        property = reader.number();
    }
    if (property == FILES_INFO) {
        reader.count();
    }
    return reader.ok();
}

bool headerTrusted(ArchiveFile& file, const Bytes& block, int packing) {
    HeaderReader reader(block);
    const std::uint64_t property = reader.number();
    if (property == HEADER) {
        return plainHeaderTrusted(reader);
    }
    StreamsInfo packed;
    Bytes header;
    return property == ENCODED_HEADER && packing < MAX_HEADER_PACKING &&
           readStreamsInfo(reader, packed, Extent::CODERS) && unpackHeader(file, packed, header) &&
           headerTrusted(file, header, packing + 1);
}

std::uint64_t littleEndian64(const unsigned char* bytes) {
    std::uint64_t value = 0;
    for (int i = 7; i >= 0; --i) {
        value = value << 8 | bytes[i];
    }
    return value;
}

} // namespace

bool SevenZipCoders::allTrusted(const std::string& path) {
    ArchiveFile file;
    file.handle.reset(std::fopen(path.c_str(), "rb"));
    if (file.handle == nullptr || fseeko(file.handle.get(), 0, SEEK_END) != 0) {
        return false;
    }
    const off_t end = ftello(file.handle.get());
    if (end < 0) {
        return false;
    }
    file.size = static_cast<std::uint64_t>(end);
    Bytes start;
    if (!readAt(file, 0, SIGNATURE_HEADER_SIZE, start) ||
        std::memcmp(start.data(), SIGNATURE, sizeof SIGNATURE) != 0) {
        return false;
    }
    const std::uint64_t headerOffset = littleEndian64(&start[12]);
    const std::uint64_t headerSize = littleEndian64(&start[20]);
    if (headerSize == 0) {
        return true; // an archive without entries
    }
    Bytes header;
    return headerSize <= MAX_HEADER_SIZE && headerOffset <= file.size &&
           readAt(file, SIGNATURE_HEADER_SIZE + headerOffset, headerSize, header) &&
           headerTrusted(file, header, 0);
}
