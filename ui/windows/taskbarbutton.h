// The program's button in the taskbar: the progress of a run on it, and its blinking when a run has ended
// while another program is in the foreground.
#pragma once

#include "ui/windows/controlsapi.h"

// Needs the types of <windows.h>.
#include <shobjidl.h>

namespace corvalt {

// The button as the windows use it; tests have another one.
class TTaskbarButton {
 public:
  virtual ~TTaskbarButton() = default;

  virtual void ShowProgress(int percent) = 0;
  // The progress goes red where it stands: an error ended the run.
  virtual void ShowError() = 0;
  virtual void HideProgress() = 0;
  // Draws the user's attention, only where another program is in the foreground.
  virtual void Flash() = 0;
};

struct TTaskbarListTraits {
  using THandle = ITaskbarList3*;
  static ITaskbarList3* None() {
    return nullptr;
  }
  static void Close(ITaskbarList3* list) {
    list->Release();
  }
};
using TTaskbarList = TOwned<TTaskbarListTraits>;

// The system's button of one window. Windows before version 7 show no progress on it.
class TWindowsTaskbarButton : public TTaskbarButton {
 public:
  // For the window that has the button, once it is created.
  void Attach(HWND window);

  // The message by which the taskbar tells the window that its button is there; call OnCreated for it. Before
  // that a progress is not shown (ITaskbarList3, learn.microsoft.com).
  UINT CreatedMessage() const {
    return m_createdMessage;
  }
  void OnCreated();

  void ShowProgress(int percent) override;
  void ShowError() override;
  void HideProgress() override;
  void Flash() override;

 private:
  TTaskbarList m_list;
  HWND m_window = nullptr;
  UINT m_createdMessage = 0;
};

}  // namespace corvalt
