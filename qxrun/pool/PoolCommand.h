// `qxrun pool`: a stock picker run on every symbol of a pool, ranked by its sort values each bar.
#ifndef QXRUN_POOL_POOL_COMMAND_H_
#define QXRUN_POOL_POOL_COMMAND_H_

#include "qxrun/RunInputs.h"

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace qxrun {

// The bar files of the pool: each argument is a file, or a folder whose .txt and .csv files are
// taken in name order. Throws InputError when a folder holds none.
std::vector<std::string> PoolFiles(const std::vector<std::string>& arguments);

// Runs the pool; returns the exit code. Bad input throws InputError before anything is written.
int PoolCommand(const RunOptions& options, std::ostream& out, std::ostream& err);

}  // namespace qxrun

#endif  // QXRUN_POOL_POOL_COMMAND_H_
