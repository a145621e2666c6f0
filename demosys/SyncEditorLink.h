#pragma once

#include <functional>
#include <string>
#include <vector>

class TrackInterpolate;
class TrackSystem;

// The demo's end of a sync-tracker editor's TCP link. The demo connects to the editor,
// greets it, asks for every track by name ("instance:track", plus a read-only
// "instance:active" per instance) and then takes the editor's key edits into the running
// tracks, follows its seeks and pauses and saves when it asks; while playing it tells the
// editor its row. Non-blocking: poll() does a frame's share and never waits. An editor that
// goes away or sends what the protocol does not hold closes the link with a printed reason;
// the demo plays on with the keys it has and tries again at most once a second.
class SyncEditorLink {
public:
    // What the editor may do to the demo, and what it learns of it.
    struct Player {
        std::function<unsigned int()> row;
        std::function<bool()> playing;
        std::function<void(unsigned int row)> seek;
        std::function<void(bool paused)> pause;
        std::function<void()> save;
    };

    SyncEditorLink(const std::string& host, unsigned short port, TrackSystem& tracks,
                   Player player);
    ~SyncEditorLink();
    SyncEditorLink(const SyncEditorLink&) = delete;
    SyncEditorLink& operator=(const SyncEditorLink&) = delete;

    // Once a frame: connects when due, applies what arrived, then tells a playing row.
    void poll();

    // True once the editor has greeted back, until the link closes.
    bool linked() const { return state == State::Linked; }
    // Why the link last closed or could not open; empty before that.
    const std::string& lastProblem() const { return problem; }
    // The names asked for, in the order that numbers them.
    std::vector<std::string> trackNames() const;

    static constexpr unsigned int RetryIntervalMs = 1000;
    static constexpr unsigned int ConnectTimeoutMs = 5000;

private:
    enum class State { Closed, Connecting, Greeting, Linked };
    // One editor track: a parameter track, or null for the read-only active track.
    struct Entry {
        std::string name;
        TrackInterpolate* track;
    };

    void startConnecting();
    void finishConnecting();
    void receive();
    bool readGreeting();
    void link();
    size_t applyMessages();
    bool apply(const unsigned char* message);
    bool setKey(const unsigned char* message);
    bool deleteKey(const unsigned char* message);
    const Entry* entryFor(unsigned int index);
    void send(const unsigned char* bytes, size_t count);
    void sendRow(unsigned int row);
    void flush();
    void close(const std::string& reason);
    std::string address() const;

    std::string host;
    unsigned short port;
    Player player;
    std::vector<Entry> entries;
    State state = State::Closed;
    int socketFd = -1;
    unsigned int lastAttempt = 0;
    bool attempted = false;
    unsigned int stateSince = 0;
    bool notedReadOnly = false;
    unsigned int sentRow = 0;
    bool rowSent = false;
    std::vector<unsigned char> inbox;
    std::vector<unsigned char> outbox;
    std::string problem;
};
