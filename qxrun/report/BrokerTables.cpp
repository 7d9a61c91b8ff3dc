#include "qxrun/report/BrokerTables.h"

#include <ctime>

namespace qxrun {
namespace {

const char* StatusName(int32_t status) {
  switch (status) {
    case kSending:
      return "sending";
    case kReported:
      return "working";
    case kRejected:
      return "rejected";
    case kPartlyFilled:
      return "partly filled";
    case kFilled:
      return "filled";
    case kPartlyCancelled:
      return "partly filled, rest cancelled";
    case kCancelled:
      return "cancelled";
    default:
      return "unknown";
  }
}

const char* EffectName(int32_t entryOrExit) {
  return entryOrExit == 1 ? "open" : entryOrExit == 5 ? "close today" : "close";
}

// A text field quoted when it holds a comma or a quote.
std::string Field(const std::string& text) {
  if (text.find_first_of(",\"\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (char c : text) {
    if (c == '"') quoted.push_back('"');
    quoted.push_back(c);
  }
  return quoted + "\"";
}

}  // namespace

std::string LocalTimeText(int64_t millis) {
  const auto seconds =
      static_cast<std::time_t>(millis >= 0 ? millis / 1000 : (millis - 999) / 1000);
  std::tm local{};
  localtime_r(&seconds, &local);
  char text[32];
  std::strftime(text, sizeof(text), "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

void WriteBrokerOrdersCsv(std::ostream& out, const std::vector<BrokerOrder>& orders) {
  out << "contract_no,time,tick,account,code,side,effect,lots,price,status,filled,filled_price,"
         "note,comment\n";
  for (const BrokerOrder& o : orders) {
    out << o.ContractNo << ',' << LocalTimeText(o.Time) << ',' << o.Sequence << ','
        << Field(o.Account) << ',' << Field(o.Code) << ',' << (o.BuyOrSell == 1 ? "buy" : "sell")
        << ',' << EffectName(o.EntryOrExit) << ',' << o.Lots << ',' << o.Price << ','
        << StatusName(o.Status) << ',' << o.Filled << ',' << o.FilledPrice << ',' << Field(o.Note)
        << ',' << Field(o.Comment) << '\n';
  }
}

void WriteFillsCsv(std::ostream& out, const std::vector<BrokerFill>& fills,
                   const std::vector<BrokerOrder>& orders) {
  out << "fill,contract_no,time,tick,account,code,side,effect,lots,price,commission,profit\n";
  for (const BrokerFill& f : fills) {
    const auto index = static_cast<size_t>(f.OrderId - 1);
    const std::string contract = index < orders.size() ? orders[index].ContractNo : "";
    out << f.Id << ',' << contract << ',' << LocalTimeText(f.Time) << ',' << f.Sequence << ','
        << Field(f.Account) << ',' << Field(f.Code) << ',' << (f.BuyOrSell == 1 ? "buy" : "sell")
        << ',' << EffectName(f.EntryOrExit) << ',' << f.Lots << ',' << f.Price << ','
        << f.Commission << ',' << f.Profit << '\n';
  }
}

}  // namespace qxrun
