#include "qxrun/report/OutputFolder.h"

#include "qxrun/InputError.h"

#include <fstream>
#include <random>
#include <stdexcept>
#include <system_error>

namespace qxrun {
namespace {

// True when a file can be made in `folder` (tried with a probe that is removed at once).
bool CanWriteIn(const std::filesystem::path& folder) {
  const std::filesystem::path probe =
      folder / (".qxrun-probe-" + std::to_string(std::random_device()()));
  {
    std::ofstream out(probe, std::ios::binary);
    if (!out) return false;
  }
  std::error_code error;
  std::filesystem::remove(probe, error);
  return true;
}

}  // namespace

OutputFolder::OutputFolder(std::filesystem::path folder) : folder_(std::move(folder)) {
  const std::string where = "--out " + folder_.string();
  std::error_code error;
  const auto status = std::filesystem::status(folder_, error);
  if (std::filesystem::exists(status)) {
    if (!std::filesystem::is_directory(status)) {
      throw InputError(where + ": exists and is not a folder");
    }
    if (!CanWriteIn(folder_)) throw InputError(where + ": the folder cannot be written");
    return;
  }
  std::filesystem::path parent = folder_.parent_path();
  if (parent.empty()) parent = ".";
  const auto parentStatus = std::filesystem::status(parent, error);
  if (!std::filesystem::exists(parentStatus)) {
    throw InputError(where + ": the parent folder " + parent.string() + " does not exist");
  }
  if (!std::filesystem::is_directory(parentStatus)) {
    throw InputError(where + ": " + parent.string() + " is not a folder");
  }
  if (!CanWriteIn(parent)) throw InputError(where + ": " + parent.string() + " cannot be written");
}

void OutputFolder::Make() {
  std::error_code error;
  std::filesystem::create_directories(folder_, error);
  if (error) throw std::runtime_error("cannot make " + folder_.string() + ": " + error.message());
}

void OutputFolder::Write(const std::string& name, const std::function<void(std::ostream&)>& write) {
  Make();
  std::error_code error;
  const std::filesystem::path target = folder_ / name;
  const std::filesystem::path temporary = folder_ / ("." + name + ".tmp");
  {
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    if (!out) throw std::runtime_error("cannot write " + temporary.string());
    write(out);
    out.flush();
    if (!out) {
      out.close();
      std::filesystem::remove(temporary, error);
      throw std::runtime_error("cannot write " + temporary.string());
    }
  }
  std::filesystem::rename(temporary, target, error);
  if (error) {
    std::filesystem::remove(temporary, error);
    throw std::runtime_error("cannot rename " + temporary.string() + " to " + target.string());
  }
  written_.push_back(target);
}

}  // namespace qxrun
