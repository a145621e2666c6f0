// point_light: the ocean floor. GL_LIGHT0 is a point light at its eye-space position (the
// production puts it at the eye, a diver's lamp) with its constant, linear and quadratic
// attenuation, lighting the material's diffuse and specular colours. Above that, daylight
// comes down through the water: a teal glow on every facet that faces up and moving caustics,
// bright lines where the waves focus the light, animated by wave_time. Distance fades
// everything into the colour of the water.
uniform float wave_time;

varying vec3 eyePosition;
varying vec3 eyeNormal;
varying vec3 floorPosition;
varying vec3 floorNormal;

const vec3 SAND = vec3(0.30, 0.42, 0.40);
const vec3 DAYLIGHT = vec3(0.06, 0.40, 0.47);
const vec3 CAUSTIC_LIGHT = vec3(0.62, 0.94, 1.0);
const vec3 DEEP_WATER = vec3(0.008, 0.047, 0.078);
const vec3 LIT_WATER = vec3(0.03, 0.22, 0.27);

// One warped sine lattice: its zero lines bend with the moving waves and light gathers
// along them.
float causticLayer(vec2 p, float t) {
    vec2 q = p + 0.8 * sin(p.yx * vec2(0.9, 1.1) + vec2(t * 0.8, -t * 0.6));
    float glow = max(1.0 - abs(sin(q.x) + sin(q.y)), 0.0);
    glow *= glow;
    return glow * glow;
}

// Two lattices drifting across each other at an angle give the net of thin, wandering lines.
float caustics(vec2 p, float t) {
    vec2 turned = mat2(1.04, 0.78, -0.78, 1.04) * p + vec2(-0.25, 0.3) * t;
    return causticLayer(p + vec2(0.35, 0.2) * t, t) + 0.8 * causticLayer(turned, t * 1.2);
}

vec3 lamp(vec3 normal, vec3 toEye) {
    vec3 toLight = gl_LightSource[0].position.xyz - eyePosition;
    float distance = length(toLight);
    toLight /= distance;
    // Never stronger than the light itself, so that rocks brushing the lens do not flare.
    float attenuation = 1.0 / max(gl_LightSource[0].constantAttenuation +
                                      gl_LightSource[0].linearAttenuation * distance +
                                      gl_LightSource[0].quadraticAttenuation * distance * distance,
                                  1.0);
    float diffuse = max(dot(normal, toLight), 0.0);
    float specular = 0.0;
    if (diffuse > 0.0) {
        vec3 halfway = normalize(toLight + toEye);
        specular = pow(max(dot(normal, halfway), 0.0), gl_FrontMaterial.shininess);
    }
    vec3 lit = gl_FrontLightProduct[0].ambient.rgb +
               gl_FrontLightProduct[0].diffuse.rgb * diffuse * SAND +
               gl_FrontLightProduct[0].specular.rgb * specular * 0.3;
    return lit * attenuation;
}

void main() {
    vec3 normal = normalize(eyeNormal);
    vec3 toEye = normalize(-eyePosition);
    float facingUp = clamp(floorNormal.y, 0.0, 1.0);

    vec3 daylight = SAND * DAYLIGHT * (0.6 + 1.6 * facingUp);
    // The facet's tilt shifts where its light comes from, so neighbouring facets differ.
    vec2 seen = floorPosition.xz * 0.7 + floorNormal.xz * 0.8;
    float focus = caustics(seen, wave_time) * facingUp * facingUp * facingUp;
    vec3 colour = daylight + CAUSTIC_LIGHT * focus * 0.9 + lamp(normal, toEye);

    float distance = length(eyePosition);
    float haze = 1.0 - exp(-distance * 0.018);
    vec3 water = mix(LIT_WATER, DEEP_WATER, clamp(-floorPosition.y * 0.12, 0.0, 0.6));
    gl_FragColor = vec4(mix(colour, water, haze), 1.0);
}
