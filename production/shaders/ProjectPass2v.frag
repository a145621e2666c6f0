// ProjectPass2v: the v velocity (velocities_v) less the pressure's gradient across y, on a
// grid of buffer_size cells a side: v is the flow across a cell's bottom face, so the
// gradient is the cell's pressure (velocities_u_prev) less its lower neighbour's, over the
// cell's height. What is left of v is the flow that neither piles up nor drains away.
uniform sampler2D velocities_v;
uniform sampler2D velocities_u_prev;
uniform float buffer_size;

void main() {
    vec2 here = gl_TexCoord[0].xy;
    vec2 below = here - vec2(0.0, 1.0 / buffer_size);
    float gradient = buffer_size * (texture2D(velocities_u_prev, here).r -
                                    texture2D(velocities_u_prev, below).r);
    gl_FragColor = vec4(texture2D(velocities_v, here).r - gradient, 0.0, 0.0, 1.0);
}
