#include "output/Logger.h"

#include "platform/Services.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

CTimerTask_Logger::~CTimerTask_Logger() { HandOver(); }

void CTimerTask_Logger::runTimerTask() { HandOver(); }

void CTimerTask_Logger::Append(const std::string& file, const std::string& text) {
  std::lock_guard<std::mutex> lock(m_lock);
  auto [entry, inserted] = m_pending.try_emplace(file);
  if (inserted) ++m_pendingCount;
  entry->second.push_back(text);
}

void CTimerTask_Logger::HandOver() {
  std::map<std::string, std::vector<std::string>> pending;
  {
    std::lock_guard<std::mutex> lock(m_lock);
    pending.swap(m_pending);
    m_pendingCount = 0;
  }
  if (pending.empty()) return;

  size_t lineCount = 0;
  for (const auto& entry : pending) lineCount += entry.second.size();
  std::vector<Quill::MsgRecord> records;
  records.reserve(lineCount);
  for (const auto& [file, lines] : pending) {
    char key[32];
    std::snprintf(key, sizeof key, "FA[%s]", file.c_str());
    const int64_t seconds = sysfuncs::NowMillis() / 1000;  // one time value per file
    for (const std::string& line : lines) {
      Quill::MsgRecord& record = records.emplace_back();
      record.Kind = 1;
      std::memcpy(record.Key, key, sizeof key);
      record.Time = seconds;
      // The line is cut to 259 bytes; the record's text keeps its terminating zero.
      std::memcpy(record.Text, line.data(), std::min(line.size(), sizeof record.Text - 1));
    }
  }
  sysfuncs::PlatformServices()->SendToMsgCenter(1, records.data(), records.size());
}
