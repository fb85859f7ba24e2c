// A scan over a registry and a disk in memory, with real trees and no window.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/globalregs.h"
#include "core/globals.h"
#include "platform/memory/memorysystem.h"
#include "scan/threadscan.h"
#include "system/queueuithread.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"

namespace corvalt {

class TMemoryScan {
 public:
  // A machine with the usual folders on its fixed drive C: and an empty registry.
  TMemoryScan();

  // Runs the sections with these codes and returns the seconds of
  // processor time it took, all threads together. Throws what ended the scan early.
  double Run(const std::vector<std::int32_t>& sectionCodes);

  std::size_t ProblemCount() const;

  // The bytes of all texts of the problems found.
  std::size_t TextBytes() const;

  TMemorySystem System;
  TGlobalVars Vars;
  TGlobalReg Reg;
  TSectionsTreeModel Sections;
  TResultsTreeModel Results;
  TQueueUiThread UiThread;
};

}  // namespace corvalt
