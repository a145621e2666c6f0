#pragma once

#include "SyncText.h"

#include <string>
#include <vector>

// The sync-tracker editors' project file and key types, and how they meet our sync text.
// Editor key types: 0 step, 1 linear, 2 smooth, 3 ramp. Step, linear and ramp are ours one to
// one, smooth is our code 5; ease-in and ease-out have no editor kind and go out as smooth.
// Tracks are named "instance:track"; "instance:active" is 1 inside the instance's intervals
// and 0 outside, a read-only picture of when it draws.
namespace rocket {

const char* const ActiveTrack = "active";
const int KeyTypeCount = 4;

// Our interpolation code as an editor key type.
int editorKeyType(int interpolation);
// An editor key type as our interpolation code; -1 for an unknown type.
int engineInterpolation(int keyType);

struct Key {
    unsigned int row;
    float value;
    int keyType;
};

struct Track {
    std::string name;
    std::vector<Key> keys;
};

struct Project {
    unsigned int rows = 0;
    std::vector<Track> tracks;
    std::vector<unsigned int> bookmarks;
};

// Every instance's active track, then its parameter tracks; rows reach past the last row
// used, and a bookmark stands on every row where the set of drawing instances changes.
Project fromDocument(const synctext::Document& document);
// The parameter tracks of the project as a document to merge into a sync text; active tracks
// are left out. False with a reason for a track name that is not "instance:track".
bool toKeys(const Project& project, synctext::Document& keys, std::string& error);

std::string writeXml(const Project& project);
// Reads a project file; false with "file:line: reason" when it is not one.
bool readXml(const std::string& text, const std::string& fileName, Project& out,
             std::string& error);

} // namespace rocket
