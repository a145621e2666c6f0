// Laplacian: edge enhancement. The difference between a texel and the mean of its four
// neighbours (a discrete Laplacian, viewportStep apart) is zero on flat areas and large on
// edges; adding it back, scaled by contrast and tinted by color, sharpens every outline.
// Where the scene drew nothing (alpha 0, the cleared background) the open water shows
// instead: dark below, lighter towards the surface.
uniform sampler2D Texture;
uniform float viewportStep;
uniform float contrast;
uniform vec3 color;

const vec3 DEEP_WATER = vec3(0.008, 0.047, 0.078);
const vec3 LIT_WATER = vec3(0.03, 0.22, 0.27);

vec3 scene(vec2 uv) {
    vec4 texel = texture2D(Texture, uv);
    vec3 water = mix(DEEP_WATER, LIT_WATER, clamp(uv.y * 1.4 - 0.1, 0.0, 1.0));
    return mix(water, texel.rgb, texel.a);
}

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    vec3 centre = scene(uv);
    vec3 around = scene(uv + vec2(viewportStep, 0.0)) + scene(uv - vec2(viewportStep, 0.0)) +
                  scene(uv + vec2(0.0, viewportStep)) + scene(uv - vec2(0.0, viewportStep));
    vec3 edge = centre - around * 0.25;
    gl_FragColor = vec4(centre + edge * contrast * color, 1.0);
}
