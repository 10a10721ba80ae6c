// Whole files read back, and temporary files and folders that a test leaves nothing of.
#pragma once

#include <gtest/gtest.h>

#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace qmxml_test {

// The bytes of a file; empty when it cannot be read.
inline std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// A fresh folder, removed with all it holds when the test ends.
class TempDir {
public:
    TempDir() {
        std::string pattern = testing::TempDir() + "qmxml_XXXXXX";
        if (mkdtemp(&pattern[0]) != nullptr) {
            m_path = pattern;
        } else {
            ADD_FAILURE() << "could not create " << pattern;
        }
    }
    ~TempDir() {
        std::error_code ignored;
        if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::string& Path() const { return m_path; }
    // The path of `name` inside the folder; nothing is created.
    std::string File(const std::string& name) const { return m_path + "/" + name; }
    // Writes `contents` to `name` inside the folder and returns its path.
    std::string Write(const std::string& name, const std::string& contents) const {
        const std::string file = File(name);
        std::ofstream(file, std::ios::binary) << contents;
        return file;
    }

private:
    std::string m_path;
};

// A new empty file, removed when the test ends.
class TempFile {
public:
    TempFile() {
        std::string pattern = testing::TempDir() + "qmxml_file_XXXXXX";
        const int fd = mkstemp(&pattern[0]);
        if (fd >= 0) close(fd);
        m_path = pattern;
    }
    ~TempFile() { std::remove(m_path.c_str()); }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;

    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

}  // namespace qmxml_test
