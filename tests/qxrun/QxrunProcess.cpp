#include "qxrun/QxrunProcess.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <sstream>
#include <sys/wait.h>

namespace qxrun_test {

ScratchFolder::ScratchFolder() {
  std::random_device random;
  path_ = std::filesystem::temp_directory_path() /
          ("qxrun-test-" + std::to_string(random()) + std::to_string(random()));
  std::filesystem::create_directories(path_);
}

ScratchFolder::~ScratchFolder() {
  std::error_code error;
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all,
                               std::filesystem::perm_options::add, error);
  std::filesystem::remove_all(path_, error);
}

std::filesystem::path ScratchFolder::Write(const std::string& name,
                                           const std::string& content) const {
  const std::filesystem::path file = path_ / name;
  std::filesystem::create_directories(file.parent_path());
  std::ofstream out(file, std::ios::binary);
  out << content;
  return file;
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

std::vector<std::string> FilesIn(const std::filesystem::path& folder) {
  std::vector<std::string> names;
  std::error_code error;
  if (!std::filesystem::is_directory(folder, error)) return names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

std::vector<std::vector<std::string>> CsvRows(const std::string& text, bool header) {
  std::vector<std::vector<std::string>> rows;
  std::istringstream lines(text);
  std::string line;
  if (!header) std::getline(lines, line);
  while (std::getline(lines, line)) {
    std::vector<std::string>& row = rows.emplace_back();
    std::istringstream cells(line);
    std::string cell;
    while (std::getline(cells, cell, ',')) row.push_back(cell);
    if (!line.empty() && line.back() == ',') row.emplace_back();
  }
  return rows;
}

void ExpectRefused(const ProcessResult& result, const std::string& says,
                   const std::filesystem::path& out) {
  EXPECT_EQ(result.ExitCode, 2) << says;
  EXPECT_NE(result.Err.find(says), std::string::npos) << result.Err;
  EXPECT_EQ(result.Err.find('\n'), result.Err.size() - 1) << "one line: " << result.Err;
  EXPECT_TRUE(FilesIn(out).empty()) << says;
}

namespace {

// The argument quoted for the shell.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

}  // namespace

ProcessResult RunQxrun(const std::filesystem::path& folder, const std::vector<std::string>& args) {
  std::ostringstream command;
  command << "cd " << Quoted(folder.string())
          << " && QXRUN_HOME=" << Quoted((folder / "home").string()) << " " << Quoted(QXRUN_BINARY);
  for (const std::string& arg : args) command << ' ' << Quoted(arg);
  const std::filesystem::path out = folder / ".stdout";
  const std::filesystem::path err = folder / ".stderr";
  command << " >" << Quoted(out.string()) << " 2>" << Quoted(err.string());
  const int status = std::system(command.str().c_str());
  ProcessResult result;
  result.ExitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  result.Out = ReadFile(out);
  result.Err = ReadFile(err);
  std::filesystem::remove(out);
  std::filesystem::remove(err);
  return result;
}

}  // namespace qxrun_test
