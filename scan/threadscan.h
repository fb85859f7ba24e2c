// TScan: the worker thread that runs one whole scan. The driver is its body, the scanners are its members,
// one source file each; what they share is here.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/rounding.h"
#include "core/cachedfileprobe.h"
#include "core/functions.h"
#include "core/globalregs.h"
#include "core/globals.h"
#include "core/languagetexts.h"
#include "core/workerthread.h"
#include "formats/nativexml.h"
#include "scan/catalogue.h"
#include "scan/phrasematcher.h"
#include "scan/reportedclassids.h"
#include "scan/scanproblem.h"
#include "scan/scantrees.h"
#include "system/system.h"

namespace corvalt {

// What a scan works on. Everything must outlive the thread; nothing of it changes while the scan runs, but
// for the results tree, which the scan itself fills.
struct TScanContext {
  TSystem& System;
  const TGlobalVars& Vars;
  const TGlobalReg& Reg;
  TSectionsTree& Sections;
  TResultsTree& Results;
  TUiThread& UiThread;
  TWorkerThread::TEndHandler OnFinished;  // runs on the user-interface thread when the scan has ended
};

class TScan final : public TWorkerThread {
 public:
  // Starts at once. The dialog must live until the end handler has run or the thread was told to terminate.
  TScan(TScanContext context, TProgressDialog& progressDialog);

  // The scanners: each adds its header, its problems, and ends its section. They skip what cannot be read,
  // raise nothing but for a damaged adware catalogue, and stop between two items once the thread is told to
  // terminate, but where their files say otherwise.
  void ScanShellFolders(const TSection& section);
  void ScanFilesAndFolders(const TSection& section);
  void ScanAdwareAndSpyware(const TSection& section);
  void ScanObsoleteSoftware(const TSection& section);
  void ScanCustomControls(const TSection& section);
  void ScanFileExtensions(const TSection& section);
  void ScanFileAssociations(const TSection& section);
  void ScanStartMenu(const TSection& section);
  void ScanStartupPrograms(const TSection& section);
  void ScanSharedPrograms(const TSection& section);
  void ScanSoftwareLocations(const TSection& section);
  void ScanAddRemovePrograms(const TSection& section);
  void ScanWindowsFonts(const TSection& section);
  void ScanHelpAndResources(const TSection& section);
  void ScanSoundsAndAppevents(const TSection& section);
  void ScanMruLists(const TSection& section);
  void ScanDeviceDrivers(const TSection& section);
  void ScanWindowsServices(const TSection& section);
  void ScanVirtualDevices(const TSection& section);
  void ScanArpCache(const TSection& section);

  // Whether a key holds no value, and no subkey or, with recursive, no subkey that is not empty in the same
  // way. A key that does not open is not empty. For this thread, and for others once the scan has ended.
  bool IsKeyEmpty(TRootKey rootKey, TextView keyPath, bool recursive);

 protected:
  void Execute() override;

 private:
  // The driver.
  Text CollectEnabledSections(TSectionsNode* node);
  void BeginSection(std::int32_t ordinal, TextView name);
  void ShowSection();
  void EndSection();

  // The hand-over of one problem: AddProblem fills the pending problem on this thread, AddProblemNode adds it
  // to the tree on the user-interface thread unless it is ignored.
  void AddProblem(TResultsNode* parentNode, TRootKey rootKey, TextView sectionCaption,
                  std::int32_t imageIndex, TextView keyPath, TextView valueName, TextView valueData,
                  TextView extra, TextView description, TCheckMark checkMark, TProblemKind kind);
  void AddProblemNode();
  bool IsIgnored() const;

  // What the scanners say through them.
  void AddHeader(const TSection& section);
  void FinishSection();
  void ReportKey(TRootKey rootKey, TextView keyPath, TextView valueData, TextView description,
                 std::int32_t imageIndex = kNoImage, TextView valueName = {});
  void ReportValue(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                   TextView description);
  Text Say(TextId id, TextView arg1 = {}, TextView arg2 = {}) const;

  // At most every fiftieth call moves the dialog.
  void ReportProgress(std::int32_t percent, TextView label);
  bool IsProgressDue() const;
  void RefreshProgress();

  // What the scanners ask.
  std::unique_ptr<RegistryStore> OpenRoot(TRootKey rootKey) const;
  bool CommandPathExists(TextView text);

  // The recursive walk that reports string values naming missing files. exclusions are full key paths with
  // root name and trailing "\", upper-cased: a key whose path contains one of them is skipped with everything
  // below it.
  void ScanKeyTree(RegistryStore& registry, TRootKey root, double fraction, const TPhraseMatcher& exclusions,
                   TextView keyPath);

  // Pieces of single scanners.
  void CheckShellFolderKey(TextView keyPath, double scale, double offset);
  void CheckClass(RegistryStore& registry, TextView classId);
  void CheckServerKey(RegistryStore& registry, TextView classId, TextView suffix, TextId missingText);
  void CheckTypeLibraryVersion(RegistryStore& registry, TextView libraryId, TextView version);
  void CheckTypeLibraryLocale(RegistryStore& registry, TextView libraryId, TextView localePath);
  void CheckInterface(RegistryStore& registry, TextView interfaceId);
  bool IsComponentFileValid(TextView text);
  void CheckExtension(RegistryStore& registry, RegistryStore& prober, TextView extension,
                      std::vector<Text>& typePairs);
  void CheckClassKey(RegistryStore& registry, RegistryStore& prober, TextView name);
  void CheckClassLink(RegistryStore& registry, RegistryStore& prober, TextView base);
  void CheckFileType(RegistryStore& registry, RegistryStore& prober, TextView base);
  void CheckVerb(RegistryStore& registry, RegistryStore& prober, TextView base, TextView verb);
  void CheckHandler(RegistryStore& registry, RegistryStore& prober, TextView handlersKey, TextView handler,
                    TextView bracedKey, std::int32_t bracedImage);
  bool IsClassIntact(RegistryStore& prober, TextView classId);
  bool IsShellTargetValid(TextView text);
  void CheckVendorKeys(TRootKey root, double start);
  void CheckRunKey(TRootKey root, double start);
  void CheckHelpKey(RegistryStore& registry, TextView keyPath, double start);
  void CheckUninstallEntry(RegistryStore& registry, TextView keyPath);
  void CheckMenuFolders(RegistryStore& registry, TextView keyPath);
  void CheckMruList(RegistryStore& registry, TextView keyPath);
  void CheckServiceImage(RegistryStore& registry, TextView keyPath, std::size_t i, std::size_t count);
  void CheckProgramTraces(const TXmlElement& program);
  void CheckTrace(TextView kind, TextView trace, TextView description);
  void CheckKeyTrace(TRootKey root, TextView keyPath, TextView description);
  void CheckValueTrace(TRootKey root, TextView keyPath, TextView valueName, TextView description);

  TScanContext m_context;
  TSystem& m_system;
  TCachedFileProbe m_probe;
  TPathChecks m_paths;
  TPhraseMatcher m_ignored;

  std::unique_ptr<RegistryStore> Registry;
  TProgressDialog& ProgressDialog;
  // The pending problem; ParentNode doubles as the current section's node.
  TResultsNode* ParentNode = nullptr;
  ScanProblem Pending;
  Text CurrentSectionName;
  Text ProgressLabel;
  std::int32_t SectionPosition = 0;
  std::int32_t ItemPercent = 0;
  std::int32_t EnabledSectionCount = 0;
  std::int32_t ProgressCounter = 0;
  TReportedClassIds
      ReportedClassIds;  // of every class and type library that Custom Controls reported as broken
};

// The percentage that item i (from 0) of count fills: round((i + 1) x scale / count + start).
std::int32_t ShareOfBar(std::size_t i, std::size_t count, double scale, double start = 0);

// The progress label of a value: the key path without its leading "\", "\" and the name.
Text LabelOf(TextView keyPath, TextView valueName);

// Whether a command is an argument of its caller: it begins with "%1", or with one character, such as a
// quote, and "%1".
bool BeginsWithArgument(TextView text);

// The names of a key's direct subkeys; none when it does not open. The store is left with no key open.
std::vector<Text> SubKeyNames(RegistryStore& registry, TextView keyPath);

// A key's default value as text; nothing when the key does not open. The store is left with no key open.
std::optional<Text> DefaultValue(RegistryStore& registry, TextView keyPath);

}  // namespace corvalt
