#include "qxrun/broker/OrderDesk.h"

#include "qxrun/InputError.h"

#include <cctype>
#include <sstream>

namespace qxrun {

std::string ConfirmationPrompt(const Quill::ITradeOrder& order) {
  std::ostringstream text;
  text << (order.BuyOrSell == 1 ? "buy" : "sell") << ' '
       << (order.EntryOrExit == 1   ? "open"
           : order.EntryOrExit == 5 ? "close today"
                                    : "close")
       << ' ' << order.Lot << ' ' << order.CodeID.Code << " at " << order.Price << " (account "
       << order.AccountID << ")? [y/n] ";
  return text.str();
}

TerminalConfirmer::~TerminalConfirmer() {
  if (!owned_) return;
  std::fclose(in_);
  std::fclose(out_);
}

std::unique_ptr<TerminalConfirmer> TerminalConfirmer::OpenTerminal() {
  // One stream to read and one to write: a stream open for both must be repositioned between the
  // two, which a terminal cannot be.
  std::FILE* in = std::fopen("/dev/tty", "r");
  std::FILE* out = in != nullptr ? std::fopen("/dev/tty", "w") : nullptr;
  if (out == nullptr) {
    if (in != nullptr) std::fclose(in);
    throw InputError("--confirm ask: no terminal to ask on (use --confirm auto)");
  }
  auto confirmer = std::make_unique<TerminalConfirmer>(in, out);
  confirmer->owned_ = true;
  return confirmer;
}

bool TerminalConfirmer::Confirm(const Quill::ITradeOrder& order) {
  const std::string prompt = ConfirmationPrompt(order);
  std::fputs(prompt.c_str(), out_);
  std::fflush(out_);
  std::string answer;
  for (int c = std::fgetc(in_); c != EOF && c != '\n'; c = std::fgetc(in_)) {
    if (c != '\r') answer.push_back(static_cast<char>(std::tolower(c)));
  }
  return answer == "y" || answer == "yes";
}

int OrderDesk::Submit(Quill::ITradeOrder* order) {
  if (order == nullptr) return 0;
  if (confirmer_ != nullptr && !confirmer_->Confirm(*order)) {
    ++refused_;
    return 0;
  }
  const int64_t id = broker_.Submit(*order, session_, sequence_);
  return broker_.Accept(id) == kReported ? 1 : 0;
}

}  // namespace qxrun
