// particlesprite: one point sprite per particle. Its size is point_size pixels, shrunk with
// the eye distance d to point_size / (1 + attenuation * d) when attenuation is positive. The
// particle's colour passes through with a fade that lets distant sprites melt into the water.
uniform float point_size;
uniform float attenuation;

varying float fade;

void main() {
    vec4 eyePosition = gl_ModelViewMatrix * gl_Vertex;
    float distance = length(eyePosition.xyz);
    gl_PointSize = attenuation > 0.0 ? point_size / (1.0 + attenuation * distance) : point_size;
    fade = 1.0 - smoothstep(30.0, 100.0, distance);
    gl_FrontColor = gl_Color;
    // Replaced by the sprite's own coordinates while point sprites are on.
    gl_TexCoord[0] = vec4(0.0);
    gl_Position = ftransform();
}
