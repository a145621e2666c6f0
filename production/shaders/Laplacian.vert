// Laplacian: a full-screen pass; passes the quad's texture coordinates through.
void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    gl_Position = ftransform();
}
