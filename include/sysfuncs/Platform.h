// The replaceable platform services of the library.
//
// Every service has a working default on Linux, so the library runs standalone; a host replaces
// the ones it serves itself with SysFuncs_SetPlatform.
#ifndef SYSFUNCS_PLATFORM_H_
#define SYSFUNCS_PLATFORM_H_

#include "sysfuncs/DataAdapter.h"
#include "sysfuncs/Module.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace Quill {

// One line of buffered file output as the message centre receives it (552 bytes). Fields the
// library does not write are zero.
struct MsgRecord {
  int32_t Kind = 0;  // 1: append Text to the file named in Key
  uint8_t Unused1[4] = {};
  int32_t Zero = 0;
  char Key[32] = {};  // "FA[<file name>]", cut to 31 characters
  uint8_t Padding[4] = {};
  int64_t Time = 0;     // seconds since 1970-01-01 UTC, one value per file and hand-over
  char Text[260] = {};  // the line, cut to 259 bytes; no line end
  uint8_t Unused2[236] = {};
};
static_assert(sizeof(MsgRecord) == 552, "the message centre reads 552-byte records");
static_assert(offsetof(MsgRecord, Zero) == 8 && offsetof(MsgRecord, Key) == 12 &&
                  offsetof(MsgRecord, Time) == 48 && offsetof(MsgRecord, Text) == 56 &&
                  offsetof(MsgRecord, Unused2) == 316,
              "the message centre reads fixed offsets");

}  // namespace Quill

// The platform services. An empty member given to SysFuncs_SetPlatform keeps the service in
// place.
struct SysFuncsPlatform {
  // The message centre: receives the records of one hand-over as one contiguous array. The
  // default appends each record's text and a line end to the file named in its key.
  std::function<int(int kind, const Quill::MsgRecord* records, size_t count)> SendToMsgCenter;

  // The trading front end: confirms and submits a live order; non-zero means submitted. The
  // default refuses: a library alone never sends a live order.
  std::function<int(Quill::ITradeOrder* order, int reserved1, int reserved2)> ShowConfirmOrder;

  // Plays a sound file without waiting; true when playing started. The default starts a player
  // process for an existing, readable file, and never falls back to a default sound.
  std::function<bool(const std::string& path)> PlaySound;

  // Shows a message to the user and returns when it was seen. The default writes one line on
  // standard error.
  std::function<void(const std::string& text)> MessageBox;

  // Deletes a file; false when nothing was deleted.
  std::function<bool(const std::string& path)> DeleteFile;

  // The present time in milliseconds since 1970-01-01 UTC. The default reads the system clock.
  std::function<int64_t()> Now;

  // Reads `key` of `section` of an INI profile file into `buffer` of `size` bytes, NUL-terminated
  // and cut to size - 1 bytes; copies `defaultText` when the file, the section or the key is
  // missing. Returns the number of bytes copied, without the NUL. Sections and keys match
  // without regard to letter case.
  std::function<uint32_t(const std::string& section, const std::string& key,
                         const std::string& defaultText, char* buffer, uint32_t size,
                         const std::string& file)>
      GetPrivateProfileString;

  // Writes `key`=`text` into `section` of an INI profile file, creating the file, the section and
  // the key as needed and replacing an earlier value; false when the file cannot be written.
  std::function<bool(const std::string& section, const std::string& key, const std::string& text,
                     const std::string& file)>
      WritePrivateProfileString;
};

// Replaces the services given (non-empty members) and keeps the others.
// REQUIRES: no formula instance runs and the background writer is stopped or not yet started.
SYSFUNCS_API void SysFuncs_SetPlatform(const SysFuncsPlatform& services);

// The Linux default of every service, for a host that wraps one of them.
SYSFUNCS_API SysFuncsPlatform SysFuncs_DefaultPlatform();

#endif  // SYSFUNCS_PLATFORM_H_
