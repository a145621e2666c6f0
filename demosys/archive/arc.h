#pragma once

#include <string>

class File;
class Image;

// The engine's side of the resource archive: fills File and Image objects from entries
// named like the loose resource files ("resources/graphics/x.png").

bool arc_load(std::string path);
void arc_close();
// Why arc_load or the last extraction failed, naming the archive and the entry.
std::string arc_getError();
// Fills the file from the entry of its name. A missing entry clears its exists flag; an
// entry that cannot be decoded leaves the flag as it was. True on success.
bool arc_getFile(File* file);
// Decodes the picture in the entry of the image's file name; the image's exists flag tells
// whether it could be decoded. False when the entry is missing (the flag is then cleared)
// or cannot be extracted.
bool arc_getImage(Image* image);
