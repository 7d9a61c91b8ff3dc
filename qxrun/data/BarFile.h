// Bar files: CSV in the layouts people have, read without an ingest step.
#ifndef QXRUN_DATA_BAR_FILE_H_
#define QXRUN_DATA_BAR_FILE_H_

#include "sysfuncs/HostData.h"

#include <filesystem>
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace qxrun {

// The layout of a bar file. Every member left at its default is detected from the file.
struct ColumnMap {
  char Delimiter = 0;  // ',', ';', '\t' or ' '; 0: detected from the first line
  int HasHeader = -1;  // 1 yes, 0 no, -1 detected
  // Zero-based column indexes; -1: found by the header's names or the usual order.
  int DateTime = -1;  // date and time in one column
  int Date = -1;
  int Time = -1;
  int Open = -1;
  int High = -1;
  int Low = -1;
  int Close = -1;
  int Volume = -1;
  int OpenInt = -1;
  std::string DateFormat;  // strftime-like, e.g. "%Y-%m-%d", "%Y%m%d", "%m/%d/%Y"; empty: detected
  std::string TimeFormat;  // e.g. "%H:%M:%S", "%H:%M", "%H%M%S"; empty: detected
};

// The column map of a run file's "columns" object. `path` is the object's key path in the run
// file ("/symbols/0/columns"); an unknown key or a wrong type throws InputError naming it.
ColumnMap ColumnMapFromJson(const nlohmann::json& value, const std::string& path);

// Loads the bars of `file` into `source.Bars`, oldest first, and sets `source.BarType` and
// `source.BarInterval` from the spacing of the bars (0/1 daily, 1/N N-minute, 2/N N-second).
// Times are local. Throws InputError naming the file, the line and the field.
void LoadBarFile(const std::filesystem::path& file, const ColumnMap& map, QXDataSource& source);

}  // namespace qxrun

#endif  // QXRUN_DATA_BAR_FILE_H_
