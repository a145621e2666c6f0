#pragma once

#include <string>

class TrackSystem;

// Live reload of the sync tracks: the sync text is read again and its keyframes replace those
// of the running track system in place, so effects keep their track pointers. The text is
// checked against the running effects and their tracks before anything changes; on an error
// the tracks stay as they were and error says "file:line: reason".
bool reloadTracks(const std::string& syncTextPath, TrackSystem& system, std::string& error);
