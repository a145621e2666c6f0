// particlesprite: the sprite picture tinted by the particle's colour; its alpha is the
// picture's, the particle's and the distance fade together.
uniform sampler2D sprite;

varying float fade;

void main() {
    vec4 texel = texture2D(sprite, gl_TexCoord[0].xy);
    gl_FragColor = vec4(texel.rgb * gl_Color.rgb, texel.a * gl_Color.a * fade);
}
