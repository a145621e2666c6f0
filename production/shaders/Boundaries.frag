// Boundaries: walls in the outermost ring of texels of a square field (buffer, buffer_size
// texels a side). For boundaries 0 (the u velocity, and scalar fields) the left and right
// columns hold zero and the bottom and top rows copy the texel inside them; for 1 (the v
// velocity) the axes swap; for 2 every wall copies its inner neighbour. The velocity samples
// are the flows across their cells' left (u) and bottom (v) faces, so the zeroed columns and
// rows are the faces that close the box: nothing flows through them, while the fluid slides
// freely along them. Every texel is then held within plus or minus values, the largest
// magnitude the field may take, so that no runaway texel can spread through the simulation.
uniform sampler2D buffer;
uniform vec4 values;
uniform float buffer_size;
uniform float boundaries;

void main() {
    vec2 here = gl_TexCoord[0].xy;
    vec2 cell = floor(here * buffer_size);
    float last = buffer_size - 1.0;
    // Towards the inside along each axis: +1 on the left or bottom wall, -1 on the right or
    // top one, 0 away from the walls.
    vec2 inward = step(cell, vec2(0.5)) - step(vec2(last - 0.5), cell);
    vec4 value = texture2D(buffer, here + inward / buffer_size);

    float across = 0.0;
    if (boundaries < 0.5) {
        across = abs(inward.x);
    } else if (boundaries < 1.5) {
        across = abs(inward.y);
    }
    gl_FragColor = clamp(value * (1.0 - across), -values, values);
}
