// ProjectPass1: one Jacobi relaxation of the pressure (source0) towards the solution of
// laplacian(pressure) = divergence (source1) on a grid of buffer_size cells a side: each cell
// becomes the mean of its four neighbours less a quarter of its divergence times its area.
// The fluid fills the cells 0 to buffer_size - 2 on each axis (the walls lie on the faces
// around them); a neighbour beyond a wall counts as the cell itself, so the pressure
// pushes no flow through the walls.
uniform sampler2D source0;
uniform sampler2D source1;
uniform float buffer_size;

float pressureAt(vec2 cell, vec2 offset) {
    vec2 neighbour = cell + offset;
    float last = buffer_size - 2.0;
    if (neighbour.x < 0.0 || neighbour.y < 0.0 || neighbour.x > last || neighbour.y > last) {
        neighbour = cell;
    }
    return texture2D(source0, (neighbour + 0.5) / buffer_size).r;
}

void main() {
    vec2 cell = floor(gl_TexCoord[0].xy * buffer_size);
    float neighbours = pressureAt(cell, vec2(-1.0, 0.0)) + pressureAt(cell, vec2(1.0, 0.0)) +
                       pressureAt(cell, vec2(0.0, -1.0)) + pressureAt(cell, vec2(0.0, 1.0));
    float divergence = texture2D(source1, gl_TexCoord[0].xy).r;
    float pressure = 0.25 * (neighbours - divergence / (buffer_size * buffer_size));
    gl_FragColor = vec4(pressure, 0.0, 0.0, 1.0);
}
