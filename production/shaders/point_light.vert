// point_light: the ocean floor. Hands the fragment shader the eye-space position and normal
// for per-pixel lighting by GL_LIGHT0, and the floor's own position and normal, on which the
// caustics from the surface are laid out.
varying vec3 eyePosition;
varying vec3 eyeNormal;
varying vec3 floorPosition;
varying vec3 floorNormal;

void main() {
    eyePosition = vec3(gl_ModelViewMatrix * gl_Vertex);
    eyeNormal = gl_NormalMatrix * gl_Normal;
    floorPosition = gl_Vertex.xyz;
    floorNormal = gl_Normal;
    gl_Position = ftransform();
}
