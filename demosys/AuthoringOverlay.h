#pragma once

#include <string>

#include "Authoring.h"

union SDL_Event;
struct ImDrawList;
struct ImVec2;

// The timeline of authoring mode, drawn with Dear ImGui over the finished frame in the window:
// every track group's intervals in draw order, bar lines, section markers, the loop and the
// play head. Clicking or dragging on it asks for a seek; hovering a group shows its tracks'
// current values. It draws only when asked, after captures have read the frame.
class AuthoringOverlay {
public:
    struct View {
        unsigned int time;
        unsigned int end;
        const MusicGrid* grid;
        const Authoring::Span* loop;
        std::string status;
        std::string problems;
    };

    AuthoringOverlay();
    ~AuthoringOverlay();
    AuthoringOverlay(const AuthoringOverlay&) = delete;
    AuthoringOverlay& operator=(const AuthoringOverlay&) = delete;

    // Hands the event to the overlay; true when the overlay takes the mouse.
    bool handleEvent(const SDL_Event& event);
    // Draws into the bound screen; true with seekTo set while the timeline is clicked or
    // dragged.
    bool draw(const View& view, unsigned int& seekTo);

private:
    struct Timeline;
    void drawTimeline(const View& view, const Timeline& line, ImDrawList& list) const;
    void drawIntervals(const Timeline& line, ImDrawList& list) const;
    void showValues(const View& view, const Timeline& line, const ImVec2& mouse) const;
};
