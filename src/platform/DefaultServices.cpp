// The Linux defaults of the platform services.
#include "platform/Services.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace sysfuncs {
namespace {

// The file named in a message-centre key "FA[<file>]"; a key cut before its "]" names the rest.
std::string FileOfKey(const char* key) {
  std::string text(key, strnlen(key, sizeof(Quill::MsgRecord::Key)));
  if (text.rfind("FA[", 0) != 0) return {};
  text.erase(0, 3);
  if (!text.empty() && text.back() == ']') text.pop_back();
  return text;
}

// The first sound player found on the PATH.
const char* FindSoundPlayer() {
  static const char* const players[] = {"paplay", "aplay", "play"};
  const char* path = std::getenv("PATH");
  if (path == nullptr) return nullptr;
  for (const char* player : players) {
    std::string folders(path);
    size_t start = 0;
    while (start <= folders.size()) {
      size_t end = folders.find(':', start);
      if (end == std::string::npos) end = folders.size();
      const std::string candidate = folders.substr(start, end - start) + "/" + player;
      if (end > start && access(candidate.c_str(), X_OK) == 0) return player;
      start = end + 1;
    }
  }
  return nullptr;
}

}  // namespace

int DefaultSendToMsgCenter(int kind, const Quill::MsgRecord* records, size_t count) {
  if (kind != 1) return 0;
  std::string openName;
  std::ofstream file;
  for (size_t i = 0; i < count; ++i) {
    const Quill::MsgRecord& record = records[i];
    if (record.Kind != 1) continue;
    const std::string name = FileOfKey(record.Key);
    if (name.empty()) continue;
    if (name != openName) {
      file.close();
      file.clear();
      file.open(name, std::ios::out | std::ios::app | std::ios::binary);
      openName = name;
    }
    if (!file) continue;  // a file that cannot be opened loses its lines, as the centre does
    file.write(record.Text, static_cast<std::streamsize>(strnlen(record.Text, sizeof record.Text)));
    file.put('\n');
  }
  return 1;
}

bool DefaultPlaySound(const std::string& path) {
  if (path.empty() || access(path.c_str(), R_OK) != 0) return false;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;
  const char* player = FindSoundPlayer();
  if (player == nullptr) return false;

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  std::string program(player);
  std::string argument(path);
  char* argv[] = {program.data(), argument.data(), nullptr};
  pid_t child = 0;
  const int failed = posix_spawnp(&child, player, &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) return false;
  // The sound plays on; a detached waiter reaps the player when it ends.
  std::thread([child] { waitpid(child, nullptr, 0); }).detach();
  return true;
}

void DefaultMessageBox(const std::string& text) {
  std::fprintf(stderr, "%s\n", text.c_str());
  std::fflush(stderr);
}

bool DefaultDeleteFile(const std::string& path) {
  std::error_code error;
  return std::filesystem::remove(path, error);
}

}  // namespace sysfuncs
