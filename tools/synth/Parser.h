#pragma once

#include "Song.h"

#include <stdexcept>
#include <string>

namespace synth {

// A problem in a song file, with where it is: "file:line:column: what is wrong".
// Line and column are 1-based; 0 means the file as a whole (for example, unreadable).
class SongError : public std::runtime_error {
public:
    SongError(const std::string& file, int line, int column, const std::string& reason);
    int line() const { return lineNumber; }
    int column() const { return columnNumber; }
    const std::string& reason() const { return why; }

private:
    int lineNumber, columnNumber;
    std::string why;
};

// Reads a song from its text; `fileName` is only used in error messages.
Song parseSong(const std::string& text, const std::string& fileName);
Song loadSong(const std::string& path);

// MIDI key of a note name such as "A4", "F#2" or "Bb-1"; -1 when it is not one.
int parseNoteName(const std::string& name);

} // namespace synth
