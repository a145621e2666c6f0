#include "ParticleSystem.h"

#include "KVTDemosys.h"
#include "ScreenMetrics.h"
#include "Shader.h"

#include <GL/glew.h>

#include <vector>

namespace {

const int POSITION_FLOATS = 3;
const int COLOR_FLOATS = 4;

unsigned int makeBuffer(const std::vector<float>& data) {
    GLuint id = 0;
    glGenBuffers(1, &id);
    glBindBuffer(GL_ARRAY_BUFFER, id);
    // Owners rewrite their particles while playing, some every frame.
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(data.size() * sizeof(float)), data.data(),
                 GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return id;
}

float* mapBuffer(unsigned int id, unsigned int access) {
    glBindBuffer(GL_ARRAY_BUFFER, id);
    auto* mapped = static_cast<float*>(glMapBuffer(GL_ARRAY_BUFFER, access));
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return mapped;
}

void unmapBuffer(unsigned int id, float*& mapped) {
    glBindBuffer(GL_ARRAY_BUFFER, id);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    mapped = nullptr;
}

// The width that a target width of 0 (the screen) stands for.
float pictureWidth(int targetWidth) {
    if (targetWidth > 0) {
        return static_cast<float>(targetWidth);
    }
    const ScreenMetrics* screen = KVTDemosys::screenMetrics;
    if (screen != nullptr && screen->getViewportWidth() > 0) {
        return static_cast<float>(screen->getViewportWidth());
    }
    return ParticleSystem::REFERENCE_WIDTH;
}

} // namespace

ParticleSystem::ParticleSystem(int gridWidth, int gridHeight, float spacing, float x, float y,
                               float z)
    : width(gridWidth), height(gridHeight) {
    fillGrid(spacing, x, y, z);
}

ParticleSystem::~ParticleSystem() {
    for (GLuint id : {vertexBufferID, colorBufferID}) {
        if (id != 0) {
            glDeleteBuffers(1, &id);
        }
    }
}

void ParticleSystem::fillGrid(float spacing, float x, float y, float z) {
    std::vector<float> positions;
    positions.reserve(static_cast<std::size_t>(getCount()) * POSITION_FLOATS);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            positions.insert(positions.end(), {x + column * spacing, y + row * spacing, z});
        }
    }
    const std::vector<float> white(static_cast<std::size_t>(getCount()) * COLOR_FLOATS, 1.0f);
    vertexBufferID = makeBuffer(positions);
    colorBufferID = makeBuffer(white);
}

void ParticleSystem::openVertexBuffer(unsigned int access) {
    vertexPointer = mapBuffer(vertexBufferID, access);
}

void ParticleSystem::closeVertexBuffer() {
    unmapBuffer(vertexBufferID, vertexPointer);
}

void ParticleSystem::openColorBuffer(unsigned int access) {
    colorPointer = mapBuffer(colorBufferID, access);
}

void ParticleSystem::closeColorBuffer() {
    unmapBuffer(colorBufferID, colorPointer);
}

void ParticleSystem::setPointSize(float size, int targetWidth) {
    pixelSize = size * pictureWidth(targetWidth) / REFERENCE_WIDTH;
}

void ParticleSystem::drawPointSprites(Shader* shader, Texture* sprite, float attenuation) {
    if (pixelSize <= 0.0f || getCount() == 0) {
        return;
    }
    glPushAttrib(GL_ENABLE_BIT | GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_POINT_BIT);
    glEnable(GL_POINT_SPRITE);
    glTexEnvi(GL_POINT_SPRITE, GL_COORD_REPLACE, GL_TRUE);
    glEnable(GL_VERTEX_PROGRAM_POINT_SIZE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    glDepthMask(GL_FALSE);

    shader->use();
    shader->setTextureUnit0("sprite", sprite);
    shader->setUniform1f("point_size", pixelSize);
    shader->setUniform1f("attenuation", attenuation);

    glBindBuffer(GL_ARRAY_BUFFER, vertexBufferID);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(POSITION_FLOATS, GL_FLOAT, 0, nullptr);
    glBindBuffer(GL_ARRAY_BUFFER, colorBufferID);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(COLOR_FLOATS, GL_FLOAT, 0, nullptr);
    glDrawArrays(GL_POINTS, 0, getCount());
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, 0);

    shader->release();
    // The point group holds the sprite switch and COORD_REPLACE too.
    glPopAttrib();
}
