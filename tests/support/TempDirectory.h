// A folder of a test's own, mode 700, removed with everything in it when the object goes.
#pragma once

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

namespace endpin::testing {

class TempDirectory {
 public:
  TempDirectory() {
    std::string pattern = std::filesystem::temp_directory_path() / "endpin-test-XXXXXX";
    if (!mkdtemp(pattern.data())) throw std::system_error(errno, std::generic_category(), pattern);
    path_ = pattern;
  }
  ~TempDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempDirectory(const TempDirectory&) = delete;
  TempDirectory& operator=(const TempDirectory&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string file(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

}  // namespace endpin::testing
