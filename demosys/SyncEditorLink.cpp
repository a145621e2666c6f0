#include "SyncEditorLink.h"

#include "RocketProject.h"
#include "Timer.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackSystem.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <iostream>

namespace {

const char ClientGreeting[] = "hello, synctracker!";
const char EditorGreeting[] = "hello, demo!";
const size_t EditorGreetingSize = sizeof EditorGreeting - 1;

enum Command : unsigned char {
    SetKey = 0,
    DeleteKey = 1,
    GetTrack = 2,
    SetRow = 3,
    Pause = 4,
    SaveTracks = 5,
};

// Bytes of a message from the editor, command byte included; 0 for an unknown command.
size_t messageSize(unsigned char command) {
    switch (command) {
    case SetKey:
        return 14;
    case DeleteKey:
        return 9;
    case SetRow:
        return 5;
    case Pause:
        return 2;
    case SaveTracks:
        return 1;
    default:
        return 0;
    }
}

// A frame reads at most this much, so a flooding editor cannot stall the picture.
const size_t MostReadAFrame = 1 << 20;
// An editor that stops reading while this much waits for it is dropped.
const size_t MostUnsent = 1 << 20;

unsigned int readUnsigned(const unsigned char* bytes) {
    return static_cast<unsigned int>(bytes[0]) << 24 | static_cast<unsigned int>(bytes[1]) << 16 |
           static_cast<unsigned int>(bytes[2]) << 8 | static_cast<unsigned int>(bytes[3]);
}

float readFloat(const unsigned char* bytes) {
    const unsigned int bits = readUnsigned(bytes);
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

void writeUnsigned(unsigned char* bytes, unsigned int value) {
    bytes[0] = static_cast<unsigned char>(value >> 24);
    bytes[1] = static_cast<unsigned char>(value >> 16);
    bytes[2] = static_cast<unsigned char>(value >> 8);
    bytes[3] = static_cast<unsigned char>(value);
}

} // namespace

SyncEditorLink::SyncEditorLink(const std::string& editorHost, unsigned short editorPort,
                               TrackSystem& tracks, Player actions)
    : host(editorHost), port(editorPort), player(std::move(actions)) {
    for (int i = 0; i < tracks.getSortedTrackGroupCount(); ++i) {
        const TrackGroup* group = tracks.getSortedTrackGroup(i);
        entries.push_back(Entry{group->getName() + ":" + rocket::ActiveTrack, nullptr});
        for (int j = 0; j < group->getInterpolateTrackCount(); ++j) {
            TrackInterpolate* track = group->getInterpolateTrack(j);
            entries.push_back(Entry{group->getName() + ":" + track->getName(), track});
        }
    }
    inbox.reserve(MostReadAFrame);
    outbox.reserve(4096);
}

SyncEditorLink::~SyncEditorLink() {
    if (socketFd >= 0) {
        ::close(socketFd);
    }
}

std::vector<std::string> SyncEditorLink::trackNames() const {
    std::vector<std::string> names;
    for (const Entry& entry : entries) {
        names.push_back(entry.name);
    }
    return names;
}

std::string SyncEditorLink::address() const {
    return host + ":" + std::to_string(port);
}

void SyncEditorLink::poll() {
    const unsigned int now = Timer::ticks();
    if (state == State::Closed && (!attempted || now - lastAttempt >= RetryIntervalMs)) {
        startConnecting();
    }
    if (state == State::Connecting) {
        finishConnecting();
    }
    if (state == State::Greeting || state == State::Linked) {
        receive();
    }
    if (state == State::Linked && player.playing() && (!rowSent || player.row() != sentRow)) {
        sendRow(player.row());
    }
    if (state != State::Closed) {
        flush();
    }
    const bool waiting = state == State::Connecting || state == State::Greeting;
    if (waiting && Timer::ticks() - stateSince > ConnectTimeoutMs) {
        close("no greeting from the editor at " + address() + " within " +
              std::to_string(ConnectTimeoutMs / 1000) + " s");
    }
}

void SyncEditorLink::startConnecting() {
    attempted = true;
    lastAttempt = stateSince = Timer::ticks();
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int resolved = getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found);
    if (resolved != 0) {
        close("cannot resolve " + host + ": " + gai_strerror(resolved));
        return;
    }
    socketFd = socket(found->ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    const int connected = socketFd < 0 ? -1 : connect(socketFd, found->ai_addr, found->ai_addrlen);
    const int failure = errno;
    freeaddrinfo(found);
    if (connected == 0 || (socketFd >= 0 && failure == EINPROGRESS)) {
        state = State::Connecting;
    } else {
        close("cannot reach the editor at " + address() + ": " + std::strerror(failure));
    }
}

void SyncEditorLink::finishConnecting() {
    pollfd writable{socketFd, POLLOUT, 0};
    if (::poll(&writable, 1, 0) == 0) {
        return;
    }
    int failure = 0;
    socklen_t size = sizeof failure;
    getsockopt(socketFd, SOL_SOCKET, SO_ERROR, &failure, &size);
    if (failure != 0) {
        close("cannot reach the editor at " + address() + ": " + std::strerror(failure));
        return;
    }
    // Key edits are small and should reach the editor at once.
    const int noDelay = 1;
    setsockopt(socketFd, IPPROTO_TCP, TCP_NODELAY, &noDelay, sizeof noDelay);
    state = State::Greeting;
    stateSince = Timer::ticks();
    send(reinterpret_cast<const unsigned char*>(ClientGreeting), sizeof ClientGreeting - 1);
}

void SyncEditorLink::receive() {
    unsigned char chunk[4096];
    bool peerClosed = false;
    while (inbox.size() < MostReadAFrame) {
        const ssize_t got = recv(socketFd, chunk, sizeof chunk, MSG_DONTWAIT);
        if (got > 0) {
            inbox.insert(inbox.end(), chunk, chunk + got);
        } else if (got == 0) {
            peerClosed = true;
            break;
        } else if (errno != EINTR) {
            if (errno != EAGAIN && errno != EWOULDBLOCK) {
                close(std::string("cannot read from the editor: ") + std::strerror(errno));
                return;
            }
            break;
        }
    }
    if (state == State::Greeting && !readGreeting()) {
        return;
    }
    if (state == State::Linked) {
        const size_t used = applyMessages();
        if (state != State::Linked) {
            return;
        }
        inbox.erase(inbox.begin(), inbox.begin() + static_cast<std::ptrdiff_t>(used));
    }
    if (peerClosed) {
        close(state == State::Greeting ? "the editor closed the link before its greeting"
              : inbox.empty()          ? "the editor closed the link"
                                       : "the editor closed the link in the middle of a message");
    }
}

// False once the greeting proves wrong and the link is closed.
bool SyncEditorLink::readGreeting() {
    const size_t got = std::min(inbox.size(), EditorGreetingSize);
    if (std::memcmp(inbox.data(), EditorGreeting, got) != 0) {
        close("the editor's greeting is not '" + std::string(EditorGreeting) + "'");
        return false;
    }
    if (got == EditorGreetingSize) {
        inbox.erase(inbox.begin(), inbox.begin() + static_cast<std::ptrdiff_t>(got));
        link();
    }
    return true;
}

// The editor is the master while linked: every track starts empty and takes its keys.
void SyncEditorLink::link() {
    state = State::Linked;
    rowSent = false;
    notedReadOnly = false;
    problem.clear();
    for (const Entry& entry : entries) {
        while (entry.track != nullptr && entry.track->size() > 0) {
            entry.track->deleteKeyframe(entry.track->getKeyframes().begin()->first);
        }
        unsigned char request[5] = {GetTrack};
        writeUnsigned(request + 1, static_cast<unsigned int>(entry.name.size()));
        send(request, sizeof request);
        send(reinterpret_cast<const unsigned char*>(entry.name.data()), entry.name.size());
    }
    std::cout << "[SyncEditor] linked to the editor at " << address() << ", " << entries.size()
              << " tracks" << std::endl;
}

// Applies every whole message waiting; returns the bytes they took.
size_t SyncEditorLink::applyMessages() {
    size_t used = 0;
    while (used < inbox.size()) {
        const size_t size = messageSize(inbox[used]);
        if (size == 0) {
            close("unknown command " + std::to_string(inbox[used]) + " from the editor");
            return 0;
        }
        if (inbox.size() - used < size) {
            break;
        }
        if (!apply(inbox.data() + used)) {
            return 0;
        }
        used += size;
    }
    return used;
}

bool SyncEditorLink::apply(const unsigned char* message) {
    switch (message[0]) {
    case SetKey:
        return setKey(message);
    case DeleteKey:
        return deleteKey(message);
    case SetRow:
        sentRow = readUnsigned(message + 1);
        rowSent = true;
        player.seek(sentRow);
        return true;
    case Pause:
        player.pause(message[1] != 0);
        return true;
    default:
        player.save();
        return true;
    }
}

// The entry a message names; null, with the link closed, when there is none.
const SyncEditorLink::Entry* SyncEditorLink::entryFor(unsigned int index) {
    if (index >= entries.size()) {
        close("the editor named track " + std::to_string(index) + " of " +
              std::to_string(entries.size()));
        return nullptr;
    }
    const Entry& entry = entries[index];
    if (entry.track == nullptr && !notedReadOnly) {
        notedReadOnly = true;
        std::cout << "[SyncEditor] '" << entry.name
                  << "' only shows when the instance draws: edit intervals in the sync text"
                  << std::endl;
    }
    return &entry;
}

bool SyncEditorLink::setKey(const unsigned char* message) {
    const Entry* entry = entryFor(readUnsigned(message + 1));
    const int interpolation = rocket::engineInterpolation(message[13]);
    if (entry != nullptr && interpolation < 0) {
        close("unknown key type " + std::to_string(message[13]) + " from the editor");
        return false;
    }
    if (entry != nullptr && entry->track != nullptr) {
        entry->track->addKeyframe(new TrackKeyFrameInterpolate(
            readUnsigned(message + 5), interpolation, readFloat(message + 9)));
    }
    return entry != nullptr;
}

bool SyncEditorLink::deleteKey(const unsigned char* message) {
    const Entry* entry = entryFor(readUnsigned(message + 1));
    const unsigned int row = readUnsigned(message + 5);
    // deleteKeyframe would take the key before an empty row: only an exact row goes.
    if (entry != nullptr && entry->track != nullptr && entry->track->rowExists(row)) {
        entry->track->deleteKeyframe(row);
    }
    return entry != nullptr;
}

void SyncEditorLink::sendRow(unsigned int row) {
    unsigned char message[5] = {SetRow};
    writeUnsigned(message + 1, row);
    send(message, sizeof message);
    sentRow = row;
    rowSent = true;
}

void SyncEditorLink::send(const unsigned char* bytes, size_t count) {
    outbox.insert(outbox.end(), bytes, bytes + count);
}

void SyncEditorLink::flush() {
    size_t sent = 0;
    while (sent < outbox.size()) {
        const ssize_t wrote = ::send(socketFd, outbox.data() + sent, outbox.size() - sent,
                                     MSG_NOSIGNAL | MSG_DONTWAIT);
        if (wrote > 0) {
            sent += static_cast<size_t>(wrote);
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            break;
        } else if (errno != EINTR) {
            close(std::string("cannot write to the editor: ") + std::strerror(errno));
            return;
        }
    }
    outbox.erase(outbox.begin(), outbox.begin() + static_cast<std::ptrdiff_t>(sent));
    if (outbox.size() > MostUnsent) {
        close("the editor stopped reading");
    }
}

void SyncEditorLink::close(const std::string& reason) {
    const bool wasLinked = state == State::Linked;
    if (socketFd >= 0) {
        ::close(socketFd);
        socketFd = -1;
    }
    state = State::Closed;
    inbox.clear();
    outbox.clear();
    // A refused attempt each second says so once, not every second.
    if (reason != problem || wasLinked) {
        std::cout << "[SyncEditor] " << reason << (wasLinked ? "; the demo plays on" : "")
                  << "; trying again every second" << std::endl;
    }
    problem = reason;
}
