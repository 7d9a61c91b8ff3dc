// The background writer of file output.
#ifndef SYSFUNCS_OUTPUT_LOGGER_H_
#define SYSFUNCS_OUTPUT_LOGGER_H_

#include <IceUtil/Handle.h>
#include <IceUtil/Timer.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// Collects the lines of FileAppend per file and hands everything collected to the message centre
// each time the timer runs it (every 3 seconds), and a last time when it is destroyed. Appending
// and running may happen on different threads; the lock is held only to append one line or to
// swap the pending table out.
class CTimerTask_Logger : public IceUtil::TimerTask {
 public:
  ~CTimerTask_Logger() override;

  void runTimerTask() override;

  // Queues one line for `file` (exact, case-sensitive name). No line end is added.
  void Append(const std::string& file, const std::string& text);

 private:
  void HandOver();

  std::mutex m_lock;
  std::map<std::string, std::vector<std::string>> m_pending;  // by file name, lines in call order
  uint64_t m_pendingCount = 0;                                // files in m_pending
};
using CTimerTask_LoggerPtr = IceUtil::Handle<CTimerTask_Logger>;

#endif  // SYSFUNCS_OUTPUT_LOGGER_H_
