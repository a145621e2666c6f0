#pragma once

// The resource archive: one 7z archive open at a time, process-wide, for the loading thread
// only. Opening lists every entry's name and size once; a request then decodes only its own
// entry. Entries are found by their stored name, byte for byte; the first of equal names
// wins. A missing, damaged or truncated archive, one that is not 7z, or one packed with a
// coder outside the trusted set (see SevenZipCoders) opens as no archive: every lookup
// finds nothing.

// 0 when the archive is open, 1 when it could not be opened.
int packman_init(const char* path);
// Index of the first entry so named, or -1.
int packman_getFileIndex(const char* name);
// Size in bytes of the first entry so named, or -1.
int packman_getFileSize(const char* name);
// Decodes the first entry so named into dest, which holds packman_getFileSize(name) bytes.
// 0 on success, 1 when there is no such entry or it cannot be decoded.
int packman_getFile(const char* name, unsigned char* dest);
void packman_shutdown();
// Why packman_init or the last packman_getFile failed, naming the archive and the entry.
const char* packman_getError();
