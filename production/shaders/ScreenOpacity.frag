// ScreenOpacity: lays a picture (source0) over a background (source1) with the "screen"
// blend, each weighted by its opacity. The picture is placed and scaled: "position" is the
// picture's centre in screen units (-1 to 1 across the screen, 0 the middle) and "scale" how
// many times it fits across the screen on each axis (1 fills the screen, 3 covers a third).
// Outside its rectangle, and where its alpha is zero, the picture adds nothing.
uniform sampler2D source0;
uniform sampler2D source1;
uniform float source0_opacity;
uniform float source1_opacity;
uniform vec2 position;
uniform vec2 scale;

void main() {
    vec2 screen = gl_TexCoord[0].xy * 2.0 - 1.0;
    vec2 uv = (screen - position) * scale * 0.5 + 0.5;
    vec2 inside = step(vec2(0.0), uv) * step(uv, vec2(1.0));
    vec4 picture = texture2D(source0, clamp(uv, 0.0, 1.0));
    float cover = inside.x * inside.y * clamp(source0_opacity, 0.0, 1.0);
    vec3 front = clamp(picture.rgb * picture.a * cover, 0.0, 1.0);
    vec3 back = texture2D(source1, gl_TexCoord[0].xy).rgb * source1_opacity;
    gl_FragColor = vec4(1.0 - (1.0 - front) * (1.0 - back), 1.0);
}
