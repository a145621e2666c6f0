#pragma once

#include "ProgressBar.h"

class Texture;

// Brinova's loading display: a full-screen picture over which a second picture is uncovered
// from left to right in seven stages as loading goes on.
class BrinovaProgressBar : public ProgressBar {
public:
    BrinovaProgressBar() = default;
    ~BrinovaProgressBar() override;

    void draw() override;
    void loadData() override;

private:
    void drawBackground() const;
    void drawStages() const;
    void drawStage(int stage) const;

    Texture* background = nullptr;
    Texture* overlay = nullptr;
};
