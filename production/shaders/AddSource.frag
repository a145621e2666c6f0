// AddSource: adds a source field to a field over one time step while the field gives up the
// same share of itself, destination + time_step * (source - destination). A source equal to
// the field leaves it as it is, so the pass draws the field towards its source but can never
// pump dye or motion into the simulation however many steps run (the fluid hands it the
// previous step's field as the source).
uniform sampler2D source;
uniform sampler2D destination;
uniform float time_step;

void main() {
    vec3 field = texture2D(destination, gl_TexCoord[0].xy).rgb;
    vec3 added = texture2D(source, gl_TexCoord[0].xy).rgb;
    gl_FragColor = vec4(mix(field, added, clamp(time_step, 0.0, 1.0)), 1.0);
}
