#include "qxrun/data/BarFile.h"

#include "qxrun/InputError.h"
#include "qxrun/data/BarRows.h"
#include "qxrun/data/CsvLayout.h"
#include "qxrun/data/LineStream.h"
#include "qxrun/data/MemoryHints.h"

#include <algorithm>

namespace qxrun {
namespace {

bool IsBlankLine(std::string_view line) {
  return std::all_of(line.begin(), line.end(), [](char c) { return c == ' ' || c == '\t'; });
}

// Makes room for `count` bars, their memory mapped at once.
void Reserve(std::vector<QXBar>& bars, size_t count) {
  bars.reserve(count);
  QXBar* const unused = bars.data() + bars.size();
  PrepareForWriting(unused, (bars.capacity() - bars.size()) * sizeof(QXBar));
}

// Room for the bars of the bytes not read yet, from the average line length so far, with 2% to
// spare so that lines growing a little longer towards the end do not make the vector move.
size_t BarsToReserve(LineStream& stream, size_t barsSoFar) {
  const double lineLength = std::max(1.0, stream.AverageLineLength());
  const auto more =
      static_cast<size_t>(static_cast<double>(stream.BytesLeft()) / lineLength * 1.02);
  return barsSoFar + more + 16;
}

}  // namespace

void LoadBarFile(const std::filesystem::path& file, const ColumnMap& map, QXDataSource& source) {
  const std::string name = file.string();
  LineStream stream(file);
  std::string_view line;
  bool any = stream.Next(&line);
  while (any && IsBlankLine(line)) any = stream.Next(&line);
  if (!any) throw InputError(name + ": the bar file is empty");
  if (stream.LineNumber() > 1) {
    throw InputError(name + ":1: an empty line before the first line of data");
  }
  const std::string firstLine(line);
  const char delimiter = map.Delimiter != 0 ? map.Delimiter : DetectDelimiter(firstLine);
  const bool header =
      map.HasHeader >= 0 ? map.HasHeader == 1 : LooksLikeHeader(firstLine, delimiter);
  std::string barLine = firstLine;
  int64_t barLineNumber = 1;
  if (header) {
    any = stream.Next(&line);
    while (any && IsBlankLine(line)) any = stream.Next(&line);
    if (!any) throw InputError(name + ":1: a header but no bars after it");
    if (stream.LineNumber() > 2) throw InputError(name + ":2: an empty line after the header");
    barLine = std::string(line);
    barLineNumber = 2;
  }
  const BarLayout layout =
      ResolveLayout(map, firstLine, barLine, static_cast<int>(barLineNumber), name);

  std::vector<QXBar> bars;
  Reserve(bars, BarsToReserve(stream, 1));
  BarRows rows(layout, name);
  bars.push_back(rows.Read(barLine, barLineNumber));
  // An empty line is fine at the end of the file; before another bar it is an error, since it
  // usually marks two files run together or a row lost.
  int64_t blankLine = 0;
  while (stream.Next(&line)) {
    if (line.empty() || IsBlankLine(line)) {
      if (blankLine == 0) blankLine = stream.LineNumber();
      continue;
    }
    if (blankLine != 0) {
      throw InputError(name + ":" + std::to_string(blankLine) +
                       ": an empty line between bars (the next bar is on line " +
                       std::to_string(stream.LineNumber()) + ")");
    }
    if (bars.size() == bars.capacity()) Reserve(bars, BarsToReserve(stream, bars.size()));
    bars.push_back(rows.Read(line, stream.LineNumber()));
  }
  const auto [barType, interval] = rows.Period();
  source.Bars = std::move(bars);
  source.BarType = barType;
  source.BarInterval = interval;
}

}  // namespace qxrun
