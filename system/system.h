// Everything of the system that the program reaches, in one bundle that is passed by reference.
#pragma once

#include "system/editorwindows.h"
#include "system/filestore.h"
#include "system/filesystemprobe.h"
#include "system/interprocess.h"
#include "system/machine.h"
#include "system/messageboxes.h"
#include "system/programs.h"
#include "system/rawregistry.h"
#include "system/registrystore.h"
#include "system/systemclock.h"
#include "system/systemlocale.h"

namespace corvalt {

struct TSystem {
  TRegistryFactory& Registry;
  TRawRegistry& Raw;
  FileSystemProbe& Probe;
  TFileStore& Files;
  TMachine& Machine;
  TLocale& Locale;
  TClock& Clock;
  TMessageBoxes& MessageBoxes;
  TPrograms& Programs;
  TEditorWindows& EditorWindows;
  TInterprocess& Interprocess;
};

}  // namespace corvalt
