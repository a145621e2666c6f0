// Screen: composites two pictures with the "screen" blend, 1 - (1 - a)(1 - b). Black in
// either picture leaves the other as it is and bright parts lighten without ever going past
// white, which is how a glow or a zoom blur is laid back over the sharp scene.
uniform sampler2D source0;
uniform sampler2D source1;

void main() {
    vec3 a = texture2D(source0, gl_TexCoord[0].xy).rgb;
    vec3 b = texture2D(source1, gl_TexCoord[0].xy).rgb;
    gl_FragColor = vec4(1.0 - (1.0 - a) * (1.0 - b), 1.0);
}
