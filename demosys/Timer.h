#pragma once

#include <string>

// The demo clock and its plain implementation, counting milliseconds from a tick source
// (SDL's millisecond ticks unless replaced). A new clock stands paused until play().
// The music clock derives from it and replaces its sources of time.
class Timer {
public:
    enum SoundChannel { LEFT = 0, RIGHT = 1, CHANNEL_2 = 2, CHANNEL_3 = 3 };
    using TickSource = unsigned int (*)();

    explicit Timer(unsigned int rowRate);
    virtual ~Timer();

    virtual bool init();
    virtual bool dispose();
    virtual void pause();
    virtual void play();
    virtual unsigned int getTime();
    // Start time of the current row.
    virtual unsigned int getRowTime();
    virtual unsigned int getRow();
    virtual void setRow(unsigned int row);
    virtual void setTime(unsigned int time);
    virtual bool isPaused();
    virtual unsigned int getEndTime();
    virtual unsigned int getEndRow();
    // Milliseconds since the previous call (0 while paused): the frame's time step.
    virtual unsigned int updateFrameTime(unsigned int time);
    virtual void updateSystem();
    virtual std::string getMessage();
    // Without music: count values of 1 / (rand() % 10000), noise that keeps
    // spectrum-driven effects moving.
    virtual void GetDirectSoundData(SoundChannel channel, int count, float* out);

    // Replaces the tick source for every clock (tests); null restores SDL's ticks.
    static void setTickSource(TickSource source);
    static unsigned int ticks();

protected:
    unsigned int rowRate;
    bool paused = true;
    std::string message;
    unsigned int endRow = 0;
    unsigned int startTicks = 0;
    unsigned int pauseTicks = 0;
    unsigned int lastFrameTime = 0;
    unsigned int endTime = 0;

private:
    static TickSource tickSource;
};
