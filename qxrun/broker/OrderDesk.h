// The trading front end of a replay: a live order of a formula is confirmed (automatically or by
// the person at the terminal) and handed to the paper broker. Refused orders are not sent.
#ifndef QXRUN_BROKER_ORDER_DESK_H_
#define QXRUN_BROKER_ORDER_DESK_H_

#include "sysfuncs/DataAdapter.h"

#include "qxrun/broker/PaperBroker.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace qxrun {

class OrderConfirmer {
 public:
  virtual ~OrderConfirmer() = default;
  virtual bool Confirm(const Quill::ITradeOrder& order) = 0;
};

// The one-line question for an order: "buy open 2 IF888 at 3580.2 (account paper)? [y/n] ".
std::string ConfirmationPrompt(const Quill::ITradeOrder& order);

// Asks on a terminal: writes the prompt to `out`, reads one line from `in`; "y" or "yes" (any
// case) confirms, anything else (end of input too) refuses.
class TerminalConfirmer : public OrderConfirmer {
 public:
  TerminalConfirmer(std::FILE* in, std::FILE* out) : in_(in), out_(out) {}
  ~TerminalConfirmer() override;
  // The process's controlling terminal. Throws InputError when there is none.
  static std::unique_ptr<TerminalConfirmer> OpenTerminal();
  bool Confirm(const Quill::ITradeOrder& order) override;

 private:
  std::FILE* in_;
  std::FILE* out_;
  bool owned_ = false;
};

class OrderDesk {
 public:
  // `confirmer` null: every order is confirmed. Both must outlive the desk.
  OrderDesk(PaperBroker& broker, OrderConfirmer* confirmer, std::string session)
      : broker_(broker), confirmer_(confirmer), session_(std::move(session)) {}

  // The tick the formula is evaluated on: orders sent now carry it.
  void SetSequence(int64_t sequence) { sequence_ = sequence; }

  // The front end's call: non-zero when the broker took the order in. The order is kept as
  // "sending" before the broker looks at it, so a run stopped in between finds it on restart.
  int Submit(Quill::ITradeOrder* order);

  int64_t Refused() const { return refused_; }

 private:
  PaperBroker& broker_;
  OrderConfirmer* confirmer_;
  std::string session_;
  int64_t sequence_ = 0;
  int64_t refused_ = 0;
};

}  // namespace qxrun

#endif  // QXRUN_BROKER_ORDER_DESK_H_
