#include "qxrun/host/MessageCentre.h"

#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

namespace qxrun {

MessageCentre::MessageCentre(std::filesystem::path baseFolder) : base_(std::move(baseFolder)) {}

std::filesystem::path MessageCentre::FileOfKey(const char* key) const {
  const size_t length = strnlen(key, sizeof(Quill::MsgRecord::Key));
  std::string name(key, length);
  if (name.rfind("FA[", 0) != 0) return {};
  name.erase(0, 3);
  // A long name was cut with its closing bracket; what is left of it is the name.
  if (!name.empty() && name.back() == ']') name.pop_back();
  if (name.empty()) return {};
  const std::filesystem::path file(name);
  return file.is_absolute() ? file : base_ / file;
}

int MessageCentre::Receive(int kind, const Quill::MsgRecord* records, size_t count) {
  if (kind != 1) return 0;
  std::lock_guard<std::mutex> lock(mutex_);
  // Records come grouped by file; open each file once per group.
  int written = 0;
  size_t index = 0;
  while (index < count) {
    const std::filesystem::path file = FileOfKey(records[index].Key);
    size_t end = index + 1;
    while (end < count &&
           std::strncmp(records[end].Key, records[index].Key, sizeof(Quill::MsgRecord::Key)) == 0) {
      ++end;
    }
    std::FILE* out = file.empty() ? nullptr : std::fopen(file.c_str(), "ab");
    for (size_t i = index; i < end; ++i) {
      if (records[i].Kind != 1) continue;
      if (out == nullptr) {
        ++failed_;
        continue;
      }
      const size_t length = strnlen(records[i].Text, sizeof(Quill::MsgRecord::Text));
      std::fwrite(records[i].Text, 1, length, out);
      std::fputc('\n', out);
      ++written;
    }
    if (out != nullptr) std::fclose(out);
    index = end;
  }
  return written;
}

size_t MessageCentre::FailedLines() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return failed_;
}

SysFuncsPlatform HostPlatform(MessageCentre& centre) {
  SysFuncsPlatform services;
  services.SendToMsgCenter = [&centre](int kind, const Quill::MsgRecord* records, size_t count) {
    return centre.Receive(kind, records, count);
  };
  return services;
}

}  // namespace qxrun
