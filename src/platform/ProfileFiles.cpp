// The Linux default of the profile-file services: INI files read and written with SimpleIni.
//
// They keep the behaviour of the original platform's profile-file calls, which formulas rely on:
// - A missing file, section or key reads as the default text the caller gives.
// - A key that is present with an empty value ("key=") reads as the empty text, not as the
//   default.
// - The caller's buffer bounds the value: a buffer of 260 bytes receives at most 259 bytes and the
//   terminating NUL; a longer value is cut at 259 bytes, even inside a double-byte character, and
//   259 is returned.
// - Blanks around a value are dropped and a value in double quotes loses them; when a key
//   appears twice in a section, the first one counts; sections and keys match without regard to
//   the letter case of ASCII letters; texts are bytes of the platform's code page, never
//   converted.
// - Writing creates the file, the section and the key as needed, replaces the first value of the
//   key and writes "key=value"; a file that cannot be written (a missing folder, no permission)
//   fails and keeps its content.
// A relative file name is taken from the current directory. Keys written before the first section
// header belong to the section whose name is the empty text.
#include "platform/Services.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <mutex>

#define SI_NO_CONVERSION   // texts stay bytes of the platform's code page
#define SI_IMPLEMENTATION  // the templates are instantiated here, the only user
#include <SimpleIni.h>

namespace sysfuncs {
namespace {

// Serialises the read-modify-write of profile files within the process.
std::mutex& ProfileMutex() {
  static std::mutex mutex;
  return mutex;
}

void Configure(CSimpleIniA& ini) {
  ini.SetUnicode(false);
  ini.SetMultiKey(true);  // keeps repeated keys so that the first one is read and replaced
  ini.SetMultiLine(false);
  ini.SetSpaces(false);  // "key=value", without blanks around the equals sign
  ini.SetQuotes(true);
}

// Loads a profile file; false when `file` is not a regular file or cannot be read. A folder is
// never handed to the reader, which would take its size for the length of a text.
bool Load(CSimpleIniA& ini, const std::string& file) {
  std::error_code error;
  return std::filesystem::is_regular_file(file, error) && ini.LoadFile(file.c_str()) >= 0;
}

uint32_t CopyCut(const std::string& text, char* buffer, uint32_t size) {
  if (buffer == nullptr || size == 0) return 0;
  const size_t count = std::min<size_t>(text.size(), size - 1);
  std::memcpy(buffer, text.data(), count);
  buffer[count] = '\0';
  return static_cast<uint32_t>(count);
}

}  // namespace

uint32_t DefaultGetPrivateProfileString(const std::string& section, const std::string& key,
                                        const std::string& defaultText, char* buffer, uint32_t size,
                                        const std::string& file) {
  std::string value = defaultText;
  if (!file.empty()) {
    std::lock_guard<std::mutex> lock(ProfileMutex());
    CSimpleIniA ini;
    Configure(ini);
    if (Load(ini, file)) {
      const char* found = ini.GetValue(section.c_str(), key.c_str(), nullptr);
      if (found != nullptr) value = found;
    }
  }
  return CopyCut(value, buffer, size);
}

bool DefaultWritePrivateProfileString(const std::string& section, const std::string& key,
                                      const std::string& text, const std::string& file) {
  if (file.empty()) return false;
  std::lock_guard<std::mutex> lock(ProfileMutex());
  CSimpleIniA ini;
  Configure(ini);
  std::error_code error;
  if (std::filesystem::exists(file, error) && !Load(ini, file)) return false;
  if (ini.SetValue(section.c_str(), key.c_str(), text.c_str(), nullptr, true) < 0) return false;
  std::string content;
  if (ini.Save(content) < 0) return false;
  // Written in place: a file that cannot be opened for writing is left as it was.
  std::ofstream out(file, std::ios::out | std::ios::binary | std::ios::trunc);
  if (!out) return false;
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  out.close();
  return !out.fail();
}

}  // namespace sysfuncs
