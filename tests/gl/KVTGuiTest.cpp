#include "KVTGui.h"

// Before FLTK: X11's headers define None, a name gtest uses.
#include <gtest/gtest.h>

#include <FL/Fl.H>
#include <FL/Fl_Box.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>
#include <FL/Fl_Image.H>
#include <FL/fl_draw.H>
#include <SDL.h>
#include <stb_image_write.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Modes = std::vector<KVTGui::ScreenMode>;

// One dialog at a time, built from a working folder that holds the banner picture or not.
class Launcher : public testing::Test {
protected:
    void SetUp() override { previous = fs::current_path(); }
    void TearDown() override {
        gui.reset();
        fs::current_path(previous);
        if (!emptyFolder.empty()) {
            fs::remove_all(emptyFolder);
        }
    }

    KVTGui& open(const Modes& modes, bool withBanner = true) {
        KVTGui::setScreenmodes(modes);
        if (withBanner) {
            fs::current_path(BRINOVA_BIN_DIR);
        } else {
            std::string pattern = "/tmp/brinova-launcher-XXXXXX";
            emptyFolder = mkdtemp(pattern.data());
            fs::current_path(emptyFolder);
        }
        gui = std::make_unique<KVTGui>(450, 300, "Korvath Demosys v.1.0");
        return *gui;
    }

    template <class Widget> Widget* child(int index) {
        Widget* widget = dynamic_cast<Widget*>(gui->child(index));
        EXPECT_NE(widget, nullptr) << "child " << index;
        return widget;
    }

    std::vector<std::string> entries(int index) {
        Fl_Choice* choice = child<Fl_Choice>(index);
        std::vector<std::string> texts;
        for (int i = 0; i + 1 < choice->size(); ++i) {
            texts.push_back(choice->text(i));
        }
        return texts;
    }

    // Picks entry i of a choice as the viewer would.
    void pick(int index, int entry) {
        Fl_Choice* choice = child<Fl_Choice>(index);
        choice->value(entry);
        choice->do_callback();
    }

    void toggle(int index) {
        Fl_Check_Button* button = child<Fl_Check_Button>(index);
        button->value(!button->value());
        button->do_callback();
    }

    // Runs the dialog as the program does and lets the viewer use the widget (a button, or
    // the window for its close control); true when Fl::run() returned by itself, not through
    // the guard that ends a dialog that would not close.
    bool runUntilClosed(Fl_Widget* used) {
        static bool guardFired;
        guardFired = false;
        auto use = [](void* widget) { static_cast<Fl_Widget*>(widget)->do_callback(); };
        auto guard = [](void* dialog) {
            guardFired = true;
            static_cast<KVTGui*>(dialog)->hide();
        };
        Fl::add_timeout(0.05, use, used);
        Fl::add_timeout(5.0, guard, gui.get());
        Fl::run();
        Fl::remove_timeout(guard, gui.get());
        return !guardFired;
    }

    fs::path previous;
    std::string emptyFolder;
    std::unique_ptr<KVTGui> gui;
};

enum Child { BANNER, MODES, FULLSCREEN, VSYNC, ANTIALIASING, QUALITY, START, EXIT, COUNT };

struct Layout {
    int x, y, w, h;
    const char* label;
    const char* tooltip;
};

const Layout LAYOUT[COUNT] = {
    {0, 0, 450, 100, nullptr, nullptr},
    {125, 120, 200, 25, "Available resolutions:", nullptr},
    {175, 160, 30, 30, "Fullscreen: ", "Enable to view in fullscreen."},
    {325, 160, 30, 30, "Vertical sync: ", "Enable to force Wait for Vertical Sync."},
    {125, 200, 100, 25, "Antialiasing: ", nullptr},
    {300, 200, 100, 25, "Quality: ", nullptr},
    {125, 240, 95, 40, "Start!", "Starts the Demo with the chosen resolution and settings."},
    {225, 240, 95, 40, "Exit!", "Exit without watching the Demo."},
};

std::string text(const char* s) {
    return s == nullptr ? "(none)" : s;
}

} // namespace

TEST_F(Launcher, TheDialogHoldsItsWidgetsInOrder) {
    KVTGui& dialog = open({{1920, 1080}});
    EXPECT_EQ(text(dialog.label()), "Korvath Demosys v.1.0");
    EXPECT_EQ(dialog.x(), (Fl::w() - 450) / 2);
    EXPECT_EQ(dialog.y(), (Fl::h() - 300) / 2);
    EXPECT_TRUE(dialog.shown());
    ASSERT_EQ(dialog.children(), COUNT);
    for (int i = 0; i < COUNT; ++i) {
        const Fl_Widget* w = dialog.child(i);
        EXPECT_EQ(w->x(), LAYOUT[i].x) << "child " << i;
        EXPECT_EQ(w->y(), LAYOUT[i].y) << "child " << i;
        EXPECT_EQ(w->w(), LAYOUT[i].w) << "child " << i;
        EXPECT_EQ(w->h(), LAYOUT[i].h) << "child " << i;
        EXPECT_EQ(text(w->label()), text(LAYOUT[i].label)) << "child " << i;
        EXPECT_EQ(text(w->tooltip()), text(LAYOUT[i].tooltip)) << "child " << i;
    }
    child<Fl_Box>(BANNER);
    child<Fl_Button>(START);
    child<Fl_Button>(EXIT);
    EXPECT_EQ(entries(ANTIALIASING), (std::vector<std::string>{"None", "2x", "4x", "6x", "8x"}));
    EXPECT_EQ(entries(QUALITY), (std::vector<std::string>{"Low", "Medium", "High", "Ultra"}));
}

TEST_F(Launcher, StartsWithTheFirstModeEverythingOnAndHighQuality) {
    open({{1280, 1024}, {1920, 1080}});
    EXPECT_EQ(child<Fl_Choice>(MODES)->value(), 0);
    EXPECT_EQ(KVTGui::getScreenWidth(), 1280);
    EXPECT_EQ(KVTGui::getScreenHeight(), 1024);
    EXPECT_EQ(child<Fl_Check_Button>(FULLSCREEN)->value(), 1);
    EXPECT_EQ(child<Fl_Check_Button>(VSYNC)->value(), 1);
    EXPECT_TRUE(KVTGui::getFullscreen());
    EXPECT_TRUE(KVTGui::getVSync());
    EXPECT_EQ(child<Fl_Choice>(ANTIALIASING)->value(), 0);
    EXPECT_EQ(KVTGui::getAntialiasing(), 0);
    EXPECT_EQ(child<Fl_Choice>(QUALITY)->value(), 2);
    EXPECT_EQ(KVTGui::getQuality(), 2);
    EXPECT_TRUE(KVTGui::checkQuit());
}

// The thresholds are inclusive; a mode narrower than 5:4 repeats the tag before it.
TEST_F(Launcher, EachModeIsTaggedWithItsAspect) {
    open({{1920, 1080},
          {1776, 1000},
          {1280, 800},
          {1152, 720},
          {1024, 768},
          {1280, 1024},
          {1024, 1024},
          {640, 480},
          {720, 576},
          {600, 800}});
    EXPECT_EQ(entries(MODES), (std::vector<std::string>{"1920 X 1080 (16:9)", "1776 X 1000 (16:10)",
                                                        "1280 X 800 (16:10)", "1152 X 720 (16:10)",
                                                        "1024 X 768 (4:3)", "1280 X 1024 (5:4)",
                                                        "1024 X 1024 (5:4)", "640 X 480 (4:3)",
                                                        "720 X 576 (5:4)", "600 X 800 (5:4)"}));
}

TEST_F(Launcher, ANarrowFirstModeHasNoTag) {
    open({{800, 800}, {1024, 768}});
    EXPECT_EQ(entries(MODES), (std::vector<std::string>{"800 X 800 ", "1024 X 768 (4:3)"}));
}

TEST_F(Launcher, ChoicesReachTheStaticSettings) {
    open({{1920, 1080}, {1280, 800}, {800, 800}});
    pick(MODES, 1);
    EXPECT_EQ(KVTGui::getScreenWidth(), 1280);
    EXPECT_EQ(KVTGui::getScreenHeight(), 800);
    EXPECT_EQ(KVTGui::getAspectWidth(), 16);
    EXPECT_EQ(KVTGui::getAspectHeight(), 10);
    pick(MODES, 2); // too narrow for a class: the aspect stays
    EXPECT_EQ(KVTGui::getScreenWidth(), 800);
    EXPECT_EQ(KVTGui::getAspectWidth(), 16);
    EXPECT_EQ(KVTGui::getAspectHeight(), 10);
    pick(MODES, 0);
    EXPECT_EQ(KVTGui::getAspectHeight(), 9);

    pick(ANTIALIASING, 3);
    EXPECT_EQ(KVTGui::getAntialiasing(), 6);
    pick(ANTIALIASING, 4);
    EXPECT_EQ(KVTGui::getAntialiasing(), 8);
    pick(QUALITY, 0);
    EXPECT_EQ(KVTGui::getQuality(), 0);
    toggle(FULLSCREEN);
    EXPECT_FALSE(KVTGui::getFullscreen());
    EXPECT_TRUE(KVTGui::getVSync());
    toggle(VSYNC);
    EXPECT_FALSE(KVTGui::getVSync());
}

TEST_F(Launcher, StartEndsTheDialogToWatch) {
    open({{1280, 720}});
    EXPECT_TRUE(runUntilClosed(child<Fl_Button>(START)));
    EXPECT_FALSE(KVTGui::checkQuit());
    EXPECT_FALSE(gui->shown());
}

// Enter starts from wherever the focus is (the list of modes has it first); Escape leaves.
TEST_F(Launcher, TheKeyboardStartsAndLeaves) {
    for (int key : {FL_Enter, FL_KP_Enter, FL_Escape}) {
        open({{1280, 720}});
        child<Fl_Choice>(MODES)->take_focus();
        Fl::e_keysym = key;
        Fl::handle(FL_KEYBOARD, gui.get());
        EXPECT_EQ(KVTGui::checkQuit(), key == FL_Escape) << key;
        EXPECT_FALSE(gui->shown()) << key;
        gui.reset();
    }
}

TEST_F(Launcher, ExitEndsTheDialogToLeave) {
    open({{1280, 720}});
    EXPECT_TRUE(runUntilClosed(child<Fl_Button>(EXIT)));
    EXPECT_TRUE(KVTGui::checkQuit());
    EXPECT_FALSE(gui->shown());
}

// The window's close control runs the window's own callback; a dialog opened after one that
// was started still means leaving when it is closed.
TEST_F(Launcher, ClosingTheWindowMeansLeaving) {
    open({{1280, 720}});
    ASSERT_TRUE(runUntilClosed(child<Fl_Button>(START)));
    gui.reset();
    open({{1280, 720}});
    EXPECT_TRUE(runUntilClosed(gui.get()));
    EXPECT_TRUE(KVTGui::checkQuit());
}

TEST_F(Launcher, TheDisplaysModesComeFromSDL) {
    KVTGui::getScreenmodes();
    const Modes& modes = KVTGui::getScreenModeList();
    SDL_DisplayMode desktop;
    ASSERT_EQ(SDL_GetDesktopDisplayMode(0, &desktop), 0);
    ASSERT_FALSE(modes.empty());
    bool hasDesktop = false;
    for (std::size_t i = 0; i < modes.size(); ++i) {
        hasDesktop = hasDesktop || (modes[i].width == desktop.w && modes[i].height == desktop.h);
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_FALSE(modes[i].width == modes[j].width && modes[i].height == modes[j].height);
        }
    }
    EXPECT_TRUE(hasDesktop);
}

TEST_F(Launcher, WithoutTheBannerPictureTheBoxStaysEmpty) {
    open({{1280, 720}}, false);
    EXPECT_EQ(child<Fl_Box>(BANNER)->image(), nullptr);
}

// The dialog as shown, saved as Launcher.png for a look: the banner's dark title art fills
// its 390 x 49 place in the middle of the top box, the window's grey around it.
TEST_F(Launcher, TheBannerShowsAtTheTop) {
    Fl::scheme("gtk+");
    KVTGui& dialog = open({{1920, 1080}, {1280, 720}});
    const Fl_Image* banner = child<Fl_Box>(BANNER)->image();
    ASSERT_NE(banner, nullptr);
    EXPECT_EQ(banner->w(), 390);
    EXPECT_EQ(banner->h(), 49);
    for (int i = 0; i < 20; ++i) {
        Fl::wait(0.02);
    }
    dialog.make_current();
    std::unique_ptr<uchar[]> rgb(fl_read_image(nullptr, 0, 0, 450, 300));
    ASSERT_NE(rgb, nullptr);
    fs::current_path(previous);
    stbi_write_png("Launcher.png", 450, 300, 3, rgb.get(), 450 * 3);

    auto brightness = [&](int x, int y) {
        const uchar* p = rgb.get() + (y * 450 + x) * 3;
        return p[0] + p[1] + p[2];
    };
    long bannerSum = 0;
    for (int y = 26; y < 74; ++y) {
        for (int x = 31; x < 419; ++x) {
            bannerSum += brightness(x, y);
        }
    }
    const long bannerMean = bannerSum / (48 * 388);
    EXPECT_LT(bannerMean, brightness(10, 10) / 2) << "the banner is darker than the window";
    EXPECT_EQ(brightness(10, 10), brightness(440, 90)) << "plain window around the banner";
}
