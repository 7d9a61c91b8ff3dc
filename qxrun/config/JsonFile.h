// Reading a JSON input file with errors for people.
#ifndef QXRUN_CONFIG_JSON_FILE_H_
#define QXRUN_CONFIG_JSON_FILE_H_

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

namespace qxrun {

// The parsed content of `file`. Throws InputError "FILE: cannot open the <what>" or
// "FILE:LINE: malformed JSON: <reason>".
nlohmann::json ReadJsonFile(const std::filesystem::path& file, const std::string& what);

}  // namespace qxrun

#endif  // QXRUN_CONFIG_JSON_FILE_H_
