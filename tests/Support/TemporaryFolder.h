// TemporaryFolder.h: a folder of a test's own, gone with all its files when the test ends.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace test {

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "nimbra-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        root_ = name;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(root_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    // The path of a file or folder in it; of the folder itself for "".
    std::string path(const std::string& name = {}) const {
        return name.empty() ? root_ : root_ + "/" + name;
    }
    // Makes a file, with the folders that it lies in, and gives its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    std::string read(const std::string& name) const {
        std::stringstream bytes;
        bytes << std::ifstream(path(name), std::ios::binary).rdbuf();
        return bytes.str();
    }
    bool has(const std::string& name) const { return std::filesystem::exists(path(name)); }

private:
    std::string root_;
};

} // namespace test
