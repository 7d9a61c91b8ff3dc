// The CSV bar loader on arbitrary files. The first byte picks a column map (most inputs use the
// detected layout); the rest is the file. A file is either loaded, with bars that keep the
// loader's promises, or refused with one line naming what is wrong and the source left alone.
#include "InputFile.h"
#include "qxrun/InputError.h"
#include "qxrun/data/BarFile.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using qxrun::ColumnMap;

ColumnMap MapOf(uint8_t choice) {
  ColumnMap map;
  switch (choice % 8) {
    case 1:
      map.Delimiter = ';';
      map.HasHeader = 0;
      break;
    case 2:
      map.DateFormat = "%Y%m%d";
      map.TimeFormat = "%H%M%S";
      break;
    case 3:
      map.HasHeader = 0;
      map.DateTime = 0;
      map.Open = 1;
      map.High = 2;
      map.Low = 3;
      map.Close = 4;
      map.Volume = 5;
      break;
    case 4:
      map.Delimiter = '\t';
      map.HasHeader = 1;
      map.DateFormat = "%m/%d/%Y";
      map.TimeFormat = "%H:%M";
      break;
    default:  // detected
      break;
  }
  return map;
}

[[noreturn]] void Fail(const char* problem, const std::string& detail = "") {
  std::fprintf(stderr, "fuzz_bar_file: %s %s\n", problem, detail.c_str());
  std::abort();
}

bool Finite(double value) { return std::isfinite(value); }

void CheckBars(const QXDataSource& source) {
  for (size_t i = 0; i < source.Bars.size(); ++i) {
    const QXBar& bar = source.Bars[i];
    const std::string where = "bar " + std::to_string(i);
    if (!Finite(bar.Open) || !Finite(bar.High) || !Finite(bar.Low) || !Finite(bar.Close) ||
        !Finite(bar.Vol) || !Finite(bar.OpenInt)) {
      Fail("a loaded value is not finite:", where);
    }
    if (bar.Low < 0 || bar.Vol < 0 || bar.OpenInt < 0) Fail("a loaded value is negative:", where);
    if (bar.Low > bar.High || bar.Open < bar.Low || bar.Open > bar.High || bar.Close < bar.Low ||
        bar.Close > bar.High) {
      Fail("a loaded bar's prices are out of order:", where);
    }
    if (i > 0 && bar.Time <= source.Bars[i - 1].Time) Fail("bar times do not rise:", where);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TZ", "Asia/Shanghai", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static sysfuncs::fuzz::InputFile file;
  if (size == 0) return 0;
  const ColumnMap map = MapOf(data[0]);
  QXDataSource source;
  source.Symbol = "untouched";
  source.BarType = 7;
  try {
    qxrun::LoadBarFile(file.Write(data + 1, size - 1), map, source);
  } catch (const qxrun::InputError& error) {
    const std::string message = error.what();
    if (message.empty() || message.find('\n') != std::string::npos) {
      Fail("the error is not one line:", message);
    }
    if (!source.Bars.empty() || source.BarType != 7 || source.Symbol != "untouched") {
      Fail("a refused file changed the source:", message);
    }
    return 0;
  }
  CheckBars(source);
  return 0;
}
