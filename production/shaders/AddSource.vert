// AddSource: a full-screen pass over a fluid field; passes the texture coordinates through.
void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
