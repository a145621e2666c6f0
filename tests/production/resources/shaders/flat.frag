// One colour, optionally dimmed by a define from the shader's parameters.
#include colour.inc
uniform vec4 colour;

void main() {
    gl_FragColor = vec4(colour.rgb * BRIGHTNESS, colour.a);
}
