#include "tests/support/TempDirectory.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace endpin::testing {

TempDirectory::TempDirectory() {
  std::string pattern = (std::filesystem::temp_directory_path() / "endpin-test-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), "no temporary folder: " + pattern);
  }
  path_ = pattern;
}

TempDirectory::~TempDirectory() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace endpin::testing
