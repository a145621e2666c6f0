#include "File.h"
#include "Binary.h"
#include "KVTIO.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <memory>

namespace {

std::unique_ptr<File> memoryFile(std::vector<unsigned char> bytes) {
    auto file = std::make_unique<File>("memory");
    file->setData(std::move(bytes));
    file->exists(true);
    return file;
}

std::string tempPath(const std::string& name) {
    return ::testing::TempDir() + "brinova_" + name;
}

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

} // namespace

TEST(File, SplitsLinesAtLineFeedAndCarriageReturnLineFeed) {
    auto lines = memoryFile({'a', '\r', '\n', 'b', '\n'})->getAsLines();
    EXPECT_EQ(lines, (std::vector<std::string>{"a", "b", ""}));
    EXPECT_EQ(memoryFile({})->getAsLines(), (std::vector<std::string>{""}));
    EXPECT_EQ(memoryFile({'x', '\r', 'y'})->getAsLines(), (std::vector<std::string>{"x\ry"}));
    EXPECT_EQ(memoryFile({'x', '\r'})->getAsLines(), (std::vector<std::string>{"x\r"}));
}

TEST(File, ReadsLittleEndianNumbersAndStrings) {
    auto file = memoryFile({0, 65, 0, 1, 0, 0, 0, 0, 0, 0x80, 0x3F, 0xFE, 'a', 'b', 'c'});
    EXPECT_EQ(file->readString(), "Object");
    EXPECT_EQ(file->getReadOffset(), 1u);
    EXPECT_EQ(file->readString(), "A");
    EXPECT_EQ(file->readInt(), 1);
    EXPECT_EQ(file->readFloat(), 1.0f);
    EXPECT_EQ(file->readChar(), static_cast<char>(-2));
    EXPECT_EQ(file->readString(2), "ab");
    EXPECT_FALSE(file->overrun());
}

TEST(File, ReadingPastTheEndYieldsZerosAndMarksTheOverrun) {
    auto file = memoryFile({1, 2, 3});
    EXPECT_EQ(file->readInt(), 0);
    EXPECT_TRUE(file->overrun());
    EXPECT_EQ(file->getReadOffset(), 3u);
    EXPECT_EQ(file->readFloat(), 0.0f);
    EXPECT_EQ(file->readChar(), 0);
    EXPECT_EQ(file->readString(5), "");

    auto unterminated = memoryFile({'a', 'b'});
    EXPECT_EQ(unterminated->readString(), "ab");
    EXPECT_TRUE(unterminated->overrun());

    auto seekPast = memoryFile({1, 2});
    seekPast->setReadOffset(100);
    EXPECT_TRUE(seekPast->overrun());
    EXPECT_EQ(seekPast->bytesLeft(), 0u);
}

TEST(File, PutsLittleEndianBytes) {
    File file("unused");
    file.put(1);
    file.put(1.0f);
    file.put(static_cast<unsigned char>(7));
    file.put(std::string("hi"));
    file.put(0xA1B2C3D4u);
    std::vector<unsigned char> expected{1, 0,   0,   0,    0,    0,    0x80, 0x3F,
                                        7, 'h', 'i', 0xD4, 0xC3, 0xB2, 0xA1};
    EXPECT_EQ(file.getUnsigned(), expected);
    EXPECT_EQ(file.getWriteOffset(), expected.size());
    EXPECT_FALSE(file.write()) << "a name-only file has no stream";
}

TEST(File, WritesAndReadsBackThroughTheDisk) {
    std::string path = tempPath("roundtrip.bin");
    {
        File out(path, File::WRITE);
        ASSERT_TRUE(out.exists());
        out.put(-5);
        out.put(std::string("name"));
        out.put(static_cast<unsigned char>(0));
        ASSERT_TRUE(out.write());
    }
    File in(path, File::READ);
    ASSERT_TRUE(in.exists());
    EXPECT_EQ(in.getFileSize(), 9u);
    EXPECT_EQ(in.readInt(), -5);
    EXPECT_EQ(in.readString(), "name");

    File appended(path, File::APPEND);
    appended.put(std::string("++"));
    ASSERT_TRUE(appended.write());
    EXPECT_EQ(File(path, File::READ).getAsString().substr(4), std::string("name\0++", 7));

    File renamed("unused");
    renamed.put(std::string("copy"));
    ASSERT_TRUE(renamed.writeAs(tempPath("renamed.bin").c_str()));
    EXPECT_EQ(File(tempPath("renamed.bin"), File::READ).getAsString(), "copy");
    std::remove(path.c_str());
    std::remove(tempPath("renamed.bin").c_str());
}

TEST(File, MissingFilesAreEmptyAndDoNotExist) {
    File missing(tempPath("does-not-exist"), File::READ);
    EXPECT_FALSE(missing.exists());
    EXPECT_EQ(missing.getFileSize(), 0u);
    EXPECT_FALSE(File::exists(tempPath("does-not-exist")));
    EXPECT_TRUE(File::exists(::testing::TempDir()));
    EXPECT_FALSE(File(tempPath("no-dir/x"), File::WRITE).exists());
}

TEST(Binary, ScalesBytesBy256AndKeepsItsFloatView) {
    Binary binary({0, 128, 255});
    EXPECT_EQ(binary.size(), 3);
    float* view = binary.getFloatData();
    EXPECT_EQ(view[0], 0.0f);
    EXPECT_EQ(view[1], 0.5f);
    EXPECT_EQ(view[2], 0.99609375f);
    EXPECT_EQ(binary.getFloatData(), view);
    std::unique_ptr<float[]> tail(binary.getFloatData(1, 2));
    EXPECT_EQ(tail[0], 0.5f);
    EXPECT_EQ(tail[1], 0.99609375f);
    EXPECT_EQ(binary.getString(0, 3), "");
    EXPECT_EQ(binary.toString(), "Binary { size = 3 }\n");
}

TEST(KVTIO, LoadsFromTheFolderAndReportsWhenAsked) {
    std::string path = tempPath("kvtio.dat");
    writeBytes(path, std::string("\x01\x02", 2));
    KVTIO::init(KVTIO::KVT_RESOURCES_FLAT);
    EXPECT_FALSE(KVTIO::debug);

    std::unique_ptr<Binary> binary(KVTIO::loadBinary(path));
    ASSERT_NE(binary, nullptr);
    EXPECT_EQ(binary->getData(1), 2);
    EXPECT_EQ(KVTIO::loadBinary(tempPath("absent")), nullptr);

    std::unique_ptr<File> missing(KVTIO::loadFile(tempPath("absent")));
    ASSERT_NE(missing, nullptr) << "a missing loose file is still handed out";
    EXPECT_FALSE(missing->exists());
    EXPECT_EQ(KVTIO::loadFile(path, 7), nullptr);

    KVTIO::debug = true;
    testing::internal::CaptureStdout();
    std::unique_ptr<File> text(KVTIO::loadTextFile(path));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Loading text file : " + path + "\n");
    KVTIO::init(KVTIO::KVT_RESOURCES_FLAT);
    EXPECT_EQ(KVTIO::TexturePath, "resources/graphics/");
    std::remove(path.c_str());
}
