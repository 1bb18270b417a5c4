// TemporaryFolder.h: a folder of a test's own, gone with all its files when the test ends.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = ::testing::TempDir() + "/nimbra-XXXXXX";
        path_ = mkdtemp(pattern.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }
    std::string operator/(const std::string& name) const { return path_ + "/" + name; }
    std::string write(const std::string& name, const std::string& contents) const {
        std::ofstream(*this / name, std::ios::binary) << contents;
        return *this / name;
    }

private:
    std::string path_;
};
