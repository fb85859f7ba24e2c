// TScan: the worker thread that runs one whole scan. The driver is its body; the scanners, one source file
// each, do their work through its public part.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "base/keypaths.h"
#include "base/rounding.h"
#include "base/text.h"
#include "core/cachedfileprobe.h"
#include "core/functions.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languageids.h"
#include "core/languagetexts.h"
#include "core/workerthread.h"
#include "scan/catalogue.h"
#include "scan/phrasematcher.h"
#include "scan/problembatch.h"
#include "scan/reportedclassids.h"
#include "scan/scanproblem.h"
#include "scan/scantrees.h"
#include "system/system.h"
#include "system/uithread.h"

namespace corvalt {

// What a scan works on. Everything must outlive the thread, and only the results tree changes while the scan
// runs: the scan itself fills it.
struct TScanContext {
  TSystem& System;
  const TGlobalVars& Vars;
  const TGlobalReg& Reg;
  const TSectionsTree& Sections;
  TResultsTree& Results;
  TUiThread& UiThread;
  TWorkerThread::TEndHandler OnFinished;  // runs on the user-interface thread when the scan has ended
};

class TScan final : public TWorkerThread {
 public:
  // Starts at once. The dialog must live until the end handler has run or the thread was told to terminate.
  TScan(TScanContext context, TProgressDialog& progressDialog);

  // What scanners need, for the scan's own thread.

  const TGlobalVars& Vars() const {
    return m_context.Vars;
  }
  TSystem& System() {
    return m_context.System;
  }
  TPathChecks& Paths() {
    return m_paths;
  }
  // The catalogue's row of the section that runs.
  const TSection& Section() const {
    return *m_section;
  }

  // Adds a problem to the section that runs, unless the ignore lists cover it; returns whether it was added.
  // ReportKey: the whole key is the problem, and the repair deletes it, although a value may be named.
  // ReportValue: only the value is.
  bool ReportKey(TRootKey rootKey, TextView keyPath, TextView valueData, TextView description,
                 std::int32_t imageIndex = kNoImage, TextView valueName = {});
  bool ReportValue(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                   TextView description);

  // A text of the user's language, each "&" doubled, as descriptions are stored.
  Text Say(TextId id, TextView arg1 = {}, TextView arg2 = {}) const;

  // Shows the section's progress in percent, and the item that is examined. Moves the dialog at most at every
  // fiftieth call; IsProgressDue tells whether the next one does, for labels that are costly to make.
  void ReportProgress(std::int32_t percent, TextView label);
  bool IsProgressDue() const;

  // What was found is not to wait for the next problem, or the next call of ReportProgress, any longer than
  // need be. To be called where neither may come for some time.
  void HandOverIfDue() {
    m_batch.HandOverIfDue();
  }

  // Shows the section anew with another position of the overall bar, in percent.
  void ShowSectionAt(std::int32_t position);

  // A store of its own for reading below a root.
  std::unique_ptr<RegistryStore> OpenRoot(TRootKey rootKey) const;

  // Whether the file exists that a registry text names. True too for every text that can't be judged.
  bool CommandPathExists(TextView text);

  // Reports every string value at and below a key that names a missing file. exclusions are full key paths
  // with root name and trailing "\", upper-cased: a key whose path contains one of them is skipped with
  // everything below it. fraction, from 0 to 1, is the progress to show meanwhile. registry's root must be
  // root; it is left with no key open.
  void ScanKeyTree(RegistryStore& registry, TRootKey root, double fraction, const TPhraseMatcher& exclusions,
                   TextView keyPath);

  // Whether a key holds no value, and no subkey or, with recursive, no subkey that is not empty in the same
  // way. A key that does not open is not empty. For other threads too once the scan has ended.
  bool IsKeyEmpty(TRootKey rootKey, TextView keyPath, bool recursive);

  // The identifiers of every class and type library that Custom Controls reported as broken; File
  // Associations reads them afterwards.
  TReportedClassIds ReportedClassIds;

 protected:
  void Execute() override;

 private:
  // The driver.
  Text CollectEnabledSections(TSectionsNode* node);
  void RunSection(const TSection& section);
  void BeginSection(std::int32_t ordinal, TextView name);
  void ShowSection();

  // Adds a row to the tree, unless it is ignored; returns whether it is added.
  bool Report(ScanProblem row);
  void AddHeader();
  bool IsIgnored(const ScanProblem& row) const;

  void RefreshProgress();

  TScanContext m_context;
  TCachedFileProbe m_probe;
  TPathChecks m_paths;
  TPhraseMatcher m_ignored;  // made of both lists when the scan was created
  TProblemBatch m_batch;
  const TSection* m_section = nullptr;

  std::unique_ptr<RegistryStore> Registry;
  TProgressDialog& ProgressDialog;
  Text CurrentSectionName;
  Text ProgressLabel;
  std::int32_t SectionPosition = 0;
  std::int32_t ItemPercent = 0;
  std::int32_t EnabledSectionCount = 0;
  std::int32_t ProgressCounter = 0;
};

// The percentage that item i (from 0) of count fills: round((i + 1) x scale / count + start).
std::int32_t ShareOfBar(std::size_t i, std::size_t count, double scale, double start = 0);

// The progress label of a value: the key path without its leading "\", "\" and the name.
Text LabelOf(TextView keyPath, TextView valueName);

// Whether a command is an argument of its caller: it begins with "%1", or with one character, such as a
// quote, and "%1".
bool BeginsWithArgument(TextView text);

// Whether a class of this identifier is registered, in either view: on a 64-bit system classes are registered
// per bitness, while the program identifiers that name them are shared. prober's root is HKEY_CLASSES_ROOT.
bool IsClassRegistered(RegistryStore& prober, TextView classId);

// The names of a key's direct subkeys; empty when it does not open. The store is left with no key open.
std::vector<Text> SubKeyNames(RegistryStore& registry, TextView keyPath);

// A key's default value as text; nullopt when the key does not open. The store is left with no key open.
std::optional<Text> DefaultValue(RegistryStore& registry, TextView keyPath);

}  // namespace corvalt
