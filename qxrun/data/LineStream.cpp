#include "qxrun/data/LineStream.h"

#include "qxrun/InputError.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace qxrun {

LineStream::LineStream(const std::filesystem::path& file) : name_(file.string()) {
  std::error_code error;
  if (std::filesystem::is_directory(file, error)) {
    throw InputError(name_ + ": cannot read the bar file: it is a folder");
  }
  const auto size = std::filesystem::file_size(file, error);
  fileSize_ = error ? 0 : size;
  // A small file needs no more than its own size (and one byte to see its end).
  buffer_.resize(error ? kBlockSize : std::clamp<uint64_t>(size + 1, kSmallestBlock, kBlockSize));
  file_ = std::fopen(name_.c_str(), "rb");
  if (file_ == nullptr) {
    throw InputError(name_ + ": cannot open the bar file: " + std::strerror(errno));
  }
  std::setvbuf(file_, nullptr, _IONBF, 0);  // the blocks are the buffer
}

LineStream::~LineStream() {
  if (file_ != nullptr) std::fclose(file_);
}

bool LineStream::Fill() {
  if (atEnd_) return false;
  // Keep the unread tail, then read behind it; a full buffer holding one long line grows.
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) buffer_.resize(buffer_.size() * 2);
  const size_t read = std::fread(buffer_.data() + end_, 1, buffer_.size() - end_, file_);
  if (read == 0) {
    if (std::ferror(file_) != 0) {
      throw InputError(name_ + ":" + std::to_string(lineNumber_ + 1) +
                       ": cannot read the bar file: " + std::strerror(errno));
    }
    atEnd_ = true;
    return false;
  }
  end_ += read;
  if (!started_) {
    started_ = true;
    if (end_ >= 3 && std::memcmp(buffer_.data(), "\xEF\xBB\xBF", 3) == 0) {
      begin_ = 3;
      consumed_ = 3;
    }
  }
  return true;
}

bool LineStream::Next(std::string_view* line) {
  size_t searched = begin_;
  for (;;) {
    const char* data = buffer_.data();
    const void* found = std::memchr(data + searched, '\n', end_ - searched);
    if (found != nullptr) {
      const size_t newline = static_cast<size_t>(static_cast<const char*>(found) - data);
      size_t lineEnd = newline;
      if (lineEnd > begin_ && data[lineEnd - 1] == '\r') --lineEnd;
      *line = std::string_view(data + begin_, lineEnd - begin_);
      consumed_ += newline + 1 - begin_;
      begin_ = newline + 1;
      ++lineNumber_;
      return true;
    }
    const size_t pending = end_ - begin_;
    if (!Fill()) break;
    searched = begin_ + pending;
  }
  if (begin_ == end_) return false;
  // The last line, without a line end.
  size_t lineEnd = end_;
  if (buffer_[lineEnd - 1] == '\r') --lineEnd;
  *line = std::string_view(buffer_.data() + begin_, lineEnd - begin_);
  consumed_ += end_ - begin_;
  begin_ = end_;
  ++lineNumber_;
  return true;
}

double LineStream::AverageLineLength() {
  if (!started_) Fill();
  const int64_t waiting = std::count(buffer_.data() + begin_, buffer_.data() + end_, '\n');
  const uint64_t bytes = consumed_ + (end_ - begin_);
  const int64_t lines = lineNumber_ + waiting;
  if (lines == 0) return static_cast<double>(bytes);  // one line without a line end
  return static_cast<double>(bytes) / static_cast<double>(lines);
}

}  // namespace qxrun
