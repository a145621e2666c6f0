#include "FrameReadback.h"

#include <GL/glew.h>

FrameReadback::FrameReadback(int w, int h)
    : width(w), height(h), bytes(static_cast<size_t>(w) * h * 4) {
    if (GLEW_VERSION_2_1 || GLEW_ARB_pixel_buffer_object) {
        glGenBuffers(2, buffers);
        for (unsigned int buffer : buffers) {
            glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
            glBufferData(GL_PIXEL_PACK_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr,
                         GL_STREAM_READ);
        }
        glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    } else {
        memory.resize(bytes);
    }
}

FrameReadback::~FrameReadback() {
    if (buffers[0] != 0) {
        glDeleteBuffers(2, buffers);
    }
}

bool FrameReadback::push(const Sink& sink) {
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glReadBuffer(GL_BACK);
    if (buffers[0] == 0) {
        glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, memory.data());
        return sink(memory.data());
    }
    glBindBuffer(GL_PIXEL_PACK_BUFFER, buffers[next]);
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    const bool previousPending = pending;
    next = 1 - next;
    pending = true;
    return !previousPending || deliver(buffers[next], sink);
}

bool FrameReadback::flush(const Sink& sink) {
    if (!pending) {
        return true;
    }
    pending = false;
    return deliver(buffers[1 - next], sink);
}

bool FrameReadback::deliver(unsigned int buffer, const Sink& sink) {
    glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
    const auto* pixels =
        static_cast<const unsigned char*>(glMapBuffer(GL_PIXEL_PACK_BUFFER, GL_READ_ONLY));
    bool taken = pixels != nullptr && sink(pixels);
    glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    return taken;
}
