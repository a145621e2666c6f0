// Dilate: a soft dilation. Each texel takes the brightest of eight neighbours on a ring one
// and a half steps (viewportStep) away, slightly weighted down, so bright strokes spread into
// the dark around them. The ring falls between texels, so every tap is already a 2 x 2 mean:
// the spread comes out rounded, and a part of the local mean mixed in softens it further
// into a painterly glow. A flat area stays as it is.
uniform sampler2D Texture;
uniform float viewportStep;

vec3 tap(vec2 uv, float x, float y) {
    return texture2D(Texture, uv + vec2(x, y) * viewportStep).rgb;
}

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    vec3 centre = tap(uv, 0.0, 0.0);
    vec3 east = tap(uv, 1.5, 0.0);
    vec3 west = tap(uv, -1.5, 0.0);
    vec3 north = tap(uv, 0.0, 1.5);
    vec3 south = tap(uv, 0.0, -1.5);
    vec3 northEast = tap(uv, 1.06, 1.06);
    vec3 northWest = tap(uv, -1.06, 1.06);
    vec3 southEast = tap(uv, 1.06, -1.06);
    vec3 southWest = tap(uv, -1.06, -1.06);
    vec3 ring = max(max(max(east, west), max(north, south)),
                    max(max(northEast, northWest), max(southEast, southWest)));
    vec3 brightest = max(centre, ring * 0.85);
    vec3 mean = (centre + east + west + north + south + northEast + northWest + southEast +
                 southWest) / 9.0;
    gl_FragColor = vec4(mix(brightest, mean, 0.35), 1.0);
}
