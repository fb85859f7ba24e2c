// Any bytes as the adware catalogue, packed already or as the document that is packed: the section scans a
// small machine with it. It ends with a reason exactly when the document is none, and reports only what
// exists.
#include <cstdlib>
#include <memory>
#include <string>

#include "formats/inflate.h"
#include "formats/nativexml.h"
#include "platform/memory/memorysystem.h"
#include "scan/threadscan.h"
#include "system/queueuithread.h"
#include "tests/support/datafile.h"
#include "tests/support/silentdialog.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"

namespace corvalt {

namespace {

constexpr std::int32_t kAdwareAndSpyware = 100;

// A stream may inflate to a thousand times its size; larger documents say nothing new.
constexpr std::size_t kLargestDocument = 1 << 16;

void FillRegistry(TMemoryRegistry& registry) {
  registry.AddKey(u"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Services\\Bad");
  registry.AddKey(
      u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Browser Helper "
      u"Objects\\Bad");
  registry.Set(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Internet Explorer\\Toolbar", u"Bad", u"");
  registry.Set(u"HKEY_CURRENT_USER\\Bad", u"Bad", u"");
  registry.Set(u"HKEY_CURRENT_USER\\Bad", u"", u"");
}

void CheckProblem(TMemorySystem& system, const ScanProblem& problem) {
  const std::unique_ptr<RegistryStore> registry = system.Registry.CreateStore(TRegistryAccess::Read);
  registry->SetRootKey(problem.RootKey);
  const bool isValue = problem.Kind == TProblemKind::Value;
  if (!problem.Description.starts_with(u' ') || !registry->OpenKey(problem.KeyPath, false))
    std::abort();
  if (isValue ? !registry->ValueExists(problem.ValueName) : !problem.ValueName.empty())
    std::abort();
}

// Whether the section came to its end.
bool Scan(TMemorySystem& memory, TResultsTreeModel& results) {
  TSystem system = memory.Bundle();
  TGlobalVars vars;
  vars.ProgramFolder = u"C:\\";
  const TGlobalReg reg;
  TSectionsTreeModel sections;
  sections.CheckOnly({kAdwareAndSpyware});
  TSilentDialog dialog;
  TQueueUiThread uiThread;
  bool finished = false;
  bool failed = false;
  const auto onFinished = [&](TWorkerThread& thread) {
    failed = thread.FatalException() != nullptr;
    finished = true;
  };
  const TScanContext context = {.System = system,
                                .Vars = vars,
                                .Reg = reg,
                                .Sections = sections,
                                .Results = results,
                                .UiThread = uiThread,
                                .OnFinished = onFinished};
  TWorkerThread::Launch<TScan>(context, dialog);
  uiThread.RunUntil([&finished] { return finished; });
  return !failed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> input(data, size);
  const std::optional<std::vector<std::uint8_t>> inflated = InflateDataFile(input);
  const std::span<const std::uint8_t> document = inflated ? std::span<const std::uint8_t>(*inflated) : input;
  if (document.size() > kLargestDocument)
    return 0;
  TMemorySystem memory;
  FillRegistry(memory.Registry);
  const std::string_view content(reinterpret_cast<const char*>(data), size);
  const std::vector<std::uint8_t> packed = PackDataFile(content);
  memory.Disk.AddFile(u"C:\\data\\xdata.dat",
                      inflated ? std::string(content) : std::string(packed.begin(), packed.end()));
  TResultsTreeModel results;
  if (Scan(memory, results) != TNativeXml::Parse(document).has_value())
    std::abort();
  TResultsNode* header = results.FirstRoot();
  if (header == nullptr)
    return 0;
  for (TResultsNode* node = results.FirstChild(header); node != nullptr; node = results.NextSibling(node))
    CheckProblem(memory, node->Problem);
  return 0;
}

}  // namespace corvalt
