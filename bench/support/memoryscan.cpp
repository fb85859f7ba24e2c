#include "bench/support/memoryscan.h"

#include <ctime>
#include <string_view>

#include "tests/support/silentdialog.h"

namespace corvalt {

namespace {

// Descriptions of about the length that the shipped ones have.
constexpr std::string_view kTexts =
    "11042=The value \"%s\" names a file or folder that does not exist: %s2\n"
    "11044=The key is empty.\n"
    "11045=The class \"%s\" is missing or broken.\n"
    "11046=The icon file \"%s\" does not exist.\n"
    "11048=The verb has no command.\n"
    "11050=The component file \"%s\" does not exist.\n";

std::size_t BytesOf(const ScanProblem& problem) {
  std::size_t units = 0;
  for (const Text* text : {&problem.KeyPath, &problem.ValueName, &problem.ValueData, &problem.Description,
                           &problem.SectionCaption, &problem.Extra}) {
    units += text->size();
  }
  return units * sizeof(char16_t);
}

}  // namespace

TMemoryScan::TMemoryScan() {
  System.AddUsualFolders();
  TSystem system = System.Bundle();
  FillGlobalVars(system, Vars);
  System.Registry.RemoveKey(u"HKEY_CURRENT_USER\\Software");
  const std::vector<std::uint8_t> bytes(kTexts.begin(), kTexts.end());
  Vars.Texts.English = TLanguageTable::FromFile(bytes, System.Locale);
}

double TMemoryScan::Run(const std::vector<std::int32_t>& sectionCodes) {
  Sections.CheckOnly(sectionCodes);
  bool finished = false;
  std::exception_ptr failure;
  const auto onFinished = [&](TWorkerThread& thread) {
    failure = thread.FatalException();
    finished = true;
  };
  TSystem system = System.Bundle();
  TSilentDialog dialog;
  const std::clock_t start = std::clock();
  const TScanContext context = {.System = system,
                                .Vars = Vars,
                                .Reg = Reg,
                                .Sections = Sections,
                                .Results = Results,
                                .UiThread = UiThread,
                                .OnFinished = onFinished};
  TWorkerThread::Launch<TScan>(context, dialog);
  UiThread.RunUntil([&finished] { return finished; });
  const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  if (failure)
    std::rethrow_exception(failure);
  return taken;
}

std::size_t TMemoryScan::ProblemCount() const {
  std::size_t count = 0;
  for (const TResultsNode* node = Results.FirstRoot(); node != nullptr; node = Results.NextSibling(node))
    count += Results.ChildCount(node);
  return count;
}

std::size_t TMemoryScan::TextBytes() const {
  std::size_t bytes = 0;
  for (const TResultsNode* header = Results.FirstRoot(); header != nullptr;
       header = Results.NextSibling(header)) {
    for (const TResultsNode* node = Results.FirstChild(header); node != nullptr;
         node = Results.NextSibling(node))
      bytes += BytesOf(node->Problem);
  }
  return bytes;
}

}  // namespace corvalt
