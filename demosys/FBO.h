#pragma once

#include <string>
#include <vector>

class Texture;

// One framebuffer object with a colour texture and optionally a depth texture. Every public
// operation is static and takes an FBO*, where null stands for the screen (the window's own
// framebuffer). Binds go through FBO::currentFBO, the name the program believes is bound, so
// a redundant bind makes no GL call at all (the viewport is not reset either).
// The FBO owns its textures.
class FBO {
public:
    // The name of the bound framebuffer as far as bind() knows; 0 is the screen.
    static unsigned int currentFBO;

    // Colour texture of internalFormat (RGBA8, RGB16F, R16F ...), with unsigned-byte pixels
    // of format RGBA whatever format and type say; depth as a texture when asked. Stencil is
    // only recorded. The status check runs at once (see isValid, getErrorMessage).
    FBO(int width, int height, bool depth, bool stencil, int internalFormat, unsigned int format,
        unsigned int type);
    // Only the size and a framebuffer name: no attachments, not valid.
    FBO(int width, int height);
    ~FBO();
    FBO(const FBO&) = delete;
    FBO& operator=(const FBO&) = delete;

    static void bind(FBO* fbo);
    static void clearLater(FBO* fbo);
    // Binds and clears colour (and depth when there is a depth texture) with the current
    // clear values; resets the clear flag.
    static void clearNow(FBO* fbo);
    static bool hasClearFlag(FBO* fbo);
    // Colour texture 0 on a quad of half-size 1 (the whole viewport) or the given half-size,
    // with identity matrices; blending, depth test and the shader are the caller's.
    static void draw(FBO* fbo);
    static void draw(FBO* fbo, float halfSize);
    static void bindColorBuffer(FBO* fbo);
    static Texture* getColorBuffer(FBO* fbo, int index);
    static Texture* getDepthBuffer(FBO* fbo);
    static int getWidth(FBO* fbo);
    static int getHeight(FBO* fbo);
    static unsigned int getID(FBO* fbo);
    static bool isValid(FBO* fbo);
    static std::string getErrorMessage(FBO* fbo);
    // Checks the completeness of whatever framebuffer is bound.
    static bool fboStatus(FBO* fbo);
    static std::string toString(FBO* fbo);

    // Another colour target; every colour texture is drawn into at once when bound.
    void addColorTextureBuffer(unsigned int internalFormat, unsigned int format);
    // Replaces the depth attachment by a new depth texture.
    void setDepthTexture(unsigned int internalFormat, unsigned int format);

    void internal_bind();
    void internal_clear();
    void internal_draw();
    void internal_draw(float halfSize);
    void internal_bind_color_buffer();
    bool internal_fbo_status();
    std::string internal_to_string() const;
    bool internal_is_bound() const { return id == currentFBO; }
    bool internal_is_valid() const { return valid; }
    int internal_get_width() const { return width; }
    int internal_get_height() const { return height; }
    unsigned int internal_get_id() const { return id; }
    Texture* internal_get_color_buffer(int index) const { return colorBuffers[index]; }
    Texture* internal_get_depth_buffer() const { return depthBuffer; }
    bool internal_has_clear_flag() const { return clearFlag; }
    void internal_set_clear_flag() { clearFlag = true; }
    std::string internal_get_error_message() const { return errorMessage; }

private:
    static void bindScreen();
    void attachColorTexture(Texture* texture);
    void attachDepthTexture(Texture* texture);
    // Construction binds raw; this puts back the binding bind() believes in.
    static void restoreCurrentBinding();

    std::vector<Texture*> colorBuffers;
    // One attachment per colour texture, entry i being colour attachment i.
    std::vector<unsigned int> drawBuffers;
    Texture* depthBuffer = nullptr;
    unsigned int id = 0;
    bool depth = false;
    bool stencil = false;
    bool clearFlag = false;
    bool valid = false;
    int width = 0;
    int height = 0;
    std::string errorMessage;
};
