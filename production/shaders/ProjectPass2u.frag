// ProjectPass2u: the u velocity (velocities_u) less the pressure's gradient across x, on a
// grid of buffer_size cells a side: u is the flow across a cell's left face, so the gradient
// is the cell's pressure (velocities_u_prev) less its left neighbour's, over the cell's
// width. What is left of u is the flow that neither piles up nor drains away.
uniform sampler2D velocities_u;
uniform sampler2D velocities_u_prev;
uniform float buffer_size;

void main() {
    vec2 here = gl_TexCoord[0].xy;
    vec2 left = here - vec2(1.0 / buffer_size, 0.0);
    float gradient =
        buffer_size * (texture2D(velocities_u_prev, here).r - texture2D(velocities_u_prev, left).r);
    gl_FragColor = vec4(texture2D(velocities_u, here).r - gradient, 0.0, 0.0, 1.0);
}
