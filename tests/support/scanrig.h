// A whole scan over a registry and a disk in memory, with real trees and a dialog that remembers what it was
// shown.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "base/text.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languagetexts.h"
#include "platform/memory/memoryhives.h"
#include "platform/memory/memorysystem.h"
#include "scan/scanproblem.h"
#include "scan/scantrees.h"
#include "scan/threadscan.h"
#include "system/queueuithread.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"

namespace corvalt {

// One line an update: "section: ...", "item: ...", "overall: 50", "bar: 12".
class TRecordingDialog : public TProgressDialog {
 public:
  void SetSectionLabel(TextView text) override;
  void SetItemLabel(TextView text) override;
  void SetOverallPosition(std::int32_t position) override;
  void SetSectionPosition(std::int32_t position) override;

  std::vector<std::string> Updates;
};

// Texts made of their number and their arguments: "11044", "11045(a)", "11042(a|b)".
TLanguageTexts NumberedTexts();

class TScanRig {
 public:
  // A Windows XP machine with the usual folders on its fixed drive C: and an empty registry.
  explicit TScanRig(TNameOrder order = TNameOrder::Windows);

  // Runs the sections with these codes to their end.
  void Run(const std::vector<std::int32_t>& sectionCodes);

  // The same, telling the thread to terminate when the registry has been asked for the given number of reads.
  void RunAndCancel(const std::vector<std::int32_t>& sectionCodes, int afterReads);

  // The same as Run with another dialog.
  void RunWith(TProgressDialog& dialog, const std::vector<std::int32_t>& sectionCodes);

  // Called on the scan's thread before each read of the registry, with the number of reads until then, itself
  // among them.
  std::function<void(TScan& scan, int reads)> OnRead;

  // How often the last run asked the registry.
  int Reads() const {
    return m_reads;
  }

  // The section headers, and the problems below one header or below all, in tree order.
  std::vector<ScanProblem> Headers();
  std::vector<ScanProblem> Problems();
  std::vector<ScanProblem> ProblemsOf(TextView sectionCaption);

  // One line a problem: root, key path, value name, data and description with " | " between them.
  std::vector<std::string> Lines();

  // Packs this XML as the adware catalogue.
  void WriteCatalogue(std::string_view xml);

  TMemorySystem System;
  TGlobalVars Vars;
  TGlobalReg Reg;
  TSectionsTreeModel Sections;
  TResultsTreeModel Results;
  TRecordingDialog Dialog;
  TQueueUiThread UiThread;
  // What ended the last run early; null after a normal end.
  std::exception_ptr Failure;

 private:
  int m_reads = 0;
};

}  // namespace corvalt
