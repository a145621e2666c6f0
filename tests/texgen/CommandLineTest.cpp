#include "Catalogue.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

using texgen::test::runTexgen;

namespace {

bool mentions(const std::string& output, const std::string& word) {
    return output.find(word) != std::string::npos;
}

} // namespace

TEST(CommandLine, HelpAndListSucceed) {
    const auto help = runTexgen("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(mentions(help.output, "Usage: texgen"));
    EXPECT_TRUE(mentions(help.output, "--contact-sheet SHEET.png [options] [OUTPUT_FOLDER]"));

    const auto list = runTexgen("--list");
    EXPECT_EQ(list.status, 0);
    std::string expected;
    for (const texgen::PictureEntry& entry : texgen::catalogue()) {
        expected += entry.file + "\n";
    }
    EXPECT_EQ(list.output, expected);
}

TEST(CommandLine, WrongUsageNamesTheProblemAndExitsWithStatusTwo) {
    const auto unknown = runTexgen("--sparkle /tmp/x");
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(mentions(unknown.output, "unknown option '--sparkle'"));
    EXPECT_TRUE(mentions(unknown.output, "Usage:"));

    const auto noFolder = runTexgen("");
    EXPECT_EQ(noFolder.status, 2);
    EXPECT_TRUE(mentions(noFolder.output, "no output folder"));

    const auto noValue = runTexgen("/tmp/x --font-dir");
    EXPECT_EQ(noValue.status, 2);
    EXPECT_TRUE(mentions(noValue.output, "'--font-dir' needs a value"));

    const auto twoFolders = runTexgen("/tmp/a /tmp/b");
    EXPECT_EQ(twoFolders.status, 2);
    EXPECT_TRUE(mentions(twoFolders.output, "'/tmp/b'"));
}

TEST(CommandLine, AContactSheetAloneDrawsIntoATemporaryFolderAndRemovesIt) {
    const std::string scratch = texgen::test::freshFolder();
    const char* saved = std::getenv("TMPDIR");
    const std::string previous = saved != nullptr ? saved : "";
    setenv("TMPDIR", scratch.c_str(), 1);
    const auto result = runTexgen("--contact-sheet '" + scratch + "/sheet.png'");
    saved != nullptr ? setenv("TMPDIR", previous.c_str(), 1) : unsetenv("TMPDIR");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_GT(std::filesystem::file_size(scratch + "/sheet.png"), 100000u);
    std::vector<std::string> left;
    for (const auto& entry : std::filesystem::directory_iterator(scratch)) {
        left.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(left, std::vector<std::string>{"sheet.png"}) << "the temporary folder is gone";
    std::filesystem::remove_all(scratch);
}

TEST(CommandLine, MissingFontIsNamedAndNothingIsWritten) {
    const std::string out = texgen::test::freshFolder();
    const auto result = runTexgen("--font-dir /nonexistent/fonts '" + out + "/pictures'");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(mentions(result.output, "cannot read font '/nonexistent/fonts/DejaVuSans.ttf'"))
        << result.output;
    EXPECT_FALSE(std::filesystem::exists(out + "/pictures"));
    std::filesystem::remove_all(out);
}

TEST(CommandLine, AFileThatIsNotAFontIsNamed) {
    const std::string folder = texgen::test::freshFolder();
    for (const char* face : {"DejaVuSans.ttf", "DejaVuSans-Bold.ttf", "DejaVuSerif.ttf",
                             "DejaVuSerif-Bold.ttf", "DejaVuSansMono.ttf"}) {
        std::ofstream(folder + "/" + face) << "not a font";
    }
    const auto result = runTexgen("--font-dir '" + folder + "' '" + folder + "/out'");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(mentions(result.output, folder + "/DejaVuSans.ttf' is not a TrueType font"))
        << result.output;
    std::filesystem::remove_all(folder);
}

TEST(CommandLine, UnusableOutputFolderIsNamed) {
    const std::string folder = texgen::test::freshFolder();
    const std::string blocker = folder + "/file";
    std::ofstream(blocker) << "in the way";
    const auto result = runTexgen("'" + blocker + "/pictures'");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(
        mentions(result.output, "cannot create the output folder '" + blocker + "/pictures'"))
        << result.output;

    const auto sheet =
        runTexgen("--contact-sheet '" + blocker + "/sheet.png' '" + folder + "/out'");
    EXPECT_EQ(sheet.status, 1);
    EXPECT_TRUE(mentions(sheet.output, "cannot write '" + blocker + "/sheet.png'")) << sheet.output;
    std::filesystem::remove_all(folder);
}
