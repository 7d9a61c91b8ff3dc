#include "qxrun/sweep/Constraint.h"

#include "qxrun/InputError.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <initializer_list>
#include <utility>

namespace qxrun {

// Recursive descent over the text:
//   condition := comparison ("&&" comparison)*
//   comparison := sum ("<" | "<=" | ">" | ">=" | "==" | "!=") sum
//   sum := product (("+" | "-") product)*
//   product := unary (("*" | "/") unary)*
//   unary := "-" unary | number | name | "(" sum ")"
class Constraint::Parser {
 public:
  Parser(Constraint& owner, const std::vector<std::string>& names)
      : owner_(owner), text_(owner.text_), names_(names) {}

  int Condition() {
    int node = Comparison();
    while (Accept("&&")) node = Add(Op::kAnd, node, Comparison());
    SkipSpace();
    if (at_ != text_.size()) Fail("unexpected \"" + text_.substr(at_) + "\"");
    return node;
  }

 private:
  int Comparison() {
    const int left = Sum();
    static constexpr struct {
      const char* Text;
      Op Kind;
    } kComparisons[] = {{"<=", Op::kLessEq},   {">=", Op::kGreaterEq}, {"==", Op::kEqual},
                        {"!=", Op::kNotEqual}, {"<", Op::kLess},       {">", Op::kGreater}};
    for (const auto& comparison : kComparisons) {
      if (Accept(comparison.Text)) return Add(comparison.Kind, left, Sum());
    }
    Fail("expected a comparison (< <= > >= == !=)");
  }

  int Sum() { return Chain(&Parser::Product, {{"+", Op::kAdd}, {"-", Op::kSub}}); }
  int Product() { return Chain(&Parser::Unary, {{"*", Op::kMul}, {"/", Op::kDiv}}); }

  // operand (op operand)*, left to right.
  int Chain(int (Parser::*operand)(), std::initializer_list<std::pair<const char*, Op>> ops) {
    int node = (this->*operand)();
    for (;;) {
      const auto op = std::find_if(ops.begin(), ops.end(), [this](const auto& candidate) {
        return Accept(candidate.first);
      });
      if (op == ops.end()) return node;
      node = Add(op->second, node, (this->*operand)());
    }
  }

  int Unary() {
    if (Accept("-")) return Add(Op::kNeg, Unary(), -1);
    if (Accept("(")) {
      const int node = Sum();
      if (!Accept(")")) Fail("expected \")\"");
      return node;
    }
    SkipSpace();
    if (at_ == text_.size()) Fail("expected a name or a number at the end");
    const char first = text_[at_];
    if (std::isdigit(static_cast<unsigned char>(first)) || first == '.') {
      double number = 0.0;
      const char* begin = text_.data() + at_;
      const auto result = std::from_chars(begin, text_.data() + text_.size(), number);
      if (result.ec != std::errc()) Fail("\"" + text_.substr(at_) + "\" is not a number");
      at_ += static_cast<size_t>(result.ptr - begin);
      return Add(Op::kNumber, -1, -1, number);
    }
    if (std::isalpha(static_cast<unsigned char>(first)) || first == '_') {
      const size_t start = at_;
      while (at_ < text_.size() &&
             (std::isalnum(static_cast<unsigned char>(text_[at_])) || text_[at_] == '_')) {
        ++at_;
      }
      const std::string name = text_.substr(start, at_ - start);
      for (size_t i = 0; i < names_.size(); ++i) {
        if (names_[i] == name) return Add(Op::kParam, static_cast<int>(i), -1);
      }
      Fail("\"" + name + "\" is not a swept parameter");
    }
    Fail("unexpected \"" + text_.substr(at_) + "\"");
  }

  void SkipSpace() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_]))) ++at_;
  }

  bool Accept(const char* token) {
    SkipSpace();
    const std::string_view rest(text_.data() + at_, text_.size() - at_);
    if (!rest.starts_with(token)) return false;
    at_ += std::char_traits<char>::length(token);
    return true;
  }

  int Add(Op kind, int left, int right, double number = 0.0) {
    owner_.nodes_.push_back(Node{kind, number, left, right});
    return static_cast<int>(owner_.nodes_.size()) - 1;
  }

  [[noreturn]] void Fail(const std::string& what) const {
    throw InputError("--constraint \"" + text_ + "\": " + what);
  }

  Constraint& owner_;
  const std::string& text_;
  const std::vector<std::string>& names_;
  size_t at_ = 0;
};

Constraint::Constraint(const std::string& text, const std::vector<std::string>& names)
    : text_(text) {
  Parser parser(*this, names);
  root_ = parser.Condition();
}

bool Constraint::Holds(const std::vector<double>& values) const {
  return Evaluate(root_, values) != 0.0;
}

double Constraint::Evaluate(int index, const std::vector<double>& values) const {
  const Node& node = nodes_[static_cast<size_t>(index)];
  if (node.Kind == Op::kNumber) return node.Number;
  if (node.Kind == Op::kParam) return values[static_cast<size_t>(node.Left)];
  const double left = Evaluate(node.Left, values);
  if (node.Kind == Op::kNeg) return -left;
  const double right = Evaluate(node.Right, values);
  switch (node.Kind) {
    case Op::kAdd:
      return left + right;
    case Op::kSub:
      return left - right;
    case Op::kMul:
      return left * right;
    case Op::kDiv:
      return left / right;
    case Op::kLess:
      return left < right;
    case Op::kLessEq:
      return left <= right;
    case Op::kGreater:
      return left > right;
    case Op::kGreaterEq:
      return left >= right;
    case Op::kEqual:
      return left == right;
    case Op::kNotEqual:
      return left != right;
    case Op::kAnd:
      return left != 0.0 && right != 0.0;
    default:
      return 0.0;
  }
}

}  // namespace qxrun
