#include "InputFile.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace sysfuncs::fuzz {

InputFile::InputFile() : descriptor_(memfd_create("fuzz-input", 0)) {
  if (descriptor_ < 0) {
    std::perror("fuzz: memfd_create");
    std::abort();
  }
  path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

InputFile::~InputFile() { close(descriptor_); }

const std::filesystem::path& InputFile::Write(const uint8_t* data, size_t size) {
  if (ftruncate(descriptor_, 0) != 0 ||
      (size > 0 && pwrite(descriptor_, data, size, 0) != static_cast<ssize_t>(size))) {
    std::perror("fuzz: writing the input file");
    std::abort();
  }
  return path_;
}

}  // namespace sysfuncs::fuzz
