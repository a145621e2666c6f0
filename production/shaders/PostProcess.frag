// PostProcess: the final grade of every frame. In order: a faint drifting colour gradient in
// the shadows (zero on average, so no cast), contrast, brightness, negative, a vignette, film
// grain, and last the fade towards a colour.
// Neutral values: brightness 1 (0 is black), contrast 1, negative 0, fade 0, noise_strength 0,
// vignett_radius 1 or more. Contrast below 1 flattens towards mid-grey; above 1 it blends in
// the production's tone curve (the "threshold" picture: a gentle S with cool, lifted shadows),
// fully at 1.5, and steepens linearly beyond that.
uniform sampler2D image;
uniform sampler2D noise;
uniform sampler1D threshold;
uniform float brightness;
uniform float contrast;
uniform float negative;
uniform float fade;
uniform vec3 fade_color;
uniform vec2 gradient_scroll;
uniform vec3 gradient_col0;
uniform vec3 gradient_col1;
uniform float vignett_radius;
uniform float noise_offset;
uniform float noise_strength;

vec3 toneCurve(vec3 c) {
    vec3 t = clamp(c, 0.0, 1.0);
    return vec3(texture1D(threshold, t.r).r, texture1D(threshold, t.g).g,
                texture1D(threshold, t.b).b);
}

// A slow diagonal triangle wave between the two gradient colours, minus their mean: it tints
// the shadows a little towards blue in one place and green in another, and nothing on average.
vec3 gradientTint(vec2 uv) {
    float wave = abs(fract(dot(uv + gradient_scroll, vec2(0.65, 0.43))) * 2.0 - 1.0);
    vec3 tint = mix(gradient_col0, gradient_col1, wave) - 0.5 * (gradient_col0 + gradient_col1);
    return tint * 0.05;
}

float luma(vec3 c) {
    return dot(c, vec3(0.299, 0.587, 0.114));
}

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    vec3 c = texture2D(image, uv).rgb;
    float shadow = 1.0 - luma(c);

    c += gradientTint(uv) * shadow;

    // Uniform branches: a whole frame takes one side, so the curve's three dependent reads
    // and the grain cost nothing while they are off.
    float grade = clamp((contrast - 1.0) * 2.0, 0.0, 1.0);
    if (grade > 0.0) {
        c = mix(c, toneCurve(c), grade);
    }
    float slope = contrast < 1.0 ? contrast : 1.0 + max(contrast - 1.5, 0.0);
    c = (c - 0.5) * slope + 0.5;

    c *= brightness;
    c = mix(c, 1.0 - c, negative);

    // Squared distance from the centre, 1.0 at the corners (no square root per pixel);
    // darkening starts at the radius and reaches its depth over a wide soft band.
    vec2 p = uv * 2.0 - 1.0;
    float d2 = dot(p, p) * 0.5;
    float inner = vignett_radius * vignett_radius;
    float outer = (vignett_radius + 0.7) * (vignett_radius + 0.7);
    c *= 1.0 - 0.6 * smoothstep(inner, outer, d2);

    // Grain: mostly luminance with a touch of colour, strongest in the mid-tones. The
    // offset jumps far across the noise picture every frame so the grain never crawls.
    if (noise_strength != 0.0) {
        vec2 grainUv = uv * vec2(4.0, 2.25) + noise_offset * vec2(37.3, 17.9);
        vec3 grain = texture2D(noise, grainUv).rgb - 0.5;
        grain = mix(vec3(dot(grain, vec3(0.3333))), grain, 0.25);
        float midtones = 0.35 + 2.6 * shadow * (1.0 - shadow);
        c += grain * noise_strength * midtones;
    }

    c = mix(c, fade_color, fade);
    gl_FragColor = vec4(clamp(c, 0.0, 1.0), 1.0);
}
