// waves: the ocean surface seen from below. Passes the surface's texture coordinates, the
// eye-space position (for the distance haze) and the direction from the eye to the point in
// the surface's own space, where up is +y.
varying vec3 eyePosition;
varying vec3 viewDirection;

void main() {
    gl_TexCoord[0] = gl_MultiTexCoord0;
    eyePosition = vec3(gl_ModelViewMatrix * gl_Vertex);
    vec3 eye = vec3(gl_ModelViewMatrixInverse * vec4(0.0, 0.0, 0.0, 1.0));
    viewDirection = gl_Vertex.xyz - eye;
    gl_Position = ftransform();
}
