// What the end-to-end tests share: running a program and reading the pictures it writes.
#pragma once

#include <gtest/gtest.h>
#include <stb_image.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace e2e {

struct Outcome {
    int status;
    std::string output;
};

// Runs a command, collecting standard output and error together.
inline Outcome runCommand(const std::string& command) {
    Outcome run{-1, ""};
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        return run;
    }
    std::array<char, 4096> buffer;
    while (fgets(buffer.data(), buffer.size(), pipe) != nullptr) {
        run.output += buffer.data();
    }
    int status = pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// A test's own empty folder under the test temporary folder, named after the running test;
// removed when the fixture ends.
class TestFolder : public ::testing::Test {
protected:
    explicit TestFolder(const std::string& prefix)
        : folder(std::filesystem::path(::testing::TempDir()) /
                 (prefix + ::testing::UnitTest::GetInstance()->current_test_info()->name())) {}
    void SetUp() override {
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    void TearDown() override { std::filesystem::remove_all(folder); }

    std::filesystem::path folder;
};

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgb;

    std::array<int, 3> at(int x, int y) const {
        size_t i = (static_cast<size_t>(y) * width + x) * 3;
        return {rgb[i], rgb[i + 1], rgb[i + 2]};
    }
};

inline Picture load(const std::filesystem::path& path) {
    Picture picture;
    int channels = 0;
    unsigned char* data = stbi_load(path.c_str(), &picture.width, &picture.height, &channels, 3);
    if (data != nullptr) {
        picture.rgb.assign(data, data + picture.width * picture.height * 3);
        stbi_image_free(data);
    }
    return picture;
}

} // namespace e2e
