#pragma once

#include "ResourceInfo.h"

#include <string>
#include <vector>

class Animation;
class Binary;
class Effect;
class FBO;
class KVTScene;
class ScreenMetrics;
class Shader;
class Texture;

// What a production loads and plays. A production derives from it and fills the registry's
// lists in its define operations; effects and the rest of the engine then find every loaded
// resource by key through the Get operations, where a missing key is a programming error.
class ResourceDefinition {
public:
    ResourceDefinition() = default;
    virtual ~ResourceDefinition() = default;
    ResourceDefinition(const ResourceDefinition&) = delete;
    ResourceDefinition& operator=(const ResourceDefinition&) = delete;

    // Screen defaults (unless the viewer chose the screen) and the part of the music
    // played (00:00:00 to 99:00:00 by default).
    virtual void DefineDemoParameters(ScreenMetrics* metrics);
    virtual void DefineResouces() {}
    // Registers one template object per effect class with AddEffect.
    virtual void DefineEffects() {}
    // Creates the named instances the sync tracks drive with CreateEffectInstance.
    virtual void DefineEffectInstances() {}

    void SetMusic(std::string file);
    // A named part of the piece from startTime (mm:ss:ms) to the next section's start; the
    // benchmark reports frame times section by section. Declare them in time order.
    struct Section {
        std::string name;
        unsigned int startMs;
    };
    void AddSection(std::string name, std::string startTime);
    const std::vector<Section>& getSections() const { return sections; }
    // The music's tempo in beats a minute (4 beats a bar), for times given as bar.beat;
    // 0 when the production declares none.
    void SetTempo(double beatsPerMinute) { tempo = beatsPerMinute; }
    double getTempo() const { return tempo; }
    void AddTexture(ResourceInfo::TextureInfo info);
    void AddShader(ResourceInfo::ShaderInfo info);
    void AddScene(ResourceInfo::SceneInfo info);
    void AddAnimation(ResourceInfo::AnimationInfo info);
    void AddBinary(ResourceInfo::BinaryInfo info);
    void AddVideo(ResourceInfo::VideoInfo info);
    // An OpenGL extension the production cannot play without (float textures for a
    // simulation, say): loading stops, naming it, when the driver lacks it.
    void RequireExtension(std::string name) { requiredExtensions.push_back(std::move(name)); }
    const std::vector<std::string>& getRequiredExtensions() const { return requiredExtensions; }
    // The framebuffer pool takes ownership; the framebuffer is cleared at once.
    void AddFBO(std::string key, FBO* fbo);
    // The template pool takes ownership of the template.
    void AddEffect(std::string classKey, Effect* effectTemplate);
    // A new instance of the class, with its tracks declared, in the effect pool under name.
    Effect* CreateEffectInstance(std::string classKey, std::string instanceName, bool tracked);

    Shader* GetShader(std::string key);
    Texture* GetTexture(std::string key);
    FBO* GetFBO(std::string key);
    KVTScene* GetScene(std::string key);
    Binary* GetBinary(std::string key);
    Animation* GetAnimation(std::string key);

private:
    std::vector<std::string> requiredExtensions;
    std::vector<Section> sections;
    double tempo = 0.0;
};
