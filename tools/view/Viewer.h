#pragma once

struct ViewOptions;

// Opens the window (or, for a shot, renders one frame into the picture) and returns the exit
// status: 0, or 1 with a message on standard error when the model, the window or the picture
// fails.
int runViewer(const ViewOptions& options);
