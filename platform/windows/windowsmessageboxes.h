// Message boxes.
#pragma once

#include "platform/windows/windowsapi.h"
#include "system/messageboxes.h"

namespace corvalt {

class TWindowsMessageBoxes : public TMessageBoxes {
 public:
  // The window that message boxes belong to; nullptr for none.
  void SetOwner(HWND owner) {
    m_owner = owner;
  }

  TAnswer ShowMessage(TextView text, TextView title, TMessageKind kind) override;

 private:
  HWND m_owner = nullptr;
};

}  // namespace corvalt
