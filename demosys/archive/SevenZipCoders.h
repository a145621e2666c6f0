#pragma once

#include <string>

// Reads the header of a 7z archive and tells whether every coder it uses is one that
// libarchive decodes reliably: LZMA, LZMA2, the x86 branch filters BCJ and BCJ2, Deflate,
// BZip2 and stored data. libarchive decodes the others too (PPMd, the ARM64 filter) but not
// safely, and it decodes a packed header as soon as the archive is opened, so this check
// runs on the raw bytes before libarchive sees them.
class SevenZipCoders {
public:
    // False when the file is not a readable 7z archive (missing, truncated, damaged) or
    // when its header, its extra streams or any folder of its data needs another coder.
    static bool allTrusted(const std::string& path);
};
