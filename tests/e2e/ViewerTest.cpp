// brinova-view end to end: a cube converted by obj2scene, rendered with --shot under Xvfb.
#include "KVTObjImporter.h"
#include "KVTSceneWriter.h"
#include "RunSupport.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>

namespace fs = std::filesystem;

namespace {

const char* const CubeObj = "mtllib cube.mtl\nusemtl grey\n"
                            "v -1 -1 -1\nv 1 -1 -1\nv 1 1 -1\nv -1 1 -1\n"
                            "v -1 -1 1\nv 1 -1 1\nv 1 1 1\nv -1 1 1\n"
                            "f 5 6 7 8\nf 2 1 4 3\nf 6 2 3 7\nf 1 5 8 4\nf 8 7 3 4\nf 1 2 6 5\n";
const char* const CubeMtl = "newmtl grey\nKa 0.2 0.2 0.2\nKd 0.8 0.8 0.8\n";

class Viewer : public testing::Test {
protected:
    void SetUp() override {
        folder = fs::temp_directory_path() / ("brinova-view-" + std::to_string(getpid()));
        fs::remove_all(folder);
        fs::create_directories(folder);
        std::ofstream(folder / "cube.obj") << CubeObj;
        std::ofstream(folder / "cube.mtl") << CubeMtl;
    }
    void TearDown() override { fs::remove_all(folder); }

    e2e::Outcome view(const std::string& arguments) {
        return e2e::runCommand(std::string("'") + BRINOVA_VIEW + "' " + arguments);
    }
    std::string at(const std::string& name) const { return "'" + (folder / name).string() + "'"; }

    fs::path folder;
};

int brightness(const std::array<int, 3>& pixel) {
    return std::max({pixel[0], pixel[1], pixel[2]});
}

} // namespace

// Seen from the orbit camera three faces of the cube show, each lit to its own brightness;
// every pixel of the border is background. The OBJ read directly gives the same picture.
TEST_F(Viewer, ShowsTheConvertedCubeLitWithItsFacesApart) {
    const e2e::Outcome converted = e2e::runCommand(std::string("'") + OBJ2SCENE + "' " +
                                                   at("cube.obj") + " " + at("cube.scene"));
    ASSERT_EQ(converted.status, 0) << converted.output;
    const e2e::Outcome shot =
        view("--shot " + at("scene.png") + " --size 160x120 " + at("cube.scene"));
    ASSERT_EQ(shot.status, 0) << shot.output;
    const e2e::Picture picture = e2e::load(folder / "scene.png");
    ASSERT_EQ(picture.width, 160);
    ASSERT_EQ(picture.height, 120);
    fs::copy_file(folder / "scene.png", fs::temp_directory_path() / "brinova-view-cube.png",
                  fs::copy_options::overwrite_existing);

    const std::array<int, 3> background = picture.at(0, 0);
    std::map<int, int> cubeByBrightness; // in steps of 16
    int cubePixels = 0;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const bool border =
                x == 0 || y == 0 || x == picture.width - 1 || y == picture.height - 1;
            if (border) {
                EXPECT_EQ(picture.at(x, y), background) << x << ", " << y;
            } else if (picture.at(x, y) != background) {
                ++cubeByBrightness[brightness(picture.at(x, y)) / 16];
                ++cubePixels;
            }
        }
    }
    EXPECT_NE(picture.at(80, 60), background) << "the cube is in the middle";
    EXPECT_GT(cubePixels, picture.width * picture.height / 5);
    int faces = 0;
    for (const auto& [level, count] : cubeByBrightness) {
        faces += count > cubePixels / 10;
    }
    EXPECT_EQ(faces, 3) << "three faces, three brightnesses";

    const e2e::Outcome direct =
        view("--shot " + at("obj.png") + " --size 160x120 " + at("cube.obj"));
    ASSERT_EQ(direct.status, 0) << direct.output;
    EXPECT_EQ(e2e::load(folder / "obj.png").rgb, picture.rgb);
}

// A scene's own camera and light replace the orbit camera and the viewer's light: from a
// camera on the x axis the cube's side shows square in the middle, in the shade of the
// scene's light in front of the cube (the viewer's light would fall on it).
TEST_F(Viewer, UsesTheScenesCameraAndLight) {
    KVTObjImporter importer;
    ASSERT_TRUE(importer.readFile((folder / "cube.obj").string())) << importer.getErrorMessage();
    importer.addPointLight({0, 0, 5});
    KVTSceneWriter writer;
    importer.write(writer, "cube");
    KVTSceneRecord::Node side;
    side.id = 100;
    side.type = KVTSceneRecord::CAMERA_NODE;
    side.name = "side";
    // Its x axis along -z, y up, z (it looks along -z) along +x, standing at x = 6.
    side.matrix = {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 6, 0, 0, 1};
    writer.addNode(side);
    ASSERT_TRUE(writer.write((folder / "lit.scene").string())) << writer.getErrorMessage();

    const e2e::Outcome shot =
        view("--camera side --shot " + at("side.png") + " --size 120x120 " + at("lit.scene"));
    ASSERT_EQ(shot.status, 0) << shot.output;
    const e2e::Picture picture = e2e::load(folder / "side.png");
    ASSERT_EQ(picture.width, 120);
    const std::array<int, 3> face = picture.at(60, 60);
    const std::array<int, 3> background = picture.at(2, 2);
    EXPECT_NE(face, background);
    EXPECT_LT(brightness(face), 30) << "only the ambient light reaches the side";
    for (int offset : {-24, 24}) {
        EXPECT_EQ(picture.at(60 + offset, 60), face);
        EXPECT_EQ(picture.at(60, 60 + offset), face);
        EXPECT_EQ(picture.at(60 + 2 * offset, 60), background);
        EXPECT_EQ(picture.at(60, 60 + 2 * offset), background);
    }
}

TEST_F(Viewer, BadInputIsNamedWithAFailingStatus) {
    std::ofstream(folder / "junk.scene") << "not a scene at all";
    const struct {
        std::string arguments;
        int status;
        std::string message;
    } cases[] = {
        {at("missing.scene"), 1, "cannot read '" + (folder / "missing.scene").string() + "'"},
        {"--shot " + at("x.png") + " " + at("junk.scene"), 1,
         "in file '" + (folder / "junk.scene").string() + "'"},
        {"--camera side --shot " + at("x.png") + " " + at("cube.obj"), 1, "no camera 'side'"},
        {"--spin " + at("cube.obj"), 2, "unknown option '--spin'"},
        {"--size 4x3 " + at("cube.obj"), 2, "invalid size '4x3'"},
        {"", 2, "no model given"},
    };
    for (const auto& wrong : cases) {
        const e2e::Outcome run = view(wrong.arguments);
        EXPECT_EQ(run.status, wrong.status) << wrong.arguments << "\n" << run.output;
        EXPECT_NE(run.output.find(wrong.message), std::string::npos) << wrong.arguments << "\n"
                                                                     << run.output;
    }
    EXPECT_FALSE(fs::exists(folder / "x.png"));
}
