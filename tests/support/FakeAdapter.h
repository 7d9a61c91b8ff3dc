// A platform adapter for tests: contract records and rollovers by symbol code, with call
// counters, and a scoped installation of an adapter in the module's environment.
#ifndef SYSFUNCS_TESTS_SUPPORT_FAKE_ADAPTER_H_
#define SYSFUNCS_TESTS_SUPPORT_FAKE_ADAPTER_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/Environment.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace sysfuncs::testing {

class FakeAdapter : public CDataAdapter {
 public:
  // Known symbols by code; a symbol without a record is unknown.
  std::map<std::string, Quill::ICodeProperty> properties;
  // Rollovers by code; a symbol without an entry has none to report.
  std::map<std::string, std::vector<Quill::IFutureRolloverValue>> rollovers;

  int propertyCalls = 0;
  int rolloverCalls = 0;
  tagSymbol lastKey;  // the key of the latest call of either kind
  int64_t lastBeginTime = 0;
  int64_t lastEndTime = 0;
  int32_t lastFlag = 0;

  bool GetSymbolProperty(const tagSymbol& symbol, Quill::ICodeProperty& property) override {
    ++propertyCalls;
    lastKey = symbol;
    const auto found = properties.find(symbol.Code);
    if (found == properties.end()) return false;
    property = found->second;
    return true;
  }

  bool GetFutureRollover(const tagSymbol& symbol, int64_t beginTime, int64_t endTime, int32_t flag,
                         std::vector<Quill::IFutureRolloverValue>& values) override {
    ++rolloverCalls;
    lastKey = symbol;
    lastBeginTime = beginTime;
    lastEndTime = endTime;
    lastFlag = flag;
    const auto found = rollovers.find(symbol.Code);
    if (found == rollovers.end()) return false;
    values = found->second;
    return true;
  }
};

// Installs an adapter (null: none) in the module's environment for the scope and puts the
// previous one back afterwards.
class ScopedAdapter {
 public:
  explicit ScopedAdapter(CDataAdapter* adapter) : previous_(GetSFEnv()->m_pDataAdapter) {
    GetSFEnv()->m_pDataAdapter = adapter;
  }
  ~ScopedAdapter() { GetSFEnv()->m_pDataAdapter = previous_; }
  ScopedAdapter(const ScopedAdapter&) = delete;
  ScopedAdapter& operator=(const ScopedAdapter&) = delete;

 private:
  CDataAdapter* previous_;
};

}  // namespace sysfuncs::testing

#endif  // SYSFUNCS_TESTS_SUPPORT_FAKE_ADAPTER_H_
