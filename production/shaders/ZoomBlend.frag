// ZoomBlend: one pass of the zoom blur. The picture is enlarged about the centre by 4 % per
// unit of "zoom_factor" (the passes raise it from 1 to 2, so later passes reach further) and
// its colour scaled by "multiply" (1 keeps it, 0 removes the blur). Each pass lends only a
// third of its weight "alpha" to the enlarged copy: over thirty passes the picture then holds
// copies enlarged none, once, twice ... times, a streak that starts at each bright point and
// fades outwards along its ray, instead of one displaced ghost.
uniform sampler2D Texture;
uniform float zoom_factor;
uniform float alpha;
uniform float multiply;

void main() {
    float enlargement = 1.0 + 0.04 * zoom_factor;
    vec2 uv = (gl_TexCoord[0].xy - 0.5) / enlargement + 0.5;
    gl_FragColor = vec4(texture2D(Texture, uv).rgb * multiply, alpha * 0.35);
}
