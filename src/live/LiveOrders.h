// Live orders: what the library hands to the trading front end.
#ifndef SYSFUNCS_LIVE_LIVE_ORDERS_H_
#define SYSFUNCS_LIVE_LIVE_ORDERS_H_

#include <cstdint>

namespace sysfuncs {

// The platform's open/close code of an order: entry (0) opens (1), exit today (2) closes today
// (5), any other value closes (7). Orders read back from the broker show closes as 4.
int32_t EntryOrExitToPlatform(int32_t entryOrExit);

}  // namespace sysfuncs

#endif  // SYSFUNCS_LIVE_LIVE_ORDERS_H_
