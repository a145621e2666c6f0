// Draws a picture through, as it was rendered.
uniform sampler2D picture;
varying vec2 uv;

void main() {
    gl_FragColor = texture2D(picture, uv);
}
