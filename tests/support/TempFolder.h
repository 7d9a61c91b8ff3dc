// A folder of a test's own under the temporary directory, and whole-file reads.
#ifndef SYSFUNCS_TESTS_SUPPORT_TEMP_FOLDER_H_
#define SYSFUNCS_TESTS_SUPPORT_TEMP_FOLDER_H_

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <unistd.h>

namespace sysfuncs::testing {

// The content of a file; empty when it cannot be read.
inline std::string ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

// An empty folder named after the process and the running test, removed with its content at the
// end of the scope.
class TempFolder {
 public:
  explicit TempFolder(const std::string& prefix)
      : path_(std::filesystem::temp_directory_path() /
              (prefix + std::to_string(::getpid()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The path of `name` inside the folder.
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_SUPPORT_TEMP_FOLDER_H_
