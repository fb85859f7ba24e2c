// Message boxes, other programs and their windows.
#pragma once

#include <cstdint>

#include "base/text.h"

namespace corvalt {

enum class TMessageKind {
  Question,     // Yes and No, the warning icon
  Information,  // OK, the information icon
  Failure,      // OK, the error icon
};

enum class TAnswer { Ok, Yes, No };

// A window of this or another program; 0 is none.
using TWindowHandle = std::uintptr_t;

// Window messages and virtual keys that the registry editor is driven with (winuser.h).
inline constexpr std::uint32_t kWmKeyDown = 256;
inline constexpr std::uint32_t kWmChar = 258;
inline constexpr std::uint32_t kWmLButtonDown = 513;

class Shell {
 public:
  virtual ~Shell() = default;

  // A plain message box. Closing a question without a choice counts as No.
  virtual TAnswer ShowMessage(TextView text, TextView title, TMessageKind kind) = 0;

  // ShellExecute with this verb, no parameters, no working folder, shown normally. The result is the
  // system's: nobody here checks it.
  virtual void Execute(TextView verb, TextView target) = 0;

  // Starts a program with this verb ("open", "RunAs") and waits until it is idle for input. False when it did
  // not start.
  virtual bool ExecuteAndWaitForIdle(TextView verb, TextView program) = 0;

  // The shell's properties sheet of a file: ShellExecuteEx with the verb "properties" and this mask.
  virtual bool ShowProperties(TextView path, std::uint32_t mask) = 0;

  // A topic of a compiled help file (HtmlHelp, HH_DISPLAY_TOPIC).
  virtual void ShowHelpTopic(TextView helpFile, TextView topic) = 0;

  // Top-level window of a class; child of a class, direct or (deep) anywhere below its parent. 0 when there
  // is none.
  virtual TWindowHandle FindTopLevelWindow(TextView className) = 0;
  virtual TWindowHandle FindChildWindow(TWindowHandle parent, TextView className, bool deep) = 0;

  virtual void ShowWindow(TWindowHandle window) = 0;
  virtual void BringToForeground(TWindowHandle window) = 0;
  virtual void SetFocus(TWindowHandle window) = 0;
  virtual void SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                           std::intptr_t lParam) = 0;

  // Bits per pixel of the current display's graphics mode number 0; 0 when it can't be read.
  virtual std::uint32_t FirstDisplayModeBitsPerPixel() = 0;

  // Whether the key exists and opens for the user with full access (KEY_ALL_ACCESS). subKey has no leading
  // "\".
  virtual bool OpensWithFullAccess(std::uint32_t rootKey, TextView subKey) = 0;
};

}  // namespace corvalt
