// `qxrun formulas`: the bundled formulas with their parameters, defaults and ranges.
#include "qxrun/Cli.h"
#include "qxrun/formulas/Bundled.h"

#include <cstdio>

namespace qxrun {

Command AddFormulasCommand(CLI::App& app) {
  Command command;
  command.App = app.add_subcommand("formulas", "list the bundled formulas and their parameters");
  command.Run = [](std::ostream& out, std::ostream&) {
    char line[256];
    for (const FormulaInfo* info : BundledFormulas()) {
      out << info->Name << "  -  " << info->Summary << '\n';
      for (const Parameter& parameter : info->Parameters) {
        std::snprintf(line, sizeof line, "    %-12s default %-8g range [%g, %g]%s  ",
                      parameter.Name.c_str(), parameter.Default, parameter.Min, parameter.Max,
                      parameter.Integral ? " whole" : "");
        out << line << parameter.Help << '\n';
      }
    }
    return 0;
  };
  return command;
}

}  // namespace qxrun
