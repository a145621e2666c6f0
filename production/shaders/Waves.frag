// waves: the ocean surface seen from below. Three normal maps (swell, chop, ripples), each
// tiled at its own scale and scrolled by its own offset, add up to the surface's normal. The
// normal bends the view of the bright ocean-surface picture above, and decides with the view
// angle whether the eye sees through the surface (inside Snell's window, straight up) or the
// darker water mirrored by total internal reflection, where the light above still shows
// faintly. Distance fades the surface into the colour of the water.
uniform sampler2D tex0;
uniform sampler2D tex1;
uniform sampler2D tex2;
uniform sampler2D tex3;
uniform float scroll0;
uniform float scroll1;
uniform float scroll2;

varying vec3 eyePosition;
varying vec3 viewDirection;

const vec3 DEEP_WATER = vec3(0.008, 0.047, 0.078);
const vec3 LIT_WATER = vec3(0.03, 0.22, 0.27);
const vec3 TEAL = vec3(0.059, 0.435, 0.502);
const vec3 HIGHLIGHT = vec3(0.62, 0.94, 1.0);

vec3 tangentNormal(sampler2D map, vec2 uv) {
    return texture2D(map, uv).xyz * 2.0 - 1.0;
}

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    vec3 swell = tangentNormal(tex0, uv * 5.0 + vec2(scroll0, scroll0 * 0.6));
    vec3 chop = tangentNormal(tex1, uv * 13.0 + vec2(scroll1 * 0.4, scroll1));
    vec3 ripples = tangentNormal(tex2, uv * 31.0 + vec2(scroll2, -scroll2 * 0.7));
    vec3 bump = normalize(swell + chop * 0.7 + ripples * 0.4);
    // Tangent space to the surface's space: u along +x, v along -z (rows run back), z up.
    vec3 normal = normalize(vec3(bump.x, bump.z, -bump.y));

    vec3 view = normalize(viewDirection);
    float upward = max(dot(view, normal), 0.0);
    // Snell's window, widened a little: the surface is seen at grazing angles most of the time.
    float window = smoothstep(0.3, 0.75, upward);

    vec2 bent = uv * 3.0 + bump.xy * 0.06;
    float light = dot(texture2D(tex3, bent).rgb, vec3(0.3, 0.45, 0.25));
    vec3 sky = mix(TEAL, HIGHLIGHT, light * light) * (0.8 + 0.6 * upward);
    // Outside the window the surface mirrors the water, still lit by the light behind it.
    vec3 mirrored = mix(DEEP_WATER, TEAL, 0.35 + 0.3 * bump.y + 0.5 * light);
    vec3 colour = mix(mirrored, sky, window);

    float haze = 1.0 - exp(-length(eyePosition) * 0.02);
    gl_FragColor = vec4(mix(colour, LIT_WATER, haze), 1.0);
}
