// Advect: carries a field (prev_densities: the dye or one velocity component) along the
// velocity (velocities_u, velocities_v, in texture widths per unit of time) over time_step.
// Semi-Lagrangian with a MacCormack correction: each texel traces back to where its content
// was one step ago and blends the four texels there. That blend blurs a little; carrying the
// field forward and back again measures by how much, and half of that error is put back,
// which keeps the dye's edges sharp over hundreds of steps. The result is clamped to the
// range of the four texels it came from, so the correction never makes new extremes: no
// ringing, and nothing that could grow from step to step. The field is only ever read at
// texel centres (it may be sampled without filtering); the velocity is read between them.
uniform sampler2D velocities_u;
uniform sampler2D velocities_v;
uniform sampler2D prev_densities;
uniform float time_step;

vec2 velocityAt(vec2 p) {
    return vec2(texture2D(velocities_u, p).r, texture2D(velocities_v, p).r);
}

vec3 texelAt(vec2 centre) {
    return texture2D(prev_densities, centre).rgb;
}

// Weights of the texels one before, at and one after a point on one axis for a field carried
// forward and back by the same shift, of which f is the fraction of a texel: each carry blends
// two neighbours by f, and the two blends together spread a share f(1 - f) to either side.
vec3 roundTripWeights(float f) {
    float side = f * (1.0 - f);
    return vec3(side, 1.0 - 2.0 * side, side);
}

// One row of the texels one before, at and one after p across x, weighted.
vec3 weightedRow(vec2 p, float spacing, vec3 weights) {
    return weights.x * texelAt(p - vec2(spacing, 0.0)) + weights.y * texelAt(p) +
           weights.z * texelAt(p + vec2(spacing, 0.0));
}

// The field carried by shift and back again, at the texel here, the velocity being taken as
// even over so short a way.
vec3 roundTrip(vec2 here, vec2 shift, vec2 texel) {
    vec2 f = fract(shift / texel);
    vec3 wx = roundTripWeights(f.x);
    vec3 wy = roundTripWeights(f.y);
    vec2 dy = vec2(0.0, texel.y);
    return wy.x * weightedRow(here - dy, texel.x, wx) + wy.y * weightedRow(here, texel.x, wx) +
           wy.z * weightedRow(here + dy, texel.x, wx);
}

void main() {
    vec2 here = gl_TexCoord[0].xy;
    // One texel of the target, which is as large as the field it reads.
    vec2 texel = vec2(dFdx(here.x), dFdy(here.y));
    vec2 shift = time_step * velocityAt(here);

    vec2 grid = (here - shift) / texel - 0.5;
    vec2 corner = (floor(grid) + 0.5) * texel;
    vec2 f = grid - floor(grid);
    vec3 a = texelAt(corner);
    vec3 b = texelAt(corner + vec2(texel.x, 0.0));
    vec3 c = texelAt(corner + vec2(0.0, texel.y));
    vec3 d = texelAt(corner + texel);
    vec3 traced = mix(mix(a, b, f.x), mix(c, d, f.x), f.y);

    vec3 corrected = traced + 0.5 * (texelAt(here) - roundTrip(here, shift, texel));
    vec3 low = min(min(a, b), min(c, d));
    vec3 high = max(max(a, b), max(c, d));
    gl_FragColor = vec4(clamp(corrected, low, high), 1.0);
}
