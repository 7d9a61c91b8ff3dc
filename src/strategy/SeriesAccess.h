// Addressing the series of a strategy instance from the order engine.
#ifndef SYSFUNCS_STRATEGY_SERIES_ACCESS_H_
#define SYSFUNCS_STRATEGY_SERIES_ACCESS_H_

#include "sysfuncs/HostData.h"

#include <cstdint>

namespace sysfuncs {

// Puts CurrentData and CurrentBar of the host's data object back when it goes out of scope: a
// loop over the series addresses each in turn and leaves the formula's addressing as it was.
class CurrentDataScope {
 public:
  explicit CurrentDataScope(CQXBaseData* data)
      : data_(data), dataIndex_(data->CurrentData), bar_(data->CurrentBar) {}
  ~CurrentDataScope() {
    data_->CurrentData = dataIndex_;
    data_->CurrentBar = bar_;
  }
  CurrentDataScope(const CurrentDataScope&) = delete;
  CurrentDataScope& operator=(const CurrentDataScope&) = delete;

 private:
  CQXBaseData* data_;
  int32_t dataIndex_;
  int32_t bar_;
};

}  // namespace sysfuncs

#endif  // SYSFUNCS_STRATEGY_SERIES_ACCESS_H_
