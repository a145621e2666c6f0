// BrightnessContrast: a picture with its contrast set about mid-grey (1 leaves it as it is,
// 0 makes it flat grey) and then its brightness as a factor (1 leaves it, 0 is black).
uniform sampler2D source;
uniform float brightness;
uniform float contrast;

void main() {
    vec4 c = texture2D(source, gl_TexCoord[0].xy);
    gl_FragColor = vec4(((c.rgb - 0.5) * contrast + 0.5) * brightness, c.a);
}
