#pragma once

#include <memory>
#include <vector>

class Texture;

// A sprite picture at a series of halved sizes, each a plain texture without mipmaps. A
// layer of sprites draws with the one that matches its size in pixels, so a sprite a few
// pixels across shows the picture's average light instead of single samples of its thin
// ring and bright nucleus, which twinkle as the sprite moves across pixel centres. Plain
// textures keep the software renderer on its fast path, which mipmaps would leave.
class SpriteLevels {
public:
    // The picture's own texture and its halvings down to SMALLEST texels; reads the
    // picture back, so it needs a current context.
    explicit SpriteLevels(Texture* picture);
    ~SpriteLevels();
    SpriteLevels(const SpriteLevels&) = delete;
    SpriteLevels& operator=(const SpriteLevels&) = delete;

    static constexpr int SMALLEST = 4;

    // The smallest level at least `pixels` across (bilinear sampling holds up to two
    // texels a pixel), or the picture itself for sprites larger than it.
    Texture* forPixels(float pixels) const;

private:
    Texture* picture;
    int pictureSize = 0;
    // Half the picture's size, then half of that, and so on.
    std::vector<std::unique_ptr<Texture>> halvings;
};
