// standard_light: the production's lighting of scene objects under water. GL_LIGHT0 with the
// current material, Blinn-Phong: a positional light (w = 1) fades with its constant, linear
// and quadratic attenuation; a directional one (w = 0) shines along its position vector, or
// from the eye when that vector is zero. Material emission and the light's ambient product
// are added; both sides of a face are lit. Distance fades the result into the water colour.
varying vec3 eyePosition;
varying vec3 eyeNormal;

const vec3 WATER = vec3(0.03, 0.22, 0.27);

void main() {
    vec3 normal = normalize(eyeNormal);
    vec3 toEye = normalize(-eyePosition);
    if (dot(normal, toEye) < 0.0) {
        normal = -normal;
    }

    vec4 position = gl_LightSource[0].position;
    vec3 toLight = position.xyz - eyePosition * position.w;
    float distance = length(toLight);
    toLight = distance > 0.0001 ? toLight / distance : toEye;
    float attenuation = 1.0;
    if (position.w != 0.0) {
        attenuation = 1.0 / (gl_LightSource[0].constantAttenuation +
                             gl_LightSource[0].linearAttenuation * distance +
                             gl_LightSource[0].quadraticAttenuation * distance * distance);
    }

    float diffuse = max(dot(normal, toLight), 0.0);
    float specular = 0.0;
    if (diffuse > 0.0) {
        vec3 halfway = normalize(toLight + toEye);
        specular = pow(max(dot(normal, halfway), 0.0), max(gl_FrontMaterial.shininess, 1.0));
    }
    vec3 colour = gl_FrontMaterial.emission.rgb + gl_FrontLightProduct[0].ambient.rgb +
                  attenuation * (gl_FrontLightProduct[0].diffuse.rgb * diffuse +
                                 gl_FrontLightProduct[0].specular.rgb * specular);

    float haze = 1.0 - exp(-length(eyePosition) * 0.018);
    gl_FragColor = vec4(mix(colour, WATER, haze), gl_FrontMaterial.diffuse.a);
}
