// The end of the run on the last bar: the closing of open positions in report runs, the last
// equity point and the performance report.
#include "sysfuncs/SFImpl.h"

#include "strategy/LedgerStatistics.h"
#include "strategy/PerformanceReport.h"
#include "strategy/SeriesAccess.h"

void SFImpl::SettleRun() {
  CQXBaseData& data = *m_pData;
  StrategyAccount& account = *m_spStrategyAccount;
  account.FinalPosition = MarketPosition();
  if (data.OutputMode == 1 || data.OutputMode == 2) {
    // A report run closes every position at its series' last Close.
    const sysfuncs::CurrentDataScope scope(m_pData);
    for (int32_t index = 0; index < data.DataCount; ++index) {
      data.CurrentData = index;
      const int32_t position = MarketPosition();
      if (position == 1) Sell(0.0, 0.0, kOriginSettlement);
      if (position == -1) BuyToCover(0.0, 0.0, kOriginSettlement);
    }
  }
  RecordBar();
  account.Stats.EpisodeDrawDowns.push_back(account.Stats.EpisodeDrawDown);
  account.Report = sysfuncs::ComputeReport(account, data);
}
