#pragma once
// A fresh directory of the system's temporary folder, removed with its content.

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

namespace varnel::testing {

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string pattern = (std::filesystem::temp_directory_path() / "varnel-test-XXXXXX").string();
    EXPECT_NE(mkdtemp(pattern.data()), nullptr);
    path = pattern;
  }
  ~TemporaryDirectory() { std::filesystem::remove_all(path); }
  /// Replaces the file `name` (made with its folders) with `text`; returns its path.
  std::filesystem::path write(const std::filesystem::path& name, const std::string& text) const {
    const auto file = path / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    return file;
  }
  static std::string read(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  std::filesystem::path path;
};

}  // namespace varnel::testing
