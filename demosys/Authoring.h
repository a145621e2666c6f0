#pragma once

#include "MusicGrid.h"

#include <memory>
#include <string>
#include <vector>

class AuthoringOverlay;
class FileWatcher;
class ShaderReloader;
class SyncEditorLink;
union SDL_Event;

// Authoring mode (--dev): the keys that pause, step and loop the music with the picture,
// live reload of the production's shaders and sync text from its source folder, the timeline
// overlay and the window title with the play position. The main loop calls beforeFrame(),
// handleEvent() for every event and afterFrame() once the frame is drawn and captured; every
// key has an operation of its own, so code and tests can do all a key does.
// Made after loading, with the window, the clock and the track system in the registry.
class Authoring {
public:
    // Where the author edits: the shader folder and the sync text. Either may be empty.
    struct Sources {
        std::string shaderFolder;
        std::string syncText;
    };
    // The sources in a production's folder: shaders/ (or resources/shaders/) and the one
    // ".sync" file in it (or in sync/).
    static Sources findSources(const std::string& folder);

    // Loops run from a section's start to the next section's start (or the end).
    struct Span {
        unsigned int start;
        unsigned int end;
    };

    explicit Authoring(const Sources& sources);
    ~Authoring();
    Authoring(const Authoring&) = delete;
    Authoring& operator=(const Authoring&) = delete;

    // Before the clock is read: looks for changed sources every WatchIntervalMs and wraps a
    // loop that reached its end.
    void beforeFrame();
    // True when the event was a key of this mode or the overlay's mouse input.
    bool handleEvent(const SDL_Event& event);
    // After the frame is drawn and captured, before it is shown: the overlay and the title.
    void afterFrame();

    // The keys: Space, Left/Right, Shift+Left/Right, Page Up/Down, Home, L, R, F1.
    void togglePause();
    void stepBeats(int count);
    void stepBars(int count);
    void toStart();
    void toggleLoop();
    void reloadAll();
    void toggleOverlay();

    // Moves picture and music to time (kept within the piece); a paused clock stays paused.
    void seek(unsigned int time);
    // Rebuilds what changed in the sources since the last look, at once.
    void reloadChanged();
    void setPaused(bool flag);
    // Links to a sync-tracker editor at host:port, polled before every frame from now on.
    void connectEditor(const std::string& host, unsigned short port);
    const SyncEditorLink* editor() const { return editorLink.get(); }
    // Writes the running tracks' keys into the sync text, keeping the rest of it.
    void saveTracks();
    // With false a playing clock that reaches the end stops there instead of ending the demo.
    void quitAtEnd(bool flag) { endQuits = flag; }

    bool paused() const;
    unsigned int time() const;
    const Span* loop() const { return looping ? &loopSpan : nullptr; }
    bool overlayShown() const { return showOverlay; }
    // The latest reload's outcome: empty after a clean one, else file, line and reason.
    const std::string& problems() const { return lastProblems; }
    const MusicGrid& grid() const { return musicGrid; }
    // "mm:ss:ms | row R | bar.beat | F fps"
    std::string status() const;

    static constexpr unsigned int WatchIntervalMs = 250;

private:
    unsigned int endTime() const;
    Span sectionAround(unsigned int at) const;
    void watchSources();
    void reloadSyncText(std::vector<std::string>& errors);
    void report(const std::vector<std::string>& errors);
    void countFrame();
    bool handleKey(int key, bool shift);

    Sources sources;
    MusicGrid musicGrid;
    std::unique_ptr<FileWatcher> watcher;
    std::unique_ptr<ShaderReloader> shaders;
    std::unique_ptr<AuthoringOverlay> overlay;
    std::unique_ptr<SyncEditorLink> editorLink;
    bool showOverlay = true;
    bool endQuits = true;
    bool looping = false;
    Span loopSpan{0, 0};
    std::string lastProblems;
    unsigned int lastWatch = 0;
    unsigned int lastTitle = 0;
    unsigned int fpsSince = 0;
    int fpsFrames = 0;
    double framesPerSecond = 0.0;
};
