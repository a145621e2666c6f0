#include "AuthoringOverlay.h"

#include "KVTDemosys.h"
#include "ResourceDefinition.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include <SDL.h>
#include <backends/imgui_impl_opengl2.h>
#include <backends/imgui_impl_sdl.h>
#include <imgui.h>

#include <algorithm>
#include <cstdio>

namespace {

const float LabelWidth = 140.0f;
const float RowHeight = 14.0f;
// Bar lines closer than this are thinned out to every second, fourth, ... bar.
const float NarrowestBar = 6.0f;

const ImU32 Background = IM_COL32(20, 20, 24, 200);
const ImU32 BarLine = IM_COL32(70, 70, 80, 255);
const ImU32 ToScreen = IM_COL32(80, 160, 230, 255);
const ImU32 ToTarget = IM_COL32(150, 110, 220, 255);
const ImU32 SectionMark = IM_COL32(240, 200, 60, 255);
const ImU32 LoopShade = IM_COL32(60, 200, 90, 60);
const ImU32 PlayHead = IM_COL32(255, 60, 60, 255);
const ImVec4 ProblemText(1.0f, 0.45f, 0.4f, 1.0f);

} // namespace

// Where the timeline lies in the window and how time maps onto it.
struct AuthoringOverlay::Timeline {
    ImVec2 origin;
    float width;
    float height;
    unsigned int end;
    unsigned int rowRate;

    float x(double ms) const { return origin.x + static_cast<float>(ms / end) * width; }
    unsigned int timeAt(float px) const {
        const float fraction = std::clamp((px - origin.x) / width, 0.0f, 1.0f);
        return static_cast<unsigned int>(fraction * end);
    }
    double rowMs(unsigned int row) const { return row * 1000.0 / rowRate; }
};

AuthoringOverlay::AuthoringOverlay() {
    ImGui::CreateContext();
    // The overlay keeps no settings between runs.
    ImGui::GetIO().IniFilename = nullptr;
    ImGui::StyleColorsDark();
    ImGui_ImplSDL2_InitForOpenGL(KVTDemosys::screen, KVTDemosys::glContext);
    ImGui_ImplOpenGL2_Init();
}

AuthoringOverlay::~AuthoringOverlay() {
    ImGui_ImplOpenGL2_Shutdown();
    ImGui_ImplSDL2_Shutdown();
    ImGui::DestroyContext();
}

bool AuthoringOverlay::handleEvent(const SDL_Event& event) {
    ImGui_ImplSDL2_ProcessEvent(&event);
    const bool mouse = event.type == SDL_MOUSEMOTION || event.type == SDL_MOUSEBUTTONDOWN ||
                       event.type == SDL_MOUSEBUTTONUP || event.type == SDL_MOUSEWHEEL;
    return mouse && ImGui::GetIO().WantCaptureMouse;
}

bool AuthoringOverlay::draw(const View& view, unsigned int& seekTo) {
    ImGui_ImplOpenGL2_NewFrame();
    ImGui_ImplSDL2_NewFrame();
    ImGui::NewFrame();
    const ImVec2 display = ImGui::GetIO().DisplaySize;
    const int groups = KVTDemosys::tracks->getSortedTrackGroupCount();
    const float timelineHeight = std::min((groups + 1) * RowHeight, display.y * 0.4f);
    const float problemsHeight = view.problems.empty() ? 0.0f : 4 * RowHeight;
    const float height = timelineHeight + problemsHeight + 2.5f * RowHeight;
    ImGui::SetNextWindowPos(ImVec2(0.0f, display.y - height));
    ImGui::SetNextWindowSize(ImVec2(display.x, height));
    ImGui::SetNextWindowBgAlpha(0.8f);
    ImGui::Begin("Timeline", nullptr,
                 ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove |
                     ImGuiWindowFlags_NoSavedSettings);
    ImGui::TextUnformatted(view.status.c_str());
    if (!view.problems.empty()) {
        ImGui::PushStyleColor(ImGuiCol_Text, ProblemText);
        ImGui::BeginChild("problems", ImVec2(0.0f, problemsHeight));
        ImGui::TextUnformatted(view.problems.c_str());
        ImGui::EndChild();
        ImGui::PopStyleColor();
    }
    const ImVec2 corner = ImGui::GetCursorScreenPos();
    const float width = std::max(ImGui::GetContentRegionAvail().x - LabelWidth, 1.0f);
    ImGui::SetCursorScreenPos(ImVec2(corner.x + LabelWidth, corner.y));
    ImGui::InvisibleButton("timeline", ImVec2(width, timelineHeight));
    const Timeline line{ImVec2(corner.x + LabelWidth, corner.y), width, timelineHeight,
                        std::max(view.end, 1u),
                        static_cast<unsigned int>(TrackSystem::globalRowRate())};
    drawTimeline(view, line, *ImGui::GetWindowDrawList());
    const ImVec2 mouse = ImGui::GetIO().MousePos;
    const bool seeking = ImGui::IsItemActive() && ImGui::IsMouseDown(ImGuiMouseButton_Left);
    if (seeking) {
        seekTo = line.timeAt(mouse.x);
    } else if (ImGui::IsItemHovered()) {
        showValues(view, line, mouse);
    }
    ImGui::End();
    ImGui::Render();
    ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData());
    return seeking;
}

void AuthoringOverlay::drawTimeline(const View& view, const Timeline& line,
                                    ImDrawList& list) const {
    const ImVec2 far(line.origin.x + line.width, line.origin.y + line.height);
    list.AddRectFilled(line.origin, far, Background);
    double barMs = view.grid->barMs();
    while (barMs / line.end * line.width < NarrowestBar) {
        barMs *= 2.0;
    }
    for (double ms = 0.0; ms <= line.end; ms += barMs) {
        list.AddLine(ImVec2(line.x(ms), line.origin.y), ImVec2(line.x(ms), far.y), BarLine);
    }
    if (view.loop != nullptr) {
        list.AddRectFilled(ImVec2(line.x(view.loop->start), line.origin.y),
                           ImVec2(line.x(view.loop->end), far.y), LoopShade);
    }
    drawIntervals(line, list);
    for (const ResourceDefinition::Section& section : KVTDemosys::resources->getSections()) {
        const float x = line.x(section.startMs);
        list.AddLine(ImVec2(x, line.origin.y), ImVec2(x, far.y), SectionMark, 2.0f);
        list.AddText(ImVec2(x + 3.0f, line.origin.y), SectionMark, section.name.c_str());
    }
    const float head = line.x(view.time);
    list.AddLine(ImVec2(head, line.origin.y), ImVec2(head, far.y), PlayHead, 2.0f);
}

// One row a group, in draw order, its name left of the timeline.
void AuthoringOverlay::drawIntervals(const Timeline& line, ImDrawList& list) const {
    const TrackSystem& tracks = *KVTDemosys::tracks;
    for (int i = 0; i < tracks.getSortedTrackGroupCount(); ++i) {
        const TrackGroup* group = tracks.getSortedTrackGroup(i);
        const float top = line.origin.y + (i + 1) * RowHeight;
        if (top + RowHeight > line.origin.y + line.height + 0.5f) {
            break;
        }
        list.AddText(ImVec2(line.origin.x - LabelWidth, top), IM_COL32_WHITE,
                     group->getName().c_str());
        const TrackStartStopKeyFrame* start = nullptr;
        for (const auto& entry : group->getStartStopTrack()->getKeyframes()) {
            const auto* key = static_cast<const TrackStartStopKeyFrame*>(entry.second);
            if (key->type == TrackKeyFrame::START) {
                start = key;
            } else if (start != nullptr) {
                list.AddRectFilled(ImVec2(line.x(line.rowMs(start->row)), top + 2.0f),
                                   ImVec2(line.x(line.rowMs(key->row)), top + RowHeight - 2.0f),
                                   start->fbo == nullptr ? ToScreen : ToTarget);
                start = nullptr;
            }
        }
    }
}

// The hovered group's name, where it draws, and its tracks' values at the play head.
void AuthoringOverlay::showValues(const View& view, const Timeline& line,
                                  const ImVec2& mouse) const {
    const int row = static_cast<int>((mouse.y - line.origin.y) / RowHeight) - 1;
    const TrackSystem& tracks = *KVTDemosys::tracks;
    if (row < 0 || row >= tracks.getSortedTrackGroupCount()) {
        return;
    }
    const TrackGroup* group = tracks.getSortedTrackGroup(row);
    const unsigned int clockRow = view.time * line.rowRate / 1000;
    ImGui::BeginTooltip();
    ImGui::Text("%s (%s)", group->getName().c_str(),
                group->isActive(view.time, clockRow) ? "drawing" : "idle");
    for (int i = 0; i < group->getInterpolateTrackCount(); ++i) {
        const TrackInterpolate* track = group->getInterpolateTrack(i);
        ImGui::Text("%-16s %8.3f", track->getName().c_str(), track->getValue(view.time));
    }
    ImGui::EndTooltip();
}
