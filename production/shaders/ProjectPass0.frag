// ProjectPass0: the divergence of the velocity (velocities_u, velocities_v) on a grid of
// buffer_size cells a side, per texture width: how much fluid each cell gives off (positive)
// or swallows (negative). Each u sample is the flow across its cell's left face and each v
// sample the flow across its bottom face, so a cell's divergence is its right face's flow
// less its left face's plus its top face's less its bottom face's, over the cell's width.
uniform sampler2D velocities_u;
uniform sampler2D velocities_v;
uniform float buffer_size;

void main() {
    vec2 here = gl_TexCoord[0].xy;
    float texel = 1.0 / buffer_size;
    float u = texture2D(velocities_u, here).r;
    float v = texture2D(velocities_v, here).r;
    float right = texture2D(velocities_u, here + vec2(texel, 0.0)).r;
    float top = texture2D(velocities_v, here + vec2(0.0, texel)).r;
    gl_FragColor = vec4(buffer_size * (right - u + top - v), 0.0, 0.0, 1.0);
}
