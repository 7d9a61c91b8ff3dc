// A condition on the parameter values of a sweep's point, such as "fast<slow" or
// "slow >= 2*fast + 10". Operands are parameter names and numbers, joined by + - * / and
// parentheses; two sides are compared with < <= > >= == !=; conditions are joined with &&.
#ifndef QXRUN_SWEEP_CONSTRAINT_H_
#define QXRUN_SWEEP_CONSTRAINT_H_

#include <string>
#include <vector>

namespace qxrun {

class Constraint {
 public:
  // Parses `text` over the parameters `names` (a point gives their values in that order).
  // Throws InputError naming the constraint and what does not parse.
  Constraint(const std::string& text, const std::vector<std::string>& names);

  // Whether the point's values satisfy the condition.
  bool Holds(const std::vector<double>& values) const;

  const std::string& Text() const { return text_; }

 private:
  enum class Op {
    kNumber,
    kParam,
    kAdd,
    kSub,
    kMul,
    kDiv,
    kNeg,
    kLess,
    kLessEq,
    kGreater,
    kGreaterEq,
    kEqual,
    kNotEqual,
    kAnd
  };
  struct Node {
    Op Kind = Op::kNumber;
    double Number = 0.0;
    int Left = -1;  // node index, or the parameter's index for kParam
    int Right = -1;
  };
  class Parser;

  double Evaluate(int node, const std::vector<double>& values) const;

  std::string text_;
  std::vector<Node> nodes_;
  int root_ = -1;
};

}  // namespace qxrun

#endif  // QXRUN_SWEEP_CONSTRAINT_H_
