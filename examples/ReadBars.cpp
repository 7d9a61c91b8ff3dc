// Reads a bar file and runs a trivial formula over it, bar by bar, through CSystemFuncs: it
// remembers the first and last dates and the highest high, and prints what it read.
#include "sysfuncs/sysfuncs.h"

#include "BarFile.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

// What the formula keeps between bars.
struct Summary {
  int32_t firstDate = 0;
  int32_t lastDate = 0;
  int32_t bars = 0;
  double highestHigh = 0.0;
  int32_t highestHighDate = 0;
};

// The formula body, run once per bar.
void Formula(CSystemFuncs& f, Summary& summary) {
  if (!f.HistoryDataExist()) return;
  ++summary.bars;
  if (f.BarStatus() == 0) summary.firstDate = f.Date();
  summary.lastDate = f.Date();
  if (summary.bars == 1 || f.High() > summary.highestHigh) {
    summary.highestHigh = f.High();
    summary.highestHighDate = f.Date();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: read_bars <bar file>\n");
    return 2;
  }
  std::vector<QXDataSource> sources(1);
  try {
    sources[0].Bars = ReadBarFile(argv[1]);
  } catch (const BarFileError& error) {
    std::fprintf(stderr, "read_bars: %s\n", error.what());
    return 1;
  }
  sources[0].Symbol = "sample";
  sources[0].BarType = 0;  // day bars
  sources[0].BarInterval = 1;

  CDataAdapter adapter;  // a platform with no data: contract values keep their defaults
  SysFuncs_Init(nullptr, &adapter, ".", "example");

  CQXBaseData data;
  data.DataSources = &sources;
  data.DataCount = 1;
  data.BarCount = static_cast<int32_t>(sources[0].Bars.size());
  data.SourceInfos.resize(1);
  data.CostSettings.resize(1);
  data.Ledgers.resize(1);
  data.InitCapital = 1000000.0;

  Summary summary;
  {
    CSystemFuncs funcs(&data);
    for (int32_t bar = 0; bar < data.BarCount; ++bar) {
      data.CurrentBar = bar;
      Formula(funcs, summary);
      funcs.BarCheckout();
    }
  }
  SysFuncs_Exit();

  std::printf("file:         %s\n", argv[1]);
  std::printf("bars:         %d\n", summary.bars);
  std::printf("first date:   %d\n", summary.firstDate);
  std::printf("last date:    %d\n", summary.lastDate);
  std::printf("highest high: %.2f on %d\n", summary.highestHigh, summary.highestHighDate);
  return 0;
}
