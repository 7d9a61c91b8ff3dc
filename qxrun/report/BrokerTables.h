// The paper broker's orders and fills as CSV files of a replay's output folder.
#ifndef QXRUN_REPORT_BROKER_TABLES_H_
#define QXRUN_REPORT_BROKER_TABLES_H_

#include "qxrun/broker/BrokerRecords.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

// "YYYY-MM-DD HH:MM:SS" in local time.
std::string LocalTimeText(int64_t millis);

// broker-orders.csv: one row per order, in the order they arrived.
void WriteBrokerOrdersCsv(std::ostream& out, const std::vector<BrokerOrder>& orders);
// fills.csv: one row per fill.
void WriteFillsCsv(std::ostream& out, const std::vector<BrokerFill>& fills,
                   const std::vector<BrokerOrder>& orders);

}  // namespace qxrun

#endif  // QXRUN_REPORT_BROKER_TABLES_H_
