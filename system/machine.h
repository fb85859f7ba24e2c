// The Windows version and the places that belong to the machine and the program.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/text.h"

namespace corvalt {

struct TSystemVersion {
  std::uint32_t Major = 0;
  std::uint32_t Minor = 0;
  bool Is95Family = false;  // VER_PLATFORM_WIN32_WINDOWS
};

class TMachine {
 public:
  virtual ~TMachine() = default;

  virtual TSystemVersion GetVersion() = 0;

  // The system folder, asked for with a buffer of bufferLength characters; empty when it does not fit.
  virtual Text GetSystemDirectory(std::size_t bufferLength) = 0;

  // Full path of the running program's file.
  virtual Text ProgramFile() = 0;

  // The machine's NetBIOS name; empty when the system doesn't tell it.
  virtual Text ComputerName() = 0;

  // The security identifier of the user that the program runs as, in its text form ("S-1-5-..."); empty when
  // the system has none (Windows 95 family) or doesn't tell it.
  virtual Text UserSid() = 0;
};

// The folder of a file path, with its trailing separator; empty when the path names none.
Text FolderOf(TextView filePath);

}  // namespace corvalt
