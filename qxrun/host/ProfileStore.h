// The "qxlprofile" configuration store: strings by store, section and key, kept in SQLite in
// the user directory. The database file is created on first use.
#ifndef QXRUN_HOST_PROFILE_STORE_H_
#define QXRUN_HOST_PROFILE_STORE_H_

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

struct sqlite3;

namespace qxrun {

class ProfileStore {
 public:
  // The store lives in `folder`/qxlprofile.sqlite; nothing is touched before the first call.
  explicit ProfileStore(std::filesystem::path folder);
  ~ProfileStore();
  ProfileStore(const ProfileStore&) = delete;
  ProfileStore& operator=(const ProfileStore&) = delete;

  // The value kept under the key; nothing when none is, or the store cannot be opened.
  std::optional<std::string> Get(const std::string& store, const std::string& section,
                                 const std::string& key);
  // Keeps the value under the key, replacing an earlier one; false when it cannot be written.
  bool Set(const std::string& store, const std::string& section, const std::string& key,
           const std::string& value);

  const std::filesystem::path& File() const { return file_; }

 private:
  bool Open();

  std::filesystem::path folder_;
  std::filesystem::path file_;
  std::mutex mutex_;
  sqlite3* db_ = nullptr;
};

}  // namespace qxrun

#endif  // QXRUN_HOST_PROFILE_STORE_H_
