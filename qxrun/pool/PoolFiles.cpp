#include "qxrun/pool/PoolFiles.h"

#include "qxrun/report/Tables.h"
#include "qxrun/sweep/SweepResults.h"

namespace qxrun {

void WriteHoldingsCsv(std::ostream& out, const std::vector<PoolSymbol>& symbols,
                      const PoolBook& book) {
  out << "time,held";
  for (const PoolSymbol& symbol : symbols) out << ',' << symbol.Code;
  out << '\n';
  for (size_t date = 0; date < book.Times.size(); ++date) {
    const std::vector<int8_t>& held = book.Held[date];
    int count = 0;
    for (const int8_t side : held) count += side != 0;
    out << LocalDateTime(book.Times[date]) << ',' << count;
    for (const int8_t side : held) out << ',' << static_cast<int>(side);
    out << '\n';
  }
}

void WriteDecisionsCsv(std::ostream& out, const std::vector<PoolSymbol>& symbols) {
  out << "time,symbol,bar,signal,enabled,sort_values,ranks\n";
  for (const PoolSymbol& symbol : symbols) {
    for (const auto& [time, record] : *symbol.CheckPoints) {
      out << LocalDateTime(time) << ',' << symbol.Code << ',' << record.Bar << ',' << record.Signal
          << ',' << record.Enabled << ',';
      const char* separator = "";
      for (const auto& [criterion, value] : record.SortValues) {
        out << separator << criterion << ':' << ExactNumber(value.first);
        separator = ";";
      }
      out << ',';
      separator = "";
      if (const auto ranks = symbol.Ranks->find(time); ranks != symbol.Ranks->end()) {
        for (const auto& [criterion, rank] : ranks->second) {
          out << separator << criterion << ':' << rank;
          separator = ";";
        }
      }
      out << '\n';
    }
  }
}

}  // namespace qxrun
