// Bad input to the host: files, arguments and run-file values.
#ifndef QXRUN_INPUT_ERROR_H_
#define QXRUN_INPUT_ERROR_H_

#include <stdexcept>

namespace qxrun {

// what() is one line for a person: the file, the line and the field (or the run file's key path)
// and what is wrong with the value.
class InputError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace qxrun

#endif  // QXRUN_INPUT_ERROR_H_
