#include "tests/support/scanrig.h"

#include "tests/support/datafile.h"

namespace corvalt {

namespace {

std::string LineOf(const ScanProblem& problem) {
  std::string line = EncodeUtf8(RootKeyName(problem.RootKey));
  for (const Text& field : {problem.KeyPath, problem.ValueName, problem.ValueData, problem.Description}) {
    line += " | " + EncodeUtf8(field);
  }
  return line;
}

}  // namespace

void TRecordingDialog::SetSectionLabel(TextView text) {
  Updates.push_back("section: " + EncodeUtf8(text));
}

void TRecordingDialog::SetItemLabel(TextView text) {
  Updates.push_back("item: " + EncodeUtf8(text));
}

void TRecordingDialog::SetOverallPosition(std::int32_t position) {
  Updates.push_back("overall: " + std::to_string(position));
}

void TRecordingDialog::SetSectionPosition(std::int32_t position) {
  Updates.push_back("bar: " + std::to_string(position));
}

TLanguageTexts NumberedTexts() {
  constexpr const char* kArguments[] = {"", "(%s)", "(%s|%s2)"};
  std::string lines;
  for (const TTextEntry& entry : kTextIds) {
    const std::string id = std::to_string(static_cast<std::int32_t>(entry.Id));
    lines += id + "=" + id + kArguments[entry.Placeholders] + "\n";
  }
  TMemoryLocale locale;
  const std::vector<std::uint8_t> bytes(lines.begin(), lines.end());
  TLanguageTexts texts;
  texts.English = TLanguageTable::FromFile(bytes, locale);
  return texts;
}

TScanRig::TScanRig(TNameOrder order) : System(order) {
  System.AddUsualFolders();
  TSystem system = System.Bundle();
  FillGlobalVars(system, Vars);
  System.Registry.RemoveKey(u"HKEY_CURRENT_USER\\Software\\TessalySoft");
  Vars.Texts = NumberedTexts();
}

void TScanRig::Run(const std::vector<std::int32_t>& sectionCodes) {
  Dialog.Updates.clear();
  RunWith(Dialog, sectionCodes);
}

void TScanRig::RunAndCancel(const std::vector<std::int32_t>& sectionCodes, int afterReads) {
  OnRead = [afterReads](TScan& scan, int reads) {
    if (reads == afterReads)
      scan.Terminate();
  };
  Run(sectionCodes);
  OnRead = nullptr;
}

void TScanRig::RunWith(TProgressDialog& dialog, const std::vector<std::int32_t>& sectionCodes) {
  Sections.CheckOnly(sectionCodes);
  m_reads = 0;
  bool finished = false;
  TSystem system = System.Bundle();
  TScan* scan = nullptr;
  // A scan's first section begins with a call of this thread, so that scan is set before the registry is
  // asked.
  System.Registry.OnRead = [&] {
    ++m_reads;
    if (OnRead)
      OnRead(*scan, m_reads);
  };
  const auto onFinished = [&](TWorkerThread& thread) {
    Failure = thread.FatalException();
    finished = true;
  };
  const TScanContext context = {.System = system,
                                .Vars = Vars,
                                .Reg = Reg,
                                .Sections = Sections,
                                .Results = Results,
                                .UiThread = UiThread,
                                .OnFinished = onFinished};
  scan = &TWorkerThread::Launch<TScan>(context, dialog);
  UiThread.RunUntil([&finished] { return finished; });
  System.Registry.OnRead = nullptr;
}

std::vector<ScanProblem> TScanRig::Headers() {
  std::vector<ScanProblem> headers;
  for (TResultsNode* node = Results.FirstRoot(); node != nullptr; node = Results.NextSibling(node)) {
    headers.push_back(node->Problem);
  }
  return headers;
}

std::vector<ScanProblem> TScanRig::Problems() {
  std::vector<ScanProblem> problems;
  for (TResultsNode* header = Results.FirstRoot(); header != nullptr; header = Results.NextSibling(header)) {
    for (TResultsNode* node = Results.FirstChild(header); node != nullptr; node = Results.NextSibling(node)) {
      problems.push_back(node->Problem);
    }
  }
  return problems;
}

std::vector<ScanProblem> TScanRig::ProblemsOf(TextView sectionCaption) {
  std::vector<ScanProblem> problems;
  for (TResultsNode* header = Results.FirstRoot(); header != nullptr; header = Results.NextSibling(header)) {
    if (header->Problem.SectionCaption != sectionCaption)
      continue;
    for (TResultsNode* node = Results.FirstChild(header); node != nullptr; node = Results.NextSibling(node)) {
      problems.push_back(node->Problem);
    }
  }
  return problems;
}

std::vector<std::string> TScanRig::Lines() {
  std::vector<std::string> lines;
  for (const ScanProblem& problem : Problems())
    lines.push_back(LineOf(problem));
  return lines;
}

void TScanRig::WriteCatalogue(std::string_view xml) {
  const std::vector<std::uint8_t> file = PackDataFile(xml);
  System.Disk.AddFile(u"C:\\Program Files\\Tessaly\\data\\xdata.dat", std::string(file.begin(), file.end()));
}

}  // namespace corvalt
