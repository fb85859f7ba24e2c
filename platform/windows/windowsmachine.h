// The Windows version and the places of the system and the program.
#pragma once

#include <cstddef>

#include "base/text.h"
#include "system/machine.h"

namespace corvalt {

class TWindowsMachine : public TMachine {
 public:
  // What the system reports to a program with this manifest.
  TSystemVersion GetVersion() override;
  Text GetSystemDirectory(std::size_t bufferLength) override;
  Text ProgramFile() override;
  Text ComputerName() override;
  Text UserSid() override;
};

}  // namespace corvalt
