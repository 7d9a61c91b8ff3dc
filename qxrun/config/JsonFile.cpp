#include "qxrun/config/JsonFile.h"

#include "qxrun/InputError.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace qxrun {

namespace {

// The line of byte `offset` of `text`, from 1.
std::string LineAt(const std::string& text, size_t offset) {
  offset = std::min(offset, text.size());
  return std::to_string(
      1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(offset), '\n'));
}

}  // namespace

nlohmann::json ReadJsonFile(const std::filesystem::path& file, const std::string& what) {
  const std::string name = file.string();
  std::ifstream in(file, std::ios::binary);
  if (!in) throw InputError(name + ": cannot open the " + what);
  const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    // The parser names the byte; people look for the line.
    std::string reason = error.what();
    const size_t colon = reason.rfind(": ");
    if (colon != std::string::npos) reason = reason.substr(colon + 2);
    throw InputError(name + ":" + LineAt(text, error.byte) + ": malformed JSON: " + reason);
  } catch (const nlohmann::json::out_of_range& error) {
    // A number too large for a double ("1e999") is out of range; the message quotes the number,
    // whose place gives the line.
    std::string reason = error.what();
    reason = reason.substr(reason.find("] ") + 2);  // after "[json.exception.out_of_range.406]"
    const size_t first = reason.find('\'');
    const size_t last = reason.rfind('\'');
    const std::string number = first < last ? reason.substr(first + 1, last - first - 1) : "";
    throw InputError(name + ":" + LineAt(text, text.find(number)) + ": malformed JSON: " + reason);
  }
}

}  // namespace qxrun
