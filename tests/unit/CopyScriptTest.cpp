// The packing script: its exact text, and that packing with it puts the declared files, and
// only those, into the archive under the names the engine asks for.
#include "ArchiveFiles.h"
#include "DataTexturePool.h"
#include "File.h"
#include "KVTDemosys.h"
#include "PictureFiles.h"
#include "ProgressBar.h"
#include "ResourceLoader.h"
#include "ResourcePacker.h"
#include "archive/arc.h"
#include "archive/packman.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace fs = std::filesystem;

namespace {

class ListingProgressBar : public ProgressBar {
public:
    explicit ListingProgressBar(std::vector<std::string> files) { resources = std::move(files); }
};

std::string readText(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

class CopyScriptTest : public ::testing::Test {
protected:
    void SetUp() override {
        folder = testpictures::freshFolder();
        previous = fs::current_path();
        fs::current_path(folder);
        KVTDemosys::textureDataPool = new DataTexturePool();
    }

    void TearDown() override {
        fs::current_path(previous);
        fs::remove_all(folder);
        arc_close();
        delete KVTDemosys::textureDataPool;
        KVTDemosys::textureDataPool = nullptr;
        delete KVTDemosys::pBar;
        KVTDemosys::pBar = nullptr;
        KVTDemosys::MusicFile.clear();
        KVTDemosys::SceneList.clear();
        KVTDemosys::AnimationList.clear();
        KVTDemosys::BinaryList.clear();
        KVTDemosys::ShaderList.clear();
        KVTDemosys::miscResources.clear();
    }

    // One resource of every kind; the first scene has a ".kf" file beside it.
    void declareProduction() {
        KVTDemosys::MusicFile = "song.ogg";
        KVTDemosys::textureDataPool->addTexture("sky", "sky.png", 1);
        KVTDemosys::textureDataPool->addTexture("floor", "floor.png", 2);
        KVTDemosys::SceneList = {{"ship", "ship.kvt"}, {"rock", "rock.kvt"}};
        KVTDemosys::AnimationList = {{"path", "path.ani"}};
        KVTDemosys::BinaryList = {{"noise", "noise.bin"}};
        KVTDemosys::ShaderList = {{"blur", "blur", {"x", "WIDE"}}};
        KVTDemosys::miscResources = {"resources/shaders/common.inc"};
        KVTDemosys::pBar = new ListingProgressBar({"resources/graphics/bar.png"});
        fs::create_directories("resources/objects");
        testpictures::writeFile("resources/objects/ship.kvt.kf", std::string("kf"));
    }

    std::string folder;
    fs::path previous;
};

const char* const EXPECTED_SCRIPT =
    "rm  resources.7z \n"
    "rm resources.7z.log\n"
    "7zz a -ms=off -mx=9  resources.7z resources/sound/song.ogg >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/graphics/floor.png >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/graphics/sky.png >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/objects/ship.kvt >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/objects/ship.kvt.kf >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/objects/rock.kvt >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/misc/path.ani >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/misc/noise.bin >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/shaders/blur.vert >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/shaders/blur.frag >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/tracks/index.list >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/tracks/track.data >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/shaders/common.inc >> resources.7z.log \n"
    "7zz a -ms=off -mx=9  resources.7z resources/graphics/bar.png >> resources.7z.log \n";

TEST_F(CopyScriptTest, ListsEveryResourceInPackingOrder) {
    declareProduction();
    ResourceLoader loader;
    ASSERT_TRUE(loader.createCopyScript("7zz", "pack.sh"));
    EXPECT_EQ(readText("pack.sh"), EXPECTED_SCRIPT);
}

// Packing runs the script, which packs each declared file under its resource path,
// non-solid, and nothing else; a declared file that is missing is named.
TEST_F(CopyScriptTest, PackingTakesTheDeclaredFilesOnly) {
    if (!testarchives::have7zz()) {
        GTEST_SKIP() << "7zz is not installed";
    }
    declareProduction();
    const std::vector<std::string> paths = ResourceLoader::packedResources();
    ASSERT_EQ(paths.size(), 14u);
    for (const std::string& path : paths) {
        fs::create_directories(fs::path(path).parent_path());
        testpictures::writeFile(path, "contents of " + path);
    }
    testpictures::writeFile("resources/graphics/undeclared.png", std::string("stray"));
    ResourceLoader loader;
    std::string error;
    ASSERT_TRUE(packLoadedResources(loader, error)) << error;
    EXPECT_NE(testarchives::sevenZipOutput(folder, "l -slt resources.7z").find("Solid = -"),
              std::string::npos);
    ASSERT_TRUE(arc_load("resources.7z"));
    for (const std::string& path : paths) {
        File file(path);
        ASSERT_TRUE(arc_getFile(&file)) << path;
        EXPECT_EQ(file.getAsString(), "contents of " + path);
    }
    File stray("resources/graphics/undeclared.png");
    EXPECT_FALSE(arc_getFile(&stray));
    arc_close();

    fs::remove("resources/misc/noise.bin");
    EXPECT_FALSE(packLoadedResources(loader, error));
    EXPECT_EQ(error, "'resources.7z' lacks 'resources/misc/noise.bin' (see resources.7z.log)");
}

} // namespace
