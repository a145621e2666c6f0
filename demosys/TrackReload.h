#pragma once

#include <string>

class TrackSystem;

// Live reload of the sync tracks: the sync text is read again and its keyframes replace those
// of the running track system in place, so effects keep their track pointers. The text is
// checked against the running effects and their tracks before anything changes; on an error
// the tracks stay as they were and error says "file:line: reason".
bool reloadTracks(const std::string& syncTextPath, TrackSystem& system, std::string& error);

// The other way: the keys of the running tracks are written into the sync text in place of
// the keyframes there, keeping its comments, intervals and order. The result is checked as a
// reload checks it before the file is replaced; on an error it stays as it was.
bool saveTracksInto(const std::string& syncTextPath, const TrackSystem& system, std::string& error);
