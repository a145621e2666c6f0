#pragma once

#include <string>
#include <vector>

class Animation;
class Binary;
class FBO;
class KVTScene;
class Shader;
class ShaderInstance;
class Texture;
class TrackInterpolate;

// Base of every visual piece of a production. Templates (one object per effect class) make
// instances with getInstance(); each instance declares its parameter tracks by name in
// registerTracks(), and the track system calls predraw/draw/postdraw while its group is
// active. The tracks an effect declares are adopted by its track group when the sync data
// is loaded; the effect itself never deletes them.
class Effect {
public:
    Effect() = default;
    virtual ~Effect();
    Effect(const Effect&) = delete;
    Effect& operator=(const Effect&) = delete;

    virtual void predraw(unsigned int time);
    // Renders into target (null is the screen). The base has nothing to draw and says so.
    virtual void draw(unsigned int time, unsigned int frameTime, FBO* target);
    virtual void postdraw(unsigned int time);
    virtual void init();
    // A new default-constructed object of the same class, owned by the caller.
    virtual Effect* getInstance();
    virtual void registerTracks();

    // Creates the parameter track, stores it in slot and lists it in declaration order.
    void addTrack(std::string name, TrackInterpolate*& slot);
    int getTrackCount() const { return static_cast<int>(tracks.size()); }
    TrackInterpolate* getTrackPointer(int index) const { return tracks[index]; }

    // Loaded resources by key; a missing key is a programming error and stops the program.
    static Shader* GetShader(std::string key);
    static Texture* GetTexture(std::string key);
    static FBO* GetFBO(std::string key);
    static KVTScene* GetScene(std::string key);
    static Binary* GetBinary(std::string key);
    static Animation* GetAnimation(std::string key);
    static Effect* GetEffect(std::string key);
    // The shader cache's instance of that name, or null.
    static ShaderInstance* GetShaderInstance(std::string key);

    bool isTracked() const { return tracked; }
    void setTracked(bool flag) { tracked = flag; }

private:
    std::vector<TrackInterpolate*> tracks;
    bool tracked = false;
};
