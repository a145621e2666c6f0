// The frame loop in-process on the test card: window events reach the screen metrics and
// Escape ends the loop after the frame that saw it.
#include "Demo.h"
#include "FrameListener.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "ScreenMetrics.h"
#include "TestCard.h"

#include <SDL.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

// Sends a resize on the first frame and Escape on the third.
class EventSender : public FrameListener {
public:
    void beforeFrame() override {
        ++frame;
        SDL_Event event{};
        if (frame == 1) {
            event.type = SDL_WINDOWEVENT;
            event.window.event = SDL_WINDOWEVENT_SIZE_CHANGED;
            event.window.windowID = SDL_GetWindowID(KVTDemosys::screen);
            event.window.data1 = 320;
            event.window.data2 = 240;
            SDL_PushEvent(&event);
        } else if (frame == 3) {
            event.type = SDL_KEYDOWN;
            event.key.keysym.sym = SDLK_ESCAPE;
            SDL_PushEvent(&event);
        }
    }
    int frame = 0;
};

} // namespace

TEST(DemoLoop, ResizeReachesTheMetricsAndEscapeQuits) {
    std::filesystem::current_path(TESTCARD_FOLDER);
    ScreenMetrics metrics;
    testcard::installForLoop(metrics);
    EventSender sender;
    Demo demo(0, nullptr);
    demo.setFrameListener(&sender);

    testing::internal::CaptureStdout();
    ASSERT_TRUE(demo.load(&metrics, KVTIO::KVT_RESOURCES_FLAT));
    demo.init();
    demo.run();
    std::string out = testing::internal::GetCapturedStdout();
    demo.dispose();
    delete KVTDemosys::resources;

    EXPECT_EQ(sender.frame, 3) << "the loop ends after the frame that saw Escape";
    EXPECT_EQ(KVTDemosys::frames, 3u);
    EXPECT_NE(out.find("Screen resize (320,240)"), std::string::npos) << out;
    EXPECT_EQ(metrics.getViewportY(), 30) << "240 high with a 180 high 16:9 picture";
    EXPECT_EQ(metrics.getViewportHeight(), 180);
    EXPECT_NE(out.find("FPS = "), std::string::npos);
}
