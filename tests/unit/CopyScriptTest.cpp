// The packing script: its exact text, and that running it packs entries under the names
// the engine asks for.
#include "ArchiveFiles.h"
#include "DataTexturePool.h"
#include "File.h"
#include "KVTDemosys.h"
#include "PictureFiles.h"
#include "ProgressBar.h"
#include "ResourceLoader.h"
#include "archive/arc.h"
#include "archive/packman.h"

#include <gtest/gtest.h>

#include <cstdlib>
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

// Running the script packs each file under its resource path, non-solid.
TEST_F(CopyScriptTest, TheScriptPacksEntriesUnderTheirResourcePaths) {
    if (!testarchives::have7zz()) {
        GTEST_SKIP() << "7zz is not installed";
    }
    declareProduction();
    ResourceLoader loader;
    ASSERT_TRUE(loader.createCopyScript("7zz", "pack.sh"));
    std::istringstream script(EXPECTED_SCRIPT);
    std::vector<std::string> paths;
    for (std::string line; std::getline(script, line);) {
        if (line.rfind("7zz", 0) == 0) {
            paths.push_back(
                line.substr(line.find("resources/"), line.find(" >>") - line.find("resources/")));
        }
    }
    for (const std::string& path : paths) {
        fs::create_directories(fs::path(path).parent_path());
        testpictures::writeFile(path, "contents of " + path);
    }
    ASSERT_EQ(std::system("sh pack.sh 2>/dev/null"), 0) << readText("resources.7z.log");
    EXPECT_NE(testarchives::sevenZipOutput(folder, "l -slt resources.7z").find("Solid = -"),
              std::string::npos);
    ASSERT_TRUE(arc_load("resources.7z"));
    for (const std::string& path : paths) {
        File file(path);
        ASSERT_TRUE(arc_getFile(&file)) << path;
        EXPECT_EQ(file.getAsString(), "contents of " + path);
    }
}

} // namespace
