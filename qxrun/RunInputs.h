// What every mode of qxrun needs before it reads a bar, and the bars themselves. Everything the
// command line and the run file say is checked here, so bad input fails before anything is written.
#ifndef QXRUN_RUN_INPUTS_H_
#define QXRUN_RUN_INPUTS_H_

#include "sysfuncs/sysfuncs.h"

#include "qxrun/Formula.h"
#include "qxrun/config/RunFile.h"
#include "qxrun/report/OutputFolder.h"

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qxrun {

class FormulaLibrary;

// The options every mode shares.
struct RunOptions {
  std::vector<std::string> DataFiles;
  std::string Formula;
  std::vector<std::string> Params;
  std::string RunFile;
  std::string OutFolder;
  std::optional<double> Capital;
  std::optional<int> Lots;
  bool Quiet = false;
  bool Page = true;  // report.html with --out
};

struct RunInputs {
  RunInputs();
  ~RunInputs();
  RunInputs(RunInputs&&) noexcept;
  RunInputs& operator=(RunInputs&&) noexcept;

  RunSettings Settings;                     // the run file with the command line applied
  std::unique_ptr<FormulaLibrary> Library;  // keeps a user formula's shared object loaded
  const FormulaInfo* Info = nullptr;
  std::map<std::string, double> Params;  // every parameter of the formula, resolved
  std::optional<OutputFolder> Folder;    // checked, not made yet
  std::map<std::string, Quill::ITickDeepLevel> Quotes;
  std::filesystem::path UserDir;  // where the profile store lives
};

// Reads the run file, applies the command line to it, finds the formula and resolves its
// parameters, checks the output folder and reads the quote snapshot. Throws InputError.
RunInputs PrepareRun(const RunOptions& options);

// Loads the bar file of every symbol as a data source. Throws InputError naming the file.
std::vector<QXDataSource> LoadSources(const RunSettings& settings);

// Names the local time zone for the C library when TZ is unset (TZ=":/etc/localtime", the same
// zone): without it every conversion to local time looks at /etc/localtime again, a file system
// call per conversion. Call once at the start, before any thread starts.
void NameLocalZone();

// $QXRUN_HOME, else ~/.qxrun.
std::filesystem::path DefaultUserDir();

}  // namespace qxrun

#endif  // QXRUN_RUN_INPUTS_H_
