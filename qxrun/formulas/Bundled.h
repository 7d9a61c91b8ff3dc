// The formulas compiled into qxrun, and formulas from a user's shared object.
#ifndef QXRUN_FORMULAS_BUNDLED_H_
#define QXRUN_FORMULAS_BUNDLED_H_

#include "qxrun/Formula.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace qxrun {

// Descriptions of the bundled formulas (defined one per file).
const FormulaInfo& MaCrossInfo();
const FormulaInfo& BreakoutInfo();
const FormulaInfo& SpreadInfo();
const FormulaInfo& ChannelPlotInfo();
const FormulaInfo& MomentumPickInfo();
const FormulaInfo& LiveQuotesInfo();

// Every bundled formula, in the order `qxrun formulas` lists them.
const std::vector<const FormulaInfo*>& BundledFormulas();

// A shared object of formulas, kept loaded while the object lives.
class FormulaLibrary {
 public:
  // Loads `file` and reads its factory. Throws InputError naming the file when it cannot be
  // loaded, exports no factory or was built against another interface version.
  explicit FormulaLibrary(const std::filesystem::path& file);
  ~FormulaLibrary();
  FormulaLibrary(const FormulaLibrary&) = delete;
  FormulaLibrary& operator=(const FormulaLibrary&) = delete;

  const std::vector<const FormulaInfo*>& Formulas() const { return formulas_; }

 private:
  void* handle_ = nullptr;
  std::vector<const FormulaInfo*> formulas_;
};

// The formula `name`: a bundled one by its name, or "PATH.so" / "PATH.so:NAME" from a shared
// object (its first formula when no name is given); `library` keeps the shared object loaded.
// Throws InputError naming the formula.
const FormulaInfo& FindFormula(const std::string& name, std::unique_ptr<FormulaLibrary>& library);

// The parameter values of a run: each declared parameter's default, replaced by the run file's
// `fileParams` and then by the command line's "name=value" texts. Throws InputError naming the
// parameter when it is unknown, malformed, fractional where whole numbers are asked for, or
// outside its range.
std::map<std::string, double> ResolveParameters(const FormulaInfo& info,
                                                const std::map<std::string, double>& fileParams,
                                                const std::vector<std::string>& commandLine);

}  // namespace qxrun

#endif  // QXRUN_FORMULAS_BUNDLED_H_
