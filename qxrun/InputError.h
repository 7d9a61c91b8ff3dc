// Bad input to the host: files, arguments and run-file values.
#ifndef QXRUN_INPUT_ERROR_H_
#define QXRUN_INPUT_ERROR_H_

#include <cstdio>
#include <stdexcept>
#include <string>

namespace qxrun {

// what() is one line for a person: the file, the line and the field (or the run file's key path)
// and what is wrong with the value. A message quotes what the input holds, so each control
// character in it is shown as an escape (\n, \r, \t, \xHH) and the message stays one line.
class InputError : public std::runtime_error {
 public:
  explicit InputError(const std::string& message) : std::runtime_error(OneLine(message)) {}

  static std::string OneLine(const std::string& text) {
    std::string line;
    line.reserve(text.size());
    for (const char c : text) {
      const auto byte = static_cast<unsigned char>(c);
      if (byte >= 0x20 && byte != 0x7F) {
        line += c;
      } else if (c == '\n') {
        line += "\\n";
      } else if (c == '\r') {
        line += "\\r";
      } else if (c == '\t') {
        line += "\\t";
      } else {
        char escape[5];
        std::snprintf(escape, sizeof escape, "\\x%02X", byte);
        line += escape;
      }
    }
    return line;
  }
};

}  // namespace qxrun

#endif  // QXRUN_INPUT_ERROR_H_
