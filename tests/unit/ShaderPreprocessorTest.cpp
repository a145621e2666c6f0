#include "KVTDemosys.h"
#include "KVTIO.h"
#include "MemoryResourceLoader.h"
#include "PictureFiles.h"
#include "ResourceLoader.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

std::vector<std::string> lines(std::initializer_list<const char*> items) {
    return std::vector<std::string>(items.begin(), items.end());
}

class ShaderPreprocessor : public testing::Test {
protected:
    void SetUp() override { KVTDemosys::miscResources.clear(); }
    void TearDown() override { KVTDemosys::miscResources.clear(); }

    MemoryResourceLoader loader;
    std::string out;
};

} // namespace

TEST_F(ShaderPreprocessor, ParametersFromTheSecondOnBecomeDefines) {
    loader.addShaderParams(out, {"x", "A", "B 2"});
    EXPECT_EQ(out, "#define A\n#define B 2\n");
    out.clear();
    loader.addShaderParams(out, {"only"});
    loader.addShaderParams(out, {});
    EXPECT_EQ(out, "");
}

TEST_F(ShaderPreprocessor, OnlyIncludeLinesOfTenCharactersOrMoreAreExpanded) {
    loader.files["dir/a"] = "A1\nA2";
    ASSERT_TRUE(loader.shaderInclude(
        out, lines({"#include", "#define X 1", "  #include a", "#include a", "void main(){}"}),
        "dir/", "main.frag", 0));
    EXPECT_EQ(out, "#include\n#define X 1\n  #include a\nA1\nA2\nvoid main(){}\n");
    EXPECT_EQ(KVTDemosys::miscResources, std::vector<std::string>{"dir/a"});
}

TEST_F(ShaderPreprocessor, IncludesNestAndNamesAreTakenAsTheyStand) {
    loader.files["s/outer.glsl"] = "#include   inner.glsl\nouter\n";
    loader.files["s/inner.glsl"] = "inner";
    loader.files["s/\"q.h\""] = "quoted";
    ASSERT_TRUE(loader.shaderInclude(out, lines({"#include outer.glsl", "#include \"q.h\""}), "s/",
                                     "m.vert", 0));
    // The file's own final line break yields a last empty line.
    EXPECT_EQ(out, "inner\nouter\n\nquoted\n");
}

TEST_F(ShaderPreprocessor, AMissingIncludeNamesTheLineTheFileAndATrimmedDepth) {
    loader.files["f/one.h"] = "#include two.h";
    loader.files["f/two.h"] = "#include three.h";
    EXPECT_FALSE(loader.shaderInclude(out, lines({"#include one.h"}), "f/", "main.vert", 0));
    EXPECT_FALSE(loader.isValid());
    EXPECT_EQ(loader.getErrorMessage(), "Failed to include '#include three.h' in two.hepth ");
    EXPECT_EQ(KVTDemosys::miscResources,
              (std::vector<std::string>{"f/one.h", "f/two.h", "f/three.h"}));

    MemoryResourceLoader top;
    EXPECT_FALSE(top.shaderInclude(out, lines({"#include gone.h"}), "f/", "main.vert", 0));
    EXPECT_EQ(top.getErrorMessage(), "Failed to include '#include gone.h' in main.vert depth ");
}

TEST_F(ShaderPreprocessor, AnIncludeCycleStopsAtTheDepthLimit) {
    loader.files["c/self.h"] = "x\n#include self.h";
    EXPECT_FALSE(loader.shaderInclude(out, lines({"#include self.h"}), "c/", "main.vert", 0));
    EXPECT_EQ(loader.getErrorMessage(), "Failed to include '#include self.h' in self.h");
    EXPECT_EQ(loader.opened, ResourceLoader::MAX_INCLUDE_DEPTH);
}

TEST_F(ShaderPreprocessor, RepeatedIncludesAreCappedSoTheSourceCannotExplode) {
    // Each level includes the next twice: 2^15 expansions without the cap.
    for (int level = 0; level < 15; ++level) {
        const std::string next = "#include l" + std::to_string(level + 1) + ".h\n";
        loader.files["d/l" + std::to_string(level) + ".h"] = next + next;
    }
    loader.files["d/l15.h"] = "leaf";
    EXPECT_FALSE(loader.shaderInclude(out, lines({"#include l0.h"}), "d/", "main.vert", 0));
    EXPECT_EQ(loader.opened, ResourceLoader::MAX_INCLUDES);

    MemoryResourceLoader again; // the cap counts per source, not per loader
    again.files["d/a.h"] = "a";
    std::vector<std::string> many(ResourceLoader::MAX_INCLUDES, "#include a.h");
    EXPECT_TRUE(again.shaderInclude(out, many, "d/", "one.vert", 0));
    EXPECT_TRUE(again.shaderInclude(out, many, "d/", "two.vert", 0));
}

TEST_F(ShaderPreprocessor, VerboseLoadersPrintEachInclusion) {
    loader.files["v/b.glsl"] = "";
    loader.setVerbose(true);
    testing::internal::CaptureStdout();
    loader.shaderInclude(out, lines({"#include b.glsl"}), "v/", "main.frag", 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "0 : Including b.glsl from main.frag\n");
}

TEST_F(ShaderPreprocessor, IncludesAreReadFromTheResourceFolders) {
    const std::string folder = testpictures::freshFolder();
    testpictures::writeFile(folder + "common.glsl", std::string("uniform float t;\r\n"));
    ResourceLoader diskLoader;
    ASSERT_TRUE(
        diskLoader.shaderInclude(out, lines({"#include common.glsl"}), folder, "main.vert", 0));
    EXPECT_EQ(out, "uniform float t;\n\n");
    std::filesystem::remove_all(folder);
}
