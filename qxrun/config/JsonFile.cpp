#include "qxrun/config/JsonFile.h"

#include "qxrun/InputError.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace qxrun {

nlohmann::json ReadJsonFile(const std::filesystem::path& file, const std::string& what) {
  const std::string name = file.string();
  std::ifstream in(file, std::ios::binary);
  if (!in) throw InputError(name + ": cannot open the " + what);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    // The parser names the byte; people look for the line.
    const size_t offset = std::min(error.byte, text.size());
    const auto line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n');
    std::string reason = error.what();
    const size_t colon = reason.rfind(": ");
    if (colon != std::string::npos) reason = reason.substr(colon + 2);
    throw InputError(name + ":" + std::to_string(line) + ": malformed JSON: " + reason);
  }
}

}  // namespace qxrun
