#pragma once

#include "Vector.h"

// Shared maths of the particle creatures: their view, their pulse, their colours and the
// shape of a swimming bell. Apart from loadView, each is a pure function of its arguments,
// so a creature built from these is the same picture for the same time however often it
// is drawn.
//
// The view: a camera CAMERA_DISTANCE units in front of the origin looking down -z, whose
// picture at z = 0 spans y from -1 (bottom) to 1 (top) and x from -ASPECT to ASPECT. The
// creatures draw into square framebuffers that are shown stretched to 16:9, so the view is
// set up for that shape: what is round in these units is round on the screen.
class CreatureMotion {
public:
    using Vec3 = Vector<float, 3>;

    struct Colour {
        float r, g, b;
    };

    // An orthonormal frame: axis, and two directions across it.
    struct Frame {
        Vec3 axis, side, across;
    };

    static constexpr float ASPECT = 16.0f / 9.0f;
    static constexpr float CAMERA_DISTANCE = 4.0f;
    // The sprite shader's distance attenuation: sprites shrink nearly as 1 / distance.
    static constexpr float ATTENUATION = 2.0f;
    static constexpr float TWO_PI = 6.28318530718f;

    CreatureMotion() = delete;

    // Multiplies the current projection and model-view by the creatures' view (the caller
    // has loaded identities, as Geometry::PushAllMatices does).
    static void loadView();
    // The sprite size to hand to ParticleSystem::setPointSize, in pixels of a
    // REFERENCE_WIDTH-wide square picture, for a sprite worldSize units high at z = 0.
    static float spritePixels(float worldSize);
    // A point of the picture at z = 0: x from -1 (left edge) to 1 (right edge), y from -1
    // (bottom) to 1 (top).
    static Vec3 picturePoint(float x, float y);

    // A well-mixed value in [0, 1) for an integer seed.
    static float hash(unsigned int seed);
    // 0 below edge0, 1 above edge1, a smooth S between.
    static float smoothstep(float edge0, float edge1, float x);
    // How far a bell has contracted (0 at rest, 1 fully) at a phase counted in pulses:
    // each whole number starts a quick contraction that peaks a fifth into the pulse and
    // relaxes slowly until the next one; smooth everywhere, 0 at every whole number.
    static float pulse(float phase);

    // The production's glow from the water colour up: teal at 0, cyan at 0.5, white at 1.
    static Colour heatColour(float heat);
    static Colour mix(const Colour& a, const Colour& b, float t);

    static float length(const Vec3& v);
    // v scaled to unit length; zero stays zero.
    static Vec3 unit(const Vec3& v);
    // v scaled to about `length` long, as a line of that length pulled by v would lie: a
    // longer v stretches it a little, never by more than `stretch` of its length. Zero
    // stays zero.
    static Vec3 pulledTo(const Vec3& v, float length, float stretch);
    // A frame around the given unit axis.
    static Frame frameAround(const Vec3& axis);
    // A point given in frame coordinates (along side, along axis, along across).
    static Vec3 inFrame(const Frame& frame, float side, float along, float across);

    // A point of a bell's surface in its own coordinates (y along the bell's axis, the
    // apex at the top), for u from 0 (apex) to 1 (margin), at the angle whose cosine and
    // sine are given, radius 1 and rest height `height`, contracted by `contraction`
    // (0 to 1): the margin closes in and the bell grows taller.
    static Vec3 bellPoint(float u, float cosAngle, float sinAngle, float height, float contraction);
};
