#pragma once

#include <string>

// Reads the header of a 7z archive, before libarchive sees it, and tells whether libarchive
// can be trusted with the archive: every coder must be one it decodes reliably (LZMA,
// LZMA2, the x86 branch filters BCJ and BCJ2, Deflate, BZip2, stored data; it decodes PPMd
// and the ARM64 filter too, but not safely), LZMA dictionaries must be of a sane size, and
// the counts libarchive sizes its tables by must fit in the header. libarchive decodes a
// packed header as soon as the archive is opened, so the check has to come first.
class SevenZipCoders {
public:
    // False when the file is not a readable 7z archive (missing, truncated, damaged) or
    // fails the conditions above.
    static bool allTrusted(const std::string& path);
};
