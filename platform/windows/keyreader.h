// Reads all of one opened key.
#pragma once

#include "platform/windows/registrycalls.h"
#include "system/rawregistry.h"

namespace corvalt {

class TKeyReader {
 public:
  explicit TKeyReader(TRegistryCalls& calls) : m_calls(calls) {
  }

  // Read until it is complete even when it changes meanwhile. Link when the key was opened as a link and is
  // one. Failed also when a name holds a NUL, which only system calls can make: a restore could not write it
  // back.
  TRawResult Read(HKEY key, TRawKey& content);

 private:
  TRawResult ReadOnce(HKEY key, TRawKey& content);

  TRegistryCalls& m_calls;
  TValueBuffer m_buffer;
};

}  // namespace corvalt
