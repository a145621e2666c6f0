// Tests and benchmarks that read the production's own resources work from the folder that
// holds the built program and its resources (BRINOVA_BIN_DIR), and go back afterwards.
#pragma once

#include <filesystem>

class InProgramFolder {
public:
    InProgramFolder() : previous(std::filesystem::current_path()) {
        std::filesystem::current_path(BRINOVA_BIN_DIR);
    }
    ~InProgramFolder() { std::filesystem::current_path(previous); }
    InProgramFolder(const InProgramFolder&) = delete;
    InProgramFolder& operator=(const InProgramFolder&) = delete;

private:
    std::filesystem::path previous;
};
