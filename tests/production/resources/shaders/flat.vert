// Positions only: the flat colour comes from the fragment shader.
void main() {
    gl_Position = ftransform();
}
