#include "SpriteLevels.h"

#include "Texture.h"

#include <GL/glew.h>

#include <cstddef>

namespace {

using Texels = std::vector<unsigned char>;

// Each texel the mean of a 2 x 2 block. The picture's alpha is straight, so colours are
// averaged weighted by alpha: clear texels lend no colour to their neighbours.
Texels halve(const Texels& texels, int size) {
    const int half = size / 2;
    Texels result(static_cast<std::size_t>(half) * half * 4);
    for (int y = 0; y < half; ++y) {
        for (int x = 0; x < half; ++x) {
            float colour[3] = {0.0f, 0.0f, 0.0f};
            float alpha = 0.0f;
            for (int k = 0; k < 4; ++k) {
                const std::size_t i =
                    (static_cast<std::size_t>(2 * y + k / 2) * size + 2 * x + k % 2) * 4;
                const float a = texels[i + 3];
                for (int c = 0; c < 3; ++c) {
                    colour[c] += texels[i + c] * a;
                }
                alpha += a;
            }
            unsigned char* out = &result[(static_cast<std::size_t>(y) * half + x) * 4];
            for (int c = 0; c < 3; ++c) {
                out[c] = static_cast<unsigned char>(alpha > 0.0f ? colour[c] / alpha + 0.5f : 0.0f);
            }
            out[3] = static_cast<unsigned char>(alpha / 4.0f + 0.5f);
        }
    }
    return result;
}

} // namespace

SpriteLevels::SpriteLevels(Texture* sprite) : picture(sprite) {
    glBindTexture(GL_TEXTURE_2D, picture->getID());
    GLint width = 0;
    GLint height = 0;
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_HEIGHT, &height);
    // Sprites are square pictures; anything else is drawn as it is.
    if (width != height) {
        glBindTexture(GL_TEXTURE_2D, 0);
        return;
    }
    pictureSize = width;
    Texels texels(static_cast<std::size_t>(width) * height * 4);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    for (int size = pictureSize; size / 2 >= SMALLEST; size /= 2) {
        texels = halve(texels, size);
        halvings.push_back(std::make_unique<Texture>(size / 2, size / 2, GL_TEXTURE_2D, GL_RGBA,
                                                     GL_RGBA, texels.data()));
        halvings.back()->setSize(size / 2, size / 2);
    }
}

SpriteLevels::~SpriteLevels() = default;

Texture* SpriteLevels::forPixels(float pixels) const {
    Texture* level = picture;
    int size = pictureSize / 2;
    for (const auto& halving : halvings) {
        if (static_cast<float>(size) < pixels) {
            break;
        }
        level = halving.get();
        size /= 2;
    }
    return level;
}
