#include "BrinovaResources.h"

#include "KVTDemosys.h"
#include "ScreenMetrics.h"

#include <GL/gl.h>

namespace {

struct Picture {
    const char* key;
    const char* file;
};

// Two-dimensional pictures without mipmaps; the ocean surface and the tone curve differ.
const Picture Pictures[] = {
    {"wave_normals0", "Waves1Normals.png"},
    {"wave_normals1", "Waves2Normals.png"},
    {"wave_normals2", "Waves3Normals.png"},
    {"overlay", "FrameOverlay.png"},
    {"color_noise", "Noise.png"},
    {"gaussian_kernel", "Kernel.png"},
    {"particle", "light.png"},
    {"particle2", "Particle.png"},
    {"puff_particle", "Puff.png"},
    {"u_source", "Velocities.png"},
    {"v_source", "Velocities2.png"},
    {"u_source2", "Velocities3.png"},
    {"v_source2", "Velocities4.png"},
    {"u_source3", "Velocities5.png"},
    {"v_source3", "Velocities6.png"},
    {"vask", "Vask.png"},
    {"lumo", "Lumo.png"},
    {"orin", "Orin.png"},
    {"quillet", "Quillet.png"},
    {"korvathlogo", "KorvathLogo.png"},
    {"brinovalogo", "BrinovaLogo.png"},
    {"vask_small", "VaskSmall.png"},
    {"lumo_small", "LumoSmall.png"},
    {"orin_small", "OrinSmall.png"},
    {"quillet_small", "QuilletSmall.png"},
    {"korvathlogo_small", "KorvathLogoSmall.png"},
    {"brinovalogo_small", "BrinovaLogoSmall.png"},
};

} // namespace

void BrinovaResources::DefineDemoParameters(ScreenMetrics* metrics) {
    metrics->setNear(1.0f);
    metrics->setFar(200.0f);
    KVTDemosys::DemoStartTime.setTimeAsString("00:00:00");
    KVTDemosys::DemoEndTime.setTimeAsString("02:30:850");
}

void BrinovaResources::DefineResouces() {
    SetMusic("brinova_final_c.mp3");
    AddTexture({"ocean_surface_texture", "OceanSurface.png", GL_TEXTURE_2D, true});
    for (const Picture& picture : Pictures) {
        AddTexture({picture.key, picture.file, GL_TEXTURE_2D, false});
    }
    AddTexture({"threshold", "Threshold.png", GL_TEXTURE_1D, true});
}
