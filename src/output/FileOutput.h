// Buffered file output of formulas.
#ifndef SYSFUNCS_OUTPUT_FILE_OUTPUT_H_
#define SYSFUNCS_OUTPUT_FILE_OUTPUT_H_

#include <string>

namespace sysfuncs {

// Queues a line for `file` with the background writer; returns true. Raises
// IceUtil::NullHandleException when the module was not started.
bool FileAppend(const std::string& file, const std::string& text);

// Deletes `file` at once; false when nothing was deleted. Lines still pending for it are handed
// over at the writer's next run.
bool FileDelete(const std::string& file);

}  // namespace sysfuncs

#endif  // SYSFUNCS_OUTPUT_FILE_OUTPUT_H_
