// A file that holds the bytes of one fuzz input, for loaders that read from a path.
#ifndef SYSFUNCS_TESTS_FUZZ_INPUT_FILE_H_
#define SYSFUNCS_TESTS_FUZZ_INPUT_FILE_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace sysfuncs::fuzz {

// An anonymous in-memory file, rewritten for each input; its path stays valid for the process.
class InputFile {
 public:
  InputFile();
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // Replaces the content with `size` bytes of `data` and returns the path to open.
  const std::filesystem::path& Write(const uint8_t* data, size_t size);

 private:
  int descriptor_;
  std::filesystem::path path_;
};

}  // namespace sysfuncs::fuzz

#endif  // SYSFUNCS_TESTS_FUZZ_INPUT_FILE_H_
