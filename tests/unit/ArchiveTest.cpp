// The resource archive with archives made by 7zz: lookups, extraction, damaged archives,
// the trusted coders and KVTIO's archive mode.
#include "ArchiveFiles.h"
#include "Binary.h"
#include "File.h"
#include "Image.h"
#include "KVTIO.h"
#include "PictureFiles.h"
#include "archive/arc.h"
#include "archive/packman.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <random>
#include <vector>

namespace fs = std::filesystem;

namespace {

using Bytes = std::vector<unsigned char>;

Bytes randomBytes(std::size_t size, unsigned int seed) {
    std::mt19937 generator(seed);
    Bytes bytes(size);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(generator());
    }
    return bytes;
}

Bytes bytesOf(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

Bytes readWhole(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The entry's bytes through arc_getFile, or nothing when it failed.
std::unique_ptr<File> archived(const std::string& name) {
    auto file = std::make_unique<File>(name);
    return arc_getFile(file.get()) ? std::move(file) : nullptr;
}

class ArchiveTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!testarchives::have7zz()) {
            GTEST_SKIP() << "7zz is not installed";
        }
        folder = testpictures::freshFolder();
    }

    void TearDown() override {
        arc_close();
        KVTIO::ResourceType = KVTIO::KVT_RESOURCES_FLAT;
        if (!folder.empty()) {
            fs::remove_all(folder);
        }
    }

    void addFile(const std::string& name, const Bytes& bytes) {
        fs::create_directories(fs::path(folder + name).parent_path());
        testpictures::writeFile(folder + name, bytes);
        files[name] = bytes;
    }

    // Packs the named files (all added files when none are named); the archive's path.
    std::string pack(const std::string& options = testarchives::PACKING_OPTIONS,
                     const std::string& archive = "resources.7z", std::string names = "") {
        if (names.empty()) {
            for (const auto& entry : files) {
                names += " " + entry.first;
            }
        }
        EXPECT_TRUE(testarchives::sevenZip(folder, "a " + options + " " + archive + names));
        return folder + archive;
    }

    void expectEveryEntryRead() {
        for (const auto& [name, bytes] : files) {
            const std::unique_ptr<File> file = archived(name);
            ASSERT_NE(file, nullptr) << name;
            EXPECT_TRUE(file->exists());
            EXPECT_EQ(file->getUnsigned(), bytes) << name;
        }
    }

    void expectNothingFound() {
        for (const auto& entry : files) {
            const std::string& name = entry.first;
            EXPECT_EQ(packman_getFileSize(name.c_str()), -1) << name;
            File file(name);
            EXPECT_FALSE(arc_getFile(&file)) << name;
            EXPECT_FALSE(file.exists());
        }
    }

    std::string folder;
    std::map<std::string, Bytes> files;
};

// --- lookups ---

TEST_F(ArchiveTest, NamesMatchByteForByte) {
    addFile("resources/misc/a.bin", bytesOf("hello"));
    addFile("resources/graphics/sky.png", randomBytes(300, 1));
    ASSERT_TRUE(arc_load(pack(testarchives::PACKING_OPTIONS, "resources.7z", " resources")));
    EXPECT_EQ(packman_getFileSize("resources/misc/a.bin"), 5);
    EXPECT_GE(packman_getFileIndex("resources/misc/a.bin"), 0);
    for (const char* other : {"resources/misc/A.bin", "resources/misc/a.bin ", "misc/a.bin",
                              "./resources/misc/a.bin", "resources/misc", ""}) {
        EXPECT_EQ(packman_getFileSize(other), -1) << other;
        EXPECT_EQ(packman_getFileIndex(other), -1) << other;
    }
    expectEveryEntryRead();
}

TEST_F(ArchiveTest, ZeroLengthEntryExistsWithNoBytes) {
    addFile("resources/misc/empty.bin", {});
    addFile("resources/misc/full.bin", bytesOf("x"));
    ASSERT_TRUE(arc_load(pack()));
    EXPECT_EQ(packman_getFileSize("resources/misc/empty.bin"), 0);
    const std::unique_ptr<File> file = archived("resources/misc/empty.bin");
    ASSERT_NE(file, nullptr);
    EXPECT_TRUE(file->exists());
    EXPECT_EQ(file->getFileSize(), 0u);
}

TEST_F(ArchiveTest, FirstOfEqualNamesWins) {
    addFile("resources/misc/a.bin", bytesOf("first"));
    addFile("resources/misc/b.bin", bytesOf("second one"));
    const std::string archive = pack();
    ASSERT_TRUE(testarchives::sevenZip(folder, "rn resources.7z resources/misc/b.bin "
                                               "resources/misc/a.bin"));
    ASSERT_TRUE(arc_load(archive));
    EXPECT_EQ(packman_getFileSize("resources/misc/a.bin"), 5);
    const std::unique_ptr<File> file = archived("resources/misc/a.bin");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(file->getAsString(), "first");
    EXPECT_EQ(packman_getFileSize("resources/misc/b.bin"), -1);
}

TEST_F(ArchiveTest, EntriesReadInAnyOrderAndTwiceGiveTheSameBytes) {
    for (unsigned int i = 0; i < 5; ++i) {
        addFile("resources/misc/part" + std::to_string(i) + ".bin",
                randomBytes(i == 2 ? 700000 : 1000 + i, i));
    }
    ASSERT_TRUE(arc_load(pack()));
    for (int i : {4, 0, 3, 3, 1, 2, 2, 0}) {
        const std::string name = "resources/misc/part" + std::to_string(i) + ".bin";
        const std::unique_ptr<File> file = archived(name);
        ASSERT_NE(file, nullptr) << name;
        EXPECT_EQ(file->getUnsigned(), files[name]) << name;
    }
}

// --- damaged archives ---

TEST_F(ArchiveTest, DamagedTruncatedOrForeignArchivesFindNothing) {
    addFile("resources/misc/a.bin", randomBytes(5000, 7));
    addFile("resources/misc/b.bin", bytesOf("bee"));
    const Bytes good = readWhole(pack());
    ASSERT_GT(good.size(), 64u);
    auto flipped = [&](std::size_t offset) {
        Bytes bytes = good;
        bytes[offset] ^= 0x55;
        return bytes;
    };
    const std::vector<std::pair<std::string, Bytes>> variants = {
        {"missing", {}},
        {"empty", Bytes()},
        {"half", Bytes(good.begin(), good.begin() + good.size() / 2)},
        {"one byte short", Bytes(good.begin(), good.end() - 1)},
        {"signature", flipped(2)},
        {"header offset", flipped(12)},
        {"header size", flipped(20)},
        {"packed header", flipped(good.size() - 10)},
        {"text", bytesOf("just some text, not an archive at all")},
        {"picture", testpictures::encodePng(2, 2, 3, randomBytes(12, 3))},
    };
    for (const auto& [label, bytes] : variants) {
        SCOPED_TRACE(label);
        const std::string path = folder + "damaged.7z";
        fs::remove(path);
        if (label != "missing") {
            testpictures::writeFile(path, bytes);
        }
        EXPECT_FALSE(arc_load(path));
        expectNothingFound();
    }
}

TEST_F(ArchiveTest, DamagedEntryDataFailsThatEntryOnly) {
    addFile("resources/misc/a.bin", randomBytes(4000, 11));
    addFile("resources/misc/b.bin", randomBytes(4000, 12));
    Bytes bytes = readWhole(pack("-ms=off -mx=0"));
    // Stored data: the first entry's bytes start right after the 32-byte signature header.
    bytes[32 + 100] ^= 0xFF;
    testpictures::writeFile(folder + "resources.7z", bytes);
    ASSERT_TRUE(arc_load(folder + "resources.7z"));
    const int firstIndex = packman_getFileIndex("resources/misc/a.bin");
    const std::string damaged = firstIndex == 0 ? "resources/misc/a.bin" : "resources/misc/b.bin";
    const std::string intact = firstIndex == 0 ? "resources/misc/b.bin" : "resources/misc/a.bin";
    File file(damaged);
    EXPECT_FALSE(arc_getFile(&file));
    EXPECT_FALSE(file.exists());
    const std::unique_ptr<File> other = archived(intact);
    ASSERT_NE(other, nullptr);
    EXPECT_EQ(other->getUnsigned(), files[intact]);
}

// --- coders ---

TEST_F(ArchiveTest, TrustedCodersAreRead) {
    addFile("resources/misc/a.bin", randomBytes(20000, 5));
    addFile("resources/misc/text.txt", bytesOf(std::string(5000, 'a') + "b"));
    addFile("resources/misc/empty.bin", {});
    const char* const options[] = {"-ms=off -mx=9",
                                   "-ms=off -mx=0",
                                   "-ms=off -m0=LZMA",
                                   "-ms=off -m0=Deflate",
                                   "-ms=off -m0=BZip2",
                                   "-ms=off -mf=BCJ",
                                   "-ms=off -mhc=off",
                                   "-ms=on",
                                   "-m0=BCJ2 -m1=LZMA -m2=LZMA -m3=LZMA -mb0:1 -mb0s1:2 -mb0s2:3"};
    for (const char* option : options) {
        SCOPED_TRACE(option);
        fs::remove(folder + "coders.7z");
        ASSERT_TRUE(arc_load(pack(option, "coders.7z")));
        expectEveryEntryRead();
    }
}

TEST_F(ArchiveTest, ArchivesWithUntrustedCodersOpenAsNoArchive) {
    addFile("resources/misc/a.bin", randomBytes(2000, 5));
    for (const char* option : {"-m0=PPMd", "-ms=off -mf=ARM64", "-ms=off -m0=Delta -m1=LZMA2"}) {
        SCOPED_TRACE(option);
        fs::remove(folder + "coders.7z");
        EXPECT_FALSE(arc_load(pack(option, "coders.7z")));
        expectNothingFound();
    }
}

// --- File, Image and KVTIO in archive mode ---

TEST_F(ArchiveTest, ImagesDecodeFromEntries) {
    addFile("resources/graphics/rgb.png", testpictures::encodePng(3, 2, 3, randomBytes(18, 9)));
    addFile("resources/graphics/broken.png", bytesOf("not a picture"));
    ASSERT_TRUE(arc_load(pack()));
    Image image;
    image.setFileName("resources/graphics/rgb.png");
    EXPECT_TRUE(arc_getImage(&image));
    EXPECT_TRUE(image.exists());
    EXPECT_EQ(image.getWidth(), 3);
    EXPECT_EQ(image.getHeight(), 2);

    Image broken;
    broken.setFileName("resources/graphics/broken.png");
    arc_getImage(&broken);
    EXPECT_FALSE(broken.exists());

    Image absent;
    absent.setFileName("resources/graphics/absent.png");
    absent.exists(true);
    EXPECT_FALSE(arc_getImage(&absent));
    EXPECT_FALSE(absent.exists());
}

TEST_F(ArchiveTest, KVTIOLoadsFilesTextAndBinariesFromTheArchive) {
    addFile("resources/misc/data.bin", Bytes{0, 128, 255});
    addFile("resources/shaders/a.vert", bytesOf("line one\r\nline two\n"));
    ASSERT_TRUE(arc_load(pack()));
    const int archive = KVTIO::KVT_RESOURCES_7Z;
    std::unique_ptr<File> text(KVTIO::loadTextFile("resources/shaders/a.vert", archive));
    ASSERT_TRUE(text->exists());
    EXPECT_EQ(text->getAsLines(), (std::vector<std::string>{"line one", "line two", ""}));
    std::unique_ptr<Binary> binary(KVTIO::loadBinary("resources/misc/data.bin", archive));
    ASSERT_NE(binary, nullptr);
    EXPECT_EQ(binary->size(), 3);
    EXPECT_FLOAT_EQ(binary->getFloatData()[1], 0.5f);

    std::unique_ptr<File> missing(KVTIO::loadFile("resources/misc/absent.bin", archive));
    ASSERT_NE(missing, nullptr);
    EXPECT_FALSE(missing->exists());
    EXPECT_EQ(missing->getFileSize(), 0u);
    EXPECT_EQ(KVTIO::loadBinary("resources/misc/absent.bin", archive), nullptr);
}

// KVTIO opens "resources.7z" in the working folder and closes it at destroy().
TEST_F(ArchiveTest, KVTIOInitOpensTheArchiveAndDestroyClosesIt) {
    addFile("resources/misc/a.bin", bytesOf("abc"));
    pack();
    const fs::path previous = fs::current_path();
    fs::current_path(folder);
    KVTIO::init(KVTIO::KVT_RESOURCES_7Z);
    std::unique_ptr<File> open(KVTIO::loadFile("resources/misc/a.bin"));
    KVTIO::destroy();
    std::unique_ptr<File> closed(KVTIO::loadFile("resources/misc/a.bin"));
    fs::current_path(previous);
    EXPECT_TRUE(open->exists());
    EXPECT_EQ(open->getAsString(), "abc");
    EXPECT_FALSE(closed->exists());
}

} // namespace
