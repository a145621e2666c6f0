#include "Viewer.h"

#include "KVTCamera.h"
#include "KVTLight.h"
#include "KVTScene.h"
#include "ModelScene.h"
#include "OfflineRenderer.h"
#include "OrbitCamera.h"
#include "ViewOptions.h"

#include <SDL.h>

#include <GL/glew.h>

#include <GL/glu.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr float kFovDegrees = 45.0f;
const float kBackground[3] = {0.16f, 0.17f, 0.2f};

// The window and its OpenGL context; both go with the object.
class Window {
public:
    ~Window() {
        if (context != nullptr) {
            SDL_GL_DeleteContext(context);
        }
        if (window != nullptr) {
            SDL_DestroyWindow(window);
        }
        SDL_Quit();
    }

    bool open(int width, int height, bool resizable, std::string& error) {
        if (SDL_Init(SDL_INIT_VIDEO) != 0) {
            error = std::string("cannot start SDL's video: ") + SDL_GetError();
            return false;
        }
        SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
        SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 24);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
        SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
        window =
            SDL_CreateWindow("brinova-view", SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width,
                             height, SDL_WINDOW_OPENGL | (resizable ? SDL_WINDOW_RESIZABLE : 0));
        context = window != nullptr ? SDL_GL_CreateContext(window) : nullptr;
        if (context == nullptr) {
            error = std::string("cannot open an OpenGL window: ") + SDL_GetError();
            return false;
        }
        SDL_GL_SetSwapInterval(1);
        const GLenum glew = glewInit();
        // An EGL context has every entry point although GLEW, built for GLX, finds no display.
        if ((glew != GLEW_OK && glew != GLEW_ERROR_NO_GLX_DISPLAY) || !GLEW_VERSION_2_0) {
            error = "no OpenGL 2.0 context";
            return false;
        }
        return true;
    }

    SDL_Window* get() const { return window; }
    void drawableSize(int& width, int& height) const {
        SDL_GL_GetDrawableSize(window, &width, &height);
    }

private:
    SDL_Window* window = nullptr;
    SDL_GLContext context = nullptr;
};

// The model, the cameras to look through and the light when the scene brings none.
class View {
public:
    View(ModelScene& model, std::string name) : model(model), name(std::move(name)) {
        for (const auto& [cameraName, camera] : model.scene().getCameras()) {
            sceneCameras.push_back(camera);
        }
        if (model.scene().countLights() == 0) {
            // A directional light over the viewer's shoulder, turned with the camera each frame.
            shoulderLight = new KVTLight;
            shoulderLight->setType(KVTLight::DIRECTIONAL);
            model.scene().addLight("brinova-view light", shoulderLight);
        }
    }

    // False when the scene has no camera of that name.
    bool selectCamera(const std::string& cameraName) {
        for (size_t i = 0; i < sceneCameras.size(); ++i) {
            if (sceneCameras[i]->getName() == cameraName) {
                current = i + 1;
                return true;
            }
        }
        return false;
    }
    void nextCamera() { current = (current + 1) % (sceneCameras.size() + 1); }
    std::string cameraNames() const {
        std::string names;
        for (const KVTCamera* camera : sceneCameras) {
            names += (names.empty() ? "'" : ", '") + camera->getName() + "'";
        }
        return names.empty() ? "none" : names;
    }

    OrbitCamera& orbitCamera() {
        current = 0;
        return orbit;
    }
    // Frames the model as it stands at the start of its animations.
    void frameModel(float aspect) { orbitCamera().frame(model.bounds(0), kFovDegrees, aspect); }

    std::string title() const {
        const std::string camera = current == 0
                                       ? "orbit camera"
                                       : "camera '" + sceneCameras[current - 1]->getName() + "' (" +
                                             std::to_string(current) + " of " +
                                             std::to_string(sceneCameras.size()) + ")";
        return "brinova-view: " + name + " - " + camera;
    }

    void draw(int width, int height, unsigned int time) {
        const KVTCamera& camera = activeCamera();
        const KVTCamera::Matrix4 placement = camera.getCameraMatrix(time);
        glViewport(0, 0, width, height);
        glClearColor(kBackground[0], kBackground[1], kBackground[2], 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        // Node matrices may scale: keep the normals unit length for the lighting.
        glEnable(GL_NORMALIZE);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        float nearPlane = 0.0f, farPlane = 0.0f;
        clipPlanes(placement, time, nearPlane, farPlane);
        gluPerspective(kFovDegrees, static_cast<double>(width) / height, nearPlane, farPlane);
        if (shoulderLight != nullptr) {
            shoulderLight->setMatrix(shoulderLightMatrix(placement).data());
        }
        camera.use(time);
        model.scene().draw(time);
        KVTCamera::release();
    }

private:
    const KVTCamera& activeCamera() {
        if (current > 0) {
            return *sceneCameras[current - 1];
        }
        orbitView.setMatrix(orbit.placement().data());
        return orbitView;
    }

    // Near and far around the model's box as the camera sees it, so that depth keeps its
    // precision from a tiny model to a landscape.
    void clipPlanes(const KVTCamera::Matrix4& placement, unsigned int time, float& nearPlane,
                    float& farPlane) const {
        const Bounds box = model.bounds(time);
        const float radius = box.empty ? 1.0f : std::max(box.radius(), 1e-3f);
        const Vector<float, 3> toCentre =
            box.centre() - Vector<float, 3>(placement[12], placement[13], placement[14]);
        const float distance = std::sqrt(toCentre.dotProduct(toCentre));
        farPlane = distance + 2.0f * radius;
        nearPlane = std::max(farPlane / 1000.0f, distance - 2.0f * radius);
    }

    // Light from above and behind the camera, a touch to its left, so that the faces turned
    // towards the viewer each take their own brightness and the model reads as solid.
    static KVTCamera::Matrix4 shoulderLightMatrix(const KVTCamera::Matrix4& placement) {
        KVTCamera::Matrix4 m = KVTCamera::Matrix4::identity();
        const float towards[3] = {-0.1f, 0.55f, 0.85f}; // along the camera's x, y and z
        Vector<float, 3> direction(0, 0, 0);
        for (int axis = 0; axis < 3; ++axis) {
            direction = direction + Vector<float, 3>(placement[axis * 4], placement[axis * 4 + 1],
                                                     placement[axis * 4 + 2]) *
                                        towards[axis];
        }
        direction.normalize();
        std::copy(direction.data(), direction.data() + 3, m.data() + 8);
        return m;
    }

    ModelScene& model;
    std::string name;
    std::vector<KVTCamera*> sceneCameras;
    // 0 is the orbit camera, 1 onward the scene's cameras in name order.
    size_t current = 0;
    OrbitCamera orbit;
    KVTCamera orbitView{"orbit"};
    KVTLight* shoulderLight = nullptr;
};

int failWith(const std::string& message) {
    std::cerr << "brinova-view: " << message << "\n";
    return 1;
}

int writeShot(View& view, const Window& window, const std::string& path) {
    int width = 0, height = 0;
    window.drawableSize(width, height);
    view.draw(width, height, 0);
    glFinish();
    if (!OfflineRenderer::saveScreen(path, width, height)) {
        return failWith("cannot write '" + path + "'");
    }
    std::cout << "brinova-view: wrote " << path << " (" << width << "x" << height << ")\n";
    return 0;
}

// Handles one event; false when the viewer should close.
bool handleEvent(const SDL_Event& event, View& view, const Window& window) {
    int width = 0, height = 0;
    window.drawableSize(width, height);
    switch (event.type) {
    case SDL_QUIT:
        return false;
    case SDL_MOUSEMOTION:
        if (event.motion.state & SDL_BUTTON_LMASK) {
            view.orbitCamera().turn(static_cast<float>(event.motion.xrel),
                                    static_cast<float>(event.motion.yrel));
        }
        return true;
    case SDL_MOUSEWHEEL:
        view.orbitCamera().zoom(static_cast<float>(event.wheel.y));
        return true;
    case SDL_KEYDOWN:
        if (event.key.keysym.sym == SDLK_f) {
            view.frameModel(static_cast<float>(width) / height);
        } else if (event.key.keysym.sym == SDLK_c) {
            view.nextCamera();
        }
        return event.key.keysym.sym != SDLK_ESCAPE;
    default:
        return true;
    }
}

int showWindow(View& view, const Window& window) {
    std::cout << "brinova-view: drag to turn, wheel to zoom, F frames the model, C changes "
                 "the camera, Escape quits\n";
    const Uint32 start = SDL_GetTicks();
    std::string title;
    for (bool open = true; open;) {
        SDL_Event event;
        while (open && SDL_PollEvent(&event)) {
            open = handleEvent(event, view, window);
        }
        if (view.title() != title) {
            title = view.title();
            SDL_SetWindowTitle(window.get(), title.c_str());
        }
        int width = 0, height = 0;
        window.drawableSize(width, height);
        view.draw(width, std::max(1, height), SDL_GetTicks() - start);
        SDL_GL_SwapWindow(window.get());
    }
    return 0;
}

} // namespace

int runViewer(const ViewOptions& options) {
    if (!std::filesystem::is_regular_file(options.model)) {
        return failWith("cannot read '" + options.model + "'");
    }
    Window window;
    std::string error;
    if (!window.open(options.width, options.height, options.shot.empty(), error)) {
        return failWith(error);
    }
    ModelScene model;
    if (!model.load(options.model)) {
        return failWith(model.getErrorMessage());
    }
    View view(model, std::filesystem::path(options.model).filename().string());
    view.frameModel(static_cast<float>(options.width) / options.height);
    if (!options.camera.empty() && !view.selectCamera(options.camera)) {
        return failWith("no camera '" + options.camera + "' in '" + options.model +
                        "' (its cameras: " + view.cameraNames() + ")");
    }
    return options.shot.empty() ? showWindow(view, window) : writeShot(view, window, options.shot);
}
