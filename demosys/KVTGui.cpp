#include "KVTGui.h"

#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_PNG_Image.H>
#include <SDL.h>

#include <algorithm>

bool KVTGui::quit = true;
bool KVTGui::vsync = true;
bool KVTGui::fullscreen = true;
int KVTGui::quality = 0;
int KVTGui::antialiasing = 0;
int KVTGui::aspectWidth = 0;
int KVTGui::aspectHeight = 0;
int KVTGui::screenWidth = 0;
int KVTGui::screenHeight = 0;
std::vector<KVTGui::ScreenMode> KVTGui::screenModes;

namespace {

const char* const BANNER_FILE = "resources/graphics/LauncherBanner.png";

struct AspectClass {
    float minRatio;
    int width;
    int height;
    const char* tag;
};

// Widest first: a mode belongs to the first class whose ratio it reaches.
const AspectClass ASPECT_CLASSES[] = {
    {16.0f / 9.0f, 16, 9, "(16:9)"},
    {1.6f, 16, 10, "(16:10)"},
    {4.0f / 3.0f, 4, 3, "(4:3)"},
    {1.25f, 5, 4, "(5:4)"},
};

// The class of a mode, or null for one narrower than 5:4.
const AspectClass* aspectClassOf(const KVTGui::ScreenMode& mode) {
    const float ratio = static_cast<float>(mode.width) / static_cast<float>(mode.height);
    for (const AspectClass& aspect : ASPECT_CLASSES) {
        if (ratio >= aspect.minRatio) {
            return &aspect;
        }
    }
    return nullptr;
}

// Ends Fl::run(): it returns once no window is shown.
void hideAllWindows() {
    while (Fl_Window* window = Fl::first_window()) {
        window->hide();
    }
}

int choiceIndex(Fl_Widget* widget) {
    return static_cast<Fl_Choice*>(widget)->value();
}

bool isChecked(Fl_Widget* widget) {
    return static_cast<Fl_Check_Button*>(widget)->value() != 0;
}

Fl_Check_Button* checkButton(int x, int y, const char* label, const char* tooltip) {
    Fl_Check_Button* button = new Fl_Check_Button(x, y, 30, 30, label);
    button->align(FL_ALIGN_LEFT);
    button->tooltip(tooltip);
    button->value(1);
    return button;
}

} // namespace

KVTGui::KVTGui(int w, int h, const char* title)
    : Fl_Double_Window((Fl::w() - w) / 2, (Fl::h() - h) / 2, w, h, title) {
    // Until "Start!" is pressed, closing the dialog in any way means leaving.
    quit = true;
    addBanner();
    addScreenModeChoice();
    addCheckButtons();
    addQualityChoices();
    addButtons();
    end();
    show();
}

KVTGui::~KVTGui() = default;

// Keys no widget took arrive as shortcuts: the choices and buttons use only arrows and space.
int KVTGui::handle(int event) {
    if (event == FL_SHORTCUT && (Fl::event_key() == FL_Enter || Fl::event_key() == FL_KP_Enter)) {
        Initiate_CB(this, nullptr);
        return 1;
    }
    return Fl_Double_Window::handle(event);
}

void KVTGui::getScreenmodes() {
    SDL_Init(SDL_INIT_VIDEO);
    std::vector<ScreenMode> modes;
    const int count = SDL_GetNumDisplayModes(0);
    for (int i = 0; i < count; ++i) {
        SDL_DisplayMode mode;
        if (SDL_GetDisplayMode(0, i, &mode) != 0 || SDL_BYTESPERPIXEL(mode.format) != 4) {
            continue;
        }
        // SDL lists a size once for every refresh rate it offers.
        const bool listed = std::any_of(modes.begin(), modes.end(), [&](const ScreenMode& m) {
            return m.width == mode.w && m.height == mode.h;
        });
        if (!listed) {
            modes.push_back({mode.w, mode.h});
        }
    }
    screenModes = modes;
}

void KVTGui::setScreenmodes(std::vector<ScreenMode> modes) {
    screenModes = std::move(modes);
}

// The production's title art; without the picture the box stays empty.
void KVTGui::addBanner() {
    Fl_Box* banner = new Fl_Box(0, 0, 450, 100);
    logo = std::make_unique<Fl_PNG_Image>(BANNER_FILE);
    if (logo->fail() == 0) {
        banner->image(logo.get());
    }
}

void KVTGui::addScreenModeChoice() {
    if (screenModes.empty()) {
        getScreenmodes();
    }
    Fl_Choice* choice = new Fl_Choice(125, 120, 200, 25, "Available resolutions:");
    // The longest label would run past the dialog's left edge beside the choice: above it,
    // it keeps the dialog's font and lines up with the widgets.
    choice->align(FL_ALIGN_TOP_LEFT);
    for (const ScreenMode& mode : screenModes) {
        choice->add(modeLabel(mode).c_str(), 0, nullptr);
    }
    choice->callback(screenMode_CB);
    if (!screenModes.empty()) {
        choice->value(0);
        screenWidth = screenModes[0].width;
        screenHeight = screenModes[0].height;
    }
}

void KVTGui::addCheckButtons() {
    checkButton(175, 160, "Fullscreen: ", "Enable to view in fullscreen.")->callback(Fullscreen_CB);
    checkButton(325, 160, "Vertical sync: ", "Enable to force Wait for Vertical Sync.")
        ->callback(VSync_CB);
    // The choices start as the buttons show them.
    fullscreen = true;
    vsync = true;
}

void KVTGui::addQualityChoices() {
    Fl_Choice* samples = new Fl_Choice(125, 200, 100, 25, "Antialiasing: ");
    for (const char* entry : {"None", "2x", "4x", "6x", "8x"}) {
        samples->add(entry, 0, nullptr);
    }
    samples->callback(antialiasing_CB);
    samples->value(0);
    samples->do_callback();

    Fl_Choice* level = new Fl_Choice(300, 200, 100, 25, "Quality: ");
    for (const char* entry : {"Low", "Medium", "High", "Ultra"}) {
        level->add(entry, 0, nullptr);
    }
    level->callback(quality_CB);
    level->value(2);
    level->do_callback();
}

void KVTGui::addButtons() {
    Fl_Button* start = new Fl_Button(125, 240, 95, 40, "Start!");
    start->tooltip("Starts the Demo with the chosen resolution and settings.");
    start->callback(Initiate_CB);
    Fl_Button* exit = new Fl_Button(225, 240, 95, 40, "Exit!");
    exit->tooltip("Exit without watching the Demo.");
    exit->callback(Exit_CB);
}

std::string KVTGui::modeLabel(const ScreenMode& mode) {
    if (const AspectClass* aspect = aspectClassOf(mode)) {
        aspectLabel = aspect->tag;
    }
    return std::to_string(mode.width) + " X " + std::to_string(mode.height) + " " + aspectLabel;
}

void KVTGui::screenMode_CB(Fl_Widget* widget, void*) {
    const ScreenMode& mode = screenModes.at(choiceIndex(widget));
    screenWidth = mode.width;
    screenHeight = mode.height;
    if (const AspectClass* aspect = aspectClassOf(mode)) {
        aspectWidth = aspect->width;
        aspectHeight = aspect->height;
    }
}

void KVTGui::Fullscreen_CB(Fl_Widget* widget, void*) {
    fullscreen = isChecked(widget);
}

void KVTGui::VSync_CB(Fl_Widget* widget, void*) {
    vsync = isChecked(widget);
}

void KVTGui::antialiasing_CB(Fl_Widget* widget, void*) {
    antialiasing = choiceIndex(widget) * 2;
}

void KVTGui::quality_CB(Fl_Widget* widget, void*) {
    quality = choiceIndex(widget);
}

void KVTGui::Initiate_CB(Fl_Widget*, void*) {
    quit = false;
    hideAllWindows();
}

void KVTGui::Exit_CB(Fl_Widget*, void*) {
    quit = true;
    hideAllWindows();
}
