// The host's message centre: receives the library's buffered file output and appends each line,
// with a line end, to its file. Relative file names are taken from the base folder (the run's
// output folder, or the working directory).
#ifndef QXRUN_HOST_MESSAGE_CENTRE_H_
#define QXRUN_HOST_MESSAGE_CENTRE_H_

#include "sysfuncs/Platform.h"

#include <cstddef>
#include <filesystem>
#include <mutex>
#include <string>

namespace qxrun {

class MessageCentre {
 public:
  explicit MessageCentre(std::filesystem::path baseFolder);

  // The hand-over of one run of the background writer: records of kind 1 append their text to
  // the file named in their key "FA[name]". Returns the number of lines written.
  int Receive(int kind, const Quill::MsgRecord* records, size_t count);

  // The file a key names, or empty when the key is not a file key.
  std::filesystem::path FileOfKey(const char* key) const;

  // Lines that could not be written (a folder missing, no permission).
  size_t FailedLines() const;

 private:
  std::filesystem::path base_;
  mutable std::mutex mutex_;
  size_t failed_ = 0;
};

// The platform services of qxrun: the library's defaults with the message centre replaced.
SysFuncsPlatform HostPlatform(MessageCentre& centre);

}  // namespace qxrun

#endif  // QXRUN_HOST_MESSAGE_CENTRE_H_
