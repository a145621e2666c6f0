#pragma once

#include "Vector.h"

#include <string>

// One OpenGL texture object with the sampling state applied at every bind(), so several
// users can share a texture, each with its own settings set just before drawing. Setters only
// store; the state reaches OpenGL at the next bind(). The texture object is deleted with it.
class Texture {
public:
    // Wraps a texture object that is already created and filled: a 2-D target, defaults.
    Texture(std::string filename, unsigned int id);
    // An empty 2-D render target of the given size and internal format (level 0 allocated
    // with unsigned-byte pixels of the given format). The last argument is not used.
    Texture(int width, int height, int internalFormat, unsigned int format, unsigned int);
    // A texture of the given target (1-D uses the width only) filled with unsigned bytes.
    Texture(int width, int height, unsigned int type, int internalFormat, unsigned int format,
            const unsigned char* data);
    ~Texture();
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;

    // Makes it a 2-D, linear, non-mipmapped 32-bpp texture of the new size and uploads data.
    void updateTexture(int width, int height, int internalFormat, unsigned int format,
                       const unsigned char* data);

    // Enables the target, binds, and sends filters, environment mode and wrapping.
    void bind();
    void release();

    // Quads in the current matrices, centred on the origin or on a position.
    void drawQuadScaled(Vector<float, 2> size);
    void drawQuadScaled(Vector<float, 2> size, Vector<float, 2> position);
    // The whole viewport, whatever the matrices (they are restored afterwards).
    void drawQuadFS();
    void drawQuadBlendFS(unsigned int srcFactor, unsigned int dstFactor);
    // Blended, in normalised device coordinates, top-left corner at position.
    void drawQuadScaledBlend(unsigned int srcFactor, unsigned int dstFactor, Vector<float, 2> size,
                             Vector<float, 2> position);

    std::string toString() const;

    unsigned int getID() const { return id; }
    void setType(unsigned int target) { type = target; }
    unsigned int getType() const { return type; }
    void isMipmapped(bool flag) { mipmapped = flag; }
    bool isMipmapped() const { return mipmapped; }
    void setSize(int w, int h) {
        width = w;
        height = h;
    }
    int getWidth() const { return width; }
    int getHeight() const { return height; }
    void setBPP(int bits) { bpp = bits; }
    int getBPP() const { return bpp; }
    void setFileSize(int bytes) { fileSize = bytes; }
    int getFileSize() const { return fileSize; }
    int getMemorySize() const { return width * height * bpp / 8; }
    void setInterpolation(unsigned int filter) { interpolation = filter; }
    void setTextureWrap(unsigned int wrap) { setTextureWrap(wrap, wrap); }
    void setTextureWrap(unsigned int s, unsigned int t) {
        wrapS = s;
        wrapT = t;
    }
    void setTextureEnv(unsigned int mode) { env = mode; }
    void setFilename(std::string name) { filename = std::move(name); }
    std::string getFilename() const { return filename; }

private:
    void setDefaults();
    // Binds, draws one quad with the texture's corners on the given edges, releases.
    void drawQuad(float left, float top, float right, float bottom);
    void drawBlended(unsigned int srcFactor, unsigned int dstFactor, float left, float top,
                     float right, float bottom);

    unsigned int id = 0;
    std::string filename;
    int width = 0;
    int height = 0;
    int bpp = 32;
    int fileSize = 0;
    unsigned int type = 0;
    unsigned int interpolation = 0;
    bool mipmapped = false;
    unsigned int wrapS = 0;
    unsigned int wrapT = 0;
    unsigned int env = 0;
};
