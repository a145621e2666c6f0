#include "ProgressBar.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Records the progress each redraw would show, without drawing.
class RecordingBar : public ProgressBar {
public:
    using ProgressBar::ProgressBar;
    void draw() override { shown.push_back(getProgress()); }
    std::vector<float> shown;
};

} // namespace

TEST(ProgressBar, EachTickRedrawsTheShareDoneBeforeIt) {
    RecordingBar bar(0.09f, 1.2f, 0.0f, 4);
    for (int i = 0; i < 4; ++i) {
        bar.tick();
    }
    EXPECT_EQ(bar.shown, (std::vector<float>{0.0f, 0.25f, 0.5f, 0.75f}));
    EXPECT_EQ(bar.getTicksDone(), 4);
}

TEST(ProgressBar, TicksPastTheLastStepChangeNothing) {
    RecordingBar bar;
    bar.setTicks(2);
    for (int i = 0; i < 5; ++i) {
        bar.tick();
    }
    EXPECT_EQ(bar.shown.size(), 2u);
    EXPECT_EQ(bar.getTicksDone(), 2);
    EXPECT_FLOAT_EQ(bar.getProgress(), 0.5f);

    RecordingBar empty;
    empty.setTicks(0);
    empty.tick();
    EXPECT_TRUE(empty.shown.empty());
}
