// Runs the qxrun program in a scratch folder of its own and collects what it printed.
#ifndef TESTS_QXRUN_QXRUN_PROCESS_H_
#define TESTS_QXRUN_QXRUN_PROCESS_H_

#include <filesystem>
#include <string>
#include <vector>

namespace qxrun_test {

struct ProcessResult {
  int ExitCode = -1;
  std::string Out;
  std::string Err;
};

// A fresh, empty folder under the system's temporary folder, removed with the object.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& Path() const { return path_; }
  // Writes `content` to `name` in the folder (folders on the way are made).
  std::filesystem::path Write(const std::string& name, const std::string& content) const;

 private:
  std::filesystem::path path_;
};

// Runs qxrun with `args` in `folder` (its profile store in folder/home) and waits for it.
ProcessResult RunQxrun(const std::filesystem::path& folder, const std::vector<std::string>& args);

std::string ReadFile(const std::filesystem::path& file);

// The rows of a CSV text split at commas (no quoting), the header row included unless `header`
// is false.
std::vector<std::vector<std::string>> CsvRows(const std::string& text, bool header = true);

// Checks a run refused as bad input: exit code 2, one line on standard error that holds
// `says`, and nothing in the folder `out`.
void ExpectRefused(const ProcessResult& result, const std::string& says,
                   const std::filesystem::path& out);

// Files left in a folder (none when it does not exist).
std::vector<std::string> FilesIn(const std::filesystem::path& folder);

}  // namespace qxrun_test

#endif  // TESTS_QXRUN_QXRUN_PROCESS_H_
