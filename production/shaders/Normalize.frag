// Normalize: turns a velocity picture (source, grey) into one velocity component. Grey 128
// is still water; brighter moves right (the u picture) or up (the v picture), darker the
// other way, and full white or black is SPEED texture widths per unit of time.
uniform sampler2D source;

const float SPEED = 0.1;

void main() {
    float grey = texture2D(source, gl_TexCoord[0].xy).r * 255.0;
    gl_FragColor = vec4((grey - 128.0) / 127.0 * SPEED, 0.0, 0.0, 1.0);
}
