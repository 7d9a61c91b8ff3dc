// Profile strings: texts kept across runs in the platform's "qxlprofile" store and in INI files.
#ifndef SYSFUNCS_OUTPUT_PROFILE_STRINGS_H_
#define SYSFUNCS_OUTPUT_PROFILE_STRINGS_H_

#include <string>

namespace sysfuncs {

// Stores `value` under `section`/`key` of the platform's store "qxlprofile"; returns true.
// Raises IceUtil::NullHandleException when the module was not started (no adapter).
bool SetQXProfileString(const std::string& section, const std::string& key,
                        const std::string& value);

// The text under `section`/`key` of "qxlprofile"; "N/A" when missing or empty. Raises
// IceUtil::NullHandleException when the module was not started (no adapter).
std::string GetQXProfileString(const std::string& section, const std::string& key);

// The text under `section`/`key` of the INI file `file`, at most 259 bytes; "N/A" when the file,
// the section or the key is missing; the empty text for a key with an empty value.
std::string GetQXProfileString2File(const std::string& file, const std::string& section,
                                    const std::string& key);

// Retired: writes the withdrawal notice under `section`/`key` of `file` instead of `value`, so
// that a formula still calling it finds the notice in its file. False when the file cannot be
// written.
bool SetQXProfileString2File(const std::string& file, const std::string& section,
                             const std::string& key, const std::string& value);

}  // namespace sysfuncs

#endif  // SYSFUNCS_OUTPUT_PROFILE_STRINGS_H_
