#include "Authoring.h"

#include "AuthoringOverlay.h"
#include "FileWatcher.h"
#include "KVTDemosys.h"
#include "ResourceDefinition.h"
#include "ShaderReloader.h"
#include "SyncEditorLink.h"
#include "Timer.h"
#include "TrackReload.h"
#include "TrackSystem.h"

#include <SDL.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>

namespace fs = std::filesystem;

namespace {

const unsigned int TitleIntervalMs = 100;
const unsigned int FpsIntervalMs = 500;
const int BarsAPage = 8;

std::string firstExisting(const std::vector<fs::path>& candidates, bool folder) {
    for (const fs::path& path : candidates) {
        std::error_code failure;
        if (folder ? fs::is_directory(path, failure) : fs::is_regular_file(path, failure)) {
            return path.string();
        }
    }
    return "";
}

// The one ".sync" file directly in folder; empty when there is none or more than one.
fs::path onlySyncText(const fs::path& folder) {
    fs::path found;
    std::error_code failure;
    for (fs::directory_iterator it(folder, failure), end; !failure && it != end;
         it.increment(failure)) {
        if (it->path().extension() == ".sync") {
            if (!found.empty()) {
                return {};
            }
            found = it->path();
        }
    }
    return found;
}

std::string clockText(unsigned int ms) {
    char text[32];
    std::snprintf(text, sizeof text, "%02u:%02u:%03u", ms / 60000, ms / 1000 % 60, ms % 1000);
    return text;
}

} // namespace

Authoring::Sources Authoring::findSources(const std::string& folder) {
    const fs::path root(folder);
    return Sources{firstExisting({root / "shaders", root / "resources" / "shaders"}, true),
                   firstExisting({onlySyncText(root), onlySyncText(root / "sync")}, false)};
}

Authoring::Authoring(const Sources& where)
    : sources(where), musicGrid(KVTDemosys::resources->getTempo()),
      watcher(std::make_unique<FileWatcher>()), overlay(std::make_unique<AuthoringOverlay>()) {
    if (!sources.shaderFolder.empty()) {
        watcher->watchFolder(sources.shaderFolder);
        shaders = std::make_unique<ShaderReloader>(sources.shaderFolder);
    }
    if (!sources.syncText.empty()) {
        watcher->watchFile(sources.syncText);
    }
    std::cout << "[Authoring] shaders from '" << sources.shaderFolder << "', sync text '"
              << sources.syncText << "'" << std::endl;
    lastWatch = fpsSince = Timer::ticks();
}

Authoring::~Authoring() = default;

unsigned int Authoring::endTime() const {
    return KVTDemosys::DemoEndTime.getTicks();
}

bool Authoring::paused() const {
    return KVTDemosys::timer->isPaused();
}

unsigned int Authoring::time() const {
    return KVTDemosys::timer->getTime();
}

void Authoring::beforeFrame() {
    if (editorLink != nullptr) {
        editorLink->poll();
    }
    const unsigned int now = Timer::ticks();
    if (now - lastWatch >= WatchIntervalMs) {
        lastWatch = now;
        reloadChanged();
    }
    const unsigned int at = time();
    if (looping && at >= loopSpan.end) {
        seek(loopSpan.start);
    } else if (!endQuits && !paused() && at >= endTime()) {
        KVTDemosys::timer->pause();
        seek(endTime());
    }
}

void Authoring::afterFrame() {
    countFrame();
    if (showOverlay) {
        AuthoringOverlay::View view{time(), endTime(), &musicGrid, loop(), status(), lastProblems};
        unsigned int clicked = 0;
        if (overlay->draw(view, clicked)) {
            seek(clicked);
        }
    }
    const unsigned int now = Timer::ticks();
    if (now - lastTitle >= TitleIntervalMs) {
        lastTitle = now;
        SDL_SetWindowTitle(KVTDemosys::screen, status().c_str());
    }
}

void Authoring::countFrame() {
    ++fpsFrames;
    const unsigned int now = Timer::ticks();
    if (now - fpsSince >= FpsIntervalMs) {
        framesPerSecond = fpsFrames * 1000.0 / (now - fpsSince);
        fpsFrames = 0;
        fpsSince = now;
    }
}

std::string Authoring::status() const {
    const unsigned int at = time();
    char fps[32];
    std::snprintf(fps, sizeof fps, "%.1f fps", framesPerSecond);
    return clockText(at) + " | row " + std::to_string(KVTDemosys::timer->getRow()) + " | " +
           musicGrid.barBeat(at) + " | " + fps + (paused() ? " | paused" : "") +
           (looping ? " | loop" : "");
}

bool Authoring::handleEvent(const SDL_Event& event) {
    if (event.type == SDL_KEYDOWN &&
        handleKey(event.key.keysym.sym, (event.key.keysym.mod & KMOD_SHIFT) != 0)) {
        lastTitle = 0;
        return true;
    }
    return showOverlay && overlay->handleEvent(event);
}

bool Authoring::handleKey(int key, bool shift) {
    switch (key) {
    case SDLK_SPACE:
        togglePause();
        return true;
    case SDLK_LEFT:
    case SDLK_RIGHT: {
        const int direction = key == SDLK_RIGHT ? 1 : -1;
        shift ? stepBars(direction) : stepBeats(direction);
        return true;
    }
    case SDLK_PAGEUP:
    case SDLK_PAGEDOWN:
        stepBars(key == SDLK_PAGEDOWN ? BarsAPage : -BarsAPage);
        return true;
    case SDLK_HOME:
        toStart();
        return true;
    case SDLK_l:
        toggleLoop();
        return true;
    case SDLK_r:
        reloadAll();
        return true;
    case SDLK_F1:
        toggleOverlay();
        return true;
    default:
        return false;
    }
}

void Authoring::togglePause() {
    paused() ? KVTDemosys::timer->play() : KVTDemosys::timer->pause();
}

void Authoring::setPaused(bool flag) {
    if (flag != paused()) {
        togglePause();
    }
}

void Authoring::connectEditor(const std::string& host, unsigned short port) {
    SyncEditorLink::Player player{
        [] { return KVTDemosys::timer->getRow(); }, [this] { return !paused(); },
        [this](unsigned int row) { seek(row * 1000 / TrackSystem::globalRowRate()); },
        [this](bool flag) { setPaused(flag); }, [this] { saveTracks(); }};
    editorLink =
        std::make_unique<SyncEditorLink>(host, port, *KVTDemosys::tracks, std::move(player));
}

void Authoring::saveTracks() {
    std::string error;
    if (sources.syncText.empty()) {
        report({"No sync text to save the tracks into"});
    } else if (saveTracksInto(sources.syncText, *KVTDemosys::tracks, error)) {
        std::cout << "[Authoring] saved the tracks into " << sources.syncText << std::endl;
    } else {
        report({"The tracks were not saved: " + error});
    }
}

void Authoring::seek(unsigned int to) {
    KVTDemosys::timer->setTime(std::min(to, endTime()));
}

void Authoring::stepBeats(int count) {
    seek(MusicGrid::step(time(), musicGrid.beatMs(), count));
}

void Authoring::stepBars(int count) {
    seek(MusicGrid::step(time(), musicGrid.barMs(), count));
}

void Authoring::toStart() {
    seek(KVTDemosys::DemoStartTime.getTicks());
}

Authoring::Span Authoring::sectionAround(unsigned int at) const {
    Span span{0, std::min(endTime(), KVTDemosys::timer->getEndTime())};
    for (const ResourceDefinition::Section& section : KVTDemosys::resources->getSections()) {
        if (section.startMs <= at) {
            span.start = section.startMs;
        } else {
            span.end = std::min(span.end, section.startMs);
            break;
        }
    }
    return span;
}

void Authoring::toggleLoop() {
    looping = !looping;
    if (looping) {
        loopSpan = sectionAround(time());
        std::cout << "[Authoring] looping " << clockText(loopSpan.start) << " to "
                  << clockText(loopSpan.end) << std::endl;
    }
}

void Authoring::toggleOverlay() {
    showOverlay = !showOverlay;
}

void Authoring::reloadChanged() {
    std::vector<std::string> changed = watcher->changes();
    if (changed.empty()) {
        return;
    }
    std::vector<std::string> errors;
    const auto syncText = std::find(changed.begin(), changed.end(), sources.syncText);
    if (syncText != changed.end()) {
        changed.erase(syncText);
        reloadSyncText(errors);
    }
    if (!changed.empty() && shaders != nullptr) {
        const int rebuilt = shaders->rebuildUsers(changed, errors);
        std::cout << "[Authoring] " << changed.front() << " changed: rebuilt " << rebuilt
                  << " shaders" << std::endl;
    }
    report(errors);
}

void Authoring::reloadAll() {
    std::vector<std::string> errors;
    if (shaders != nullptr) {
        const int rebuilt = shaders->rebuildAll(errors);
        std::cout << "[Authoring] rebuilt " << rebuilt << " shaders" << std::endl;
    }
    reloadSyncText(errors);
    report(errors);
}

void Authoring::reloadSyncText(std::vector<std::string>& errors) {
    if (sources.syncText.empty()) {
        return;
    }
    std::string error;
    if (reloadTracks(sources.syncText, *KVTDemosys::tracks, error)) {
        std::cout << "[Authoring] reloaded the sync text " << sources.syncText << std::endl;
    } else {
        errors.push_back("The sync tracks stay as they were: " + error);
    }
}

void Authoring::report(const std::vector<std::string>& errors) {
    lastProblems.clear();
    for (const std::string& error : errors) {
        std::cout << "[Authoring] " << error << std::endl;
        lastProblems += error + "\n";
    }
}
