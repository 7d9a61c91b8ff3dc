// The output folder of a run. Each file is written under a temporary name in the folder and
// renamed when complete, so the folder never holds a half-written file.
#ifndef QXRUN_REPORT_OUTPUT_FOLDER_H_
#define QXRUN_REPORT_OUTPUT_FOLDER_H_

#include <filesystem>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

class OutputFolder {
 public:
  // Checks that `folder` can be used: an existing folder that can be written, or a path whose
  // parent folder exists. Nothing is created yet. Throws InputError naming the folder.
  explicit OutputFolder(std::filesystem::path folder);

  // Makes the folder when missing. Throws std::runtime_error when it cannot be made.
  void Make();

  // Writes `name` in the folder (made when missing) through `write`. Throws std::runtime_error
  // when the file cannot be written; a partly written file is removed.
  void Write(const std::string& name, const std::function<void(std::ostream&)>& write);

  const std::filesystem::path& Path() const { return folder_; }
  const std::vector<std::filesystem::path>& Written() const { return written_; }

 private:
  std::filesystem::path folder_;
  std::vector<std::filesystem::path> written_;
};

}  // namespace qxrun

#endif  // QXRUN_REPORT_OUTPUT_FOLDER_H_
