#pragma once

#include <FL/Fl_Double_Window.H>

#include <memory>
#include <string>
#include <vector>

class Fl_PNG_Image;
class Fl_Widget;

// The launcher: a small dialog in which the viewer picks a screen mode, full screen, vertical
// sync, anti-aliasing and quality, then starts or leaves. The choices live in static members
// that outlive the dialog; the program reads them once Fl::run() returns.
class KVTGui : public Fl_Double_Window {
public:
    struct ScreenMode {
        int width;
        int height;
    };

    // Builds the dialog centred on the display and shows it.
    KVTGui(int w, int h, const char* title);
    ~KVTGui() override;

    // Enter (main or keypad) starts, wherever the focus is; Escape leaves, as the window's
    // close control does.
    int handle(int event) override;

    static int getScreenWidth() { return screenWidth; }
    static int getScreenHeight() { return screenHeight; }
    static int getAspectWidth() { return aspectWidth; }
    static int getAspectHeight() { return aspectHeight; }
    static int getAntialiasing() { return antialiasing; }
    static int getQuality() { return quality; }
    static bool getFullscreen() { return fullscreen; }
    static bool getVSync() { return vsync; }
    // True unless the dialog ended with "Start!".
    static bool checkQuit() { return quit; }

    // Lists the 32-bit display modes of display 0 from SDL, in SDL's order, each size once.
    static void getScreenmodes();
    // Offers these modes instead of SDL's (a dialog built afterwards lists them).
    static void setScreenmodes(std::vector<ScreenMode> modes);
    static const std::vector<ScreenMode>& getScreenModeList() { return screenModes; }

    static void screenMode_CB(Fl_Widget* widget, void*);
    static void Fullscreen_CB(Fl_Widget* widget, void*);
    static void VSync_CB(Fl_Widget* widget, void*);
    static void antialiasing_CB(Fl_Widget* widget, void*);
    static void quality_CB(Fl_Widget* widget, void*);
    static void Initiate_CB(Fl_Widget* widget, void*);
    static void Exit_CB(Fl_Widget* widget, void*);

private:
    void addBanner();
    void addScreenModeChoice();
    void addCheckButtons();
    void addQualityChoices();
    void addButtons();
    // "W X H (tag)"; a mode narrower than 5:4 keeps the tag of the mode before it.
    std::string modeLabel(const ScreenMode& mode);

    static bool quit;
    static bool vsync;
    static bool fullscreen;
    static int quality;
    static int antialiasing;
    static int aspectWidth;
    static int aspectHeight;
    static int screenWidth;
    static int screenHeight;
    static std::vector<ScreenMode> screenModes;

    std::string aspectLabel;
    std::unique_ptr<Fl_PNG_Image> logo;
};
