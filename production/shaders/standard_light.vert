// standard_light: scene objects lit per pixel. Passes the eye-space position and normal and
// the texture coordinates.
varying vec3 eyePosition;
varying vec3 eyeNormal;

void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    eyePosition = vec3(gl_ModelViewMatrix * gl_Vertex);
    eyeNormal = gl_NormalMatrix * gl_Normal;
    gl_Position = ftransform();
}
