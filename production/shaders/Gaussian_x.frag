// Gaussian_x: the horizontal half of a separable Gaussian blur. Seventeen taps, "blur_radius"
// texels of the source apart; each tap's weight is read from the kernel picture at its
// distance (the picture holds the bell from the centre, left, to three standard deviations,
// right). The weighted mean is scaled by "adjustment", then brightness (a factor, 1 neutral)
// and contrast (about mid-grey, 1 neutral) are applied: a contrast above 1 keeps only what
// is bright, which is what should glow.
uniform sampler2D source;
uniform sampler2D kernel;
uniform float blur_radius;
uniform float texture_size;
uniform float adjustment;
uniform float brightness;
uniform float contrast;

const int TAPS_EACH_SIDE = 8;

void main() {
    vec2 uv = gl_TexCoord[0].xy;
    vec2 stride = vec2(blur_radius / texture_size, 0.0);
    vec3 sum = vec3(0.0);
    float total = 0.0;
    for (int i = -TAPS_EACH_SIDE; i <= TAPS_EACH_SIDE; ++i) {
        float reach = (abs(float(i)) + 0.5) / float(TAPS_EACH_SIDE + 1);
        float weight = texture2D(kernel, vec2(reach, 0.5)).r;
        sum += texture2D(source, uv + stride * float(i)).rgb * weight;
        total += weight;
    }
    vec3 c = sum / total * adjustment;
    c = ((c - 0.5) * contrast + 0.5) * brightness;
    gl_FragColor = vec4(max(c, 0.0), 1.0);
}
