// The whole real system in one object.
#pragma once

#include "platform/windows/windowsclock.h"
#include "platform/windows/windowseditorwindows.h"
#include "platform/windows/windowsfiles.h"
#include "platform/windows/windowsinterprocess.h"
#include "platform/windows/windowslocale.h"
#include "platform/windows/windowsmachine.h"
#include "platform/windows/windowsmessageboxes.h"
#include "platform/windows/windowsprograms.h"
#include "platform/windows/windowsrawregistry.h"
#include "platform/windows/windowsregistrystore.h"
#include "system/system.h"

namespace corvalt {

class TWindowsSystem {
 public:
  // Without it the system would ask the user for a medium whenever a drive that has none is asked about
  // (SetErrorMode, learn.microsoft.com). It counts for the whole process.
  TWindowsSystem() {
    SetErrorMode(SEM_FAILCRITICALERRORS);
  }

  // Valid as long as this object.
  TSystem Bundle() {
    return {.Registry = Registry,
            .Raw = Raw,
            .Probe = Probe,
            .Files = Files,
            .Machine = Machine,
            .Locale = Locale,
            .Clock = Clock,
            .MessageBoxes = MessageBoxes,
            .Programs = Programs,
            .EditorWindows = EditorWindows,
            .Interprocess = Interprocess};
  }

  // The window that message boxes, and what is started, belong to; nullptr for none.
  void SetOwner(HWND owner) {
    MessageBoxes.SetOwner(owner);
    Programs.SetOwner(owner);
  }

  TWindowsRegistry Registry;
  TWindowsRawRegistry Raw;
  TWindowsProbe Probe;
  TWindowsFiles Files;
  TWindowsMachine Machine;
  TWindowsLocale Locale;
  TWindowsClock Clock;
  TWindowsMessageBoxes MessageBoxes;
  TWindowsPrograms Programs;
  TWindowsEditorWindows EditorWindows;
  TWindowsInterprocess Interprocess;
};

}  // namespace corvalt
