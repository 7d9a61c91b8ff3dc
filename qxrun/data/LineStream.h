// A file read in large blocks and handed out line by line.
#ifndef QXRUN_DATA_LINE_STREAM_H_
#define QXRUN_DATA_LINE_STREAM_H_

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qxrun {

// Reads a file in blocks of `kBlockSize` bytes into one buffer, so memory stays at one block
// whatever the file's size (a file smaller than a block gets a buffer of its size); a line longer
// than a block grows the buffer. Lines end in "\n" or
// "\r\n" (the line end is not part of the line); a last line without a line end counts as a line.
// A UTF-8 byte order mark at the start is dropped. Throws InputError on a file that cannot be
// opened or read.
class LineStream {
 public:
  static constexpr size_t kBlockSize = size_t{1} << 20;
  static constexpr size_t kSmallestBlock = 4096;

  explicit LineStream(const std::filesystem::path& file);
  ~LineStream();
  LineStream(const LineStream&) = delete;
  LineStream& operator=(const LineStream&) = delete;

  // The next line, valid until the next call; false at the end of the file.
  bool Next(std::string_view* line);

  // The number of the line Next gave last, from 1.
  int64_t LineNumber() const { return lineNumber_; }

  // Bytes of the file not yet handed out as lines.
  uint64_t BytesLeft() const { return consumed_ < fileSize_ ? fileSize_ - consumed_ : 0; }
  uint64_t FileSize() const { return fileSize_; }

  // The average length of the lines handed out and of those waiting in the buffer, line ends
  // included; 0 before anything was read.
  double AverageLineLength();

 private:
  bool Fill();

  std::string name_;
  std::FILE* file_ = nullptr;
  uint64_t fileSize_ = 0;
  uint64_t consumed_ = 0;  // bytes handed out, line ends included
  std::vector<char> buffer_;
  size_t begin_ = 0;  // the unread bytes are [begin_, end_)
  size_t end_ = 0;
  bool atEnd_ = false;
  bool started_ = false;
  int64_t lineNumber_ = 0;
};

}  // namespace qxrun

#endif  // QXRUN_DATA_LINE_STREAM_H_
