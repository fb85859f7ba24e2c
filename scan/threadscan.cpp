#include "scan/threadscan.h"

#include <utility>

#include "base/lettercase.h"
#include "system/openkey.h"

namespace corvalt {

namespace {

// The dialog is refreshed on every fiftieth call; each refresh is a round trip to the user-interface thread.
constexpr std::int32_t kProgressThreshold = 50;

// The one section name that is never throttled. No section bears it.
constexpr TextView kUnthrottledSection = u"ShortCuts";

// The entries of both ignore lists that count, in lower case for the comparison. Built-in entries can't be
// switched off.
std::vector<Text> IgnoredPhrases(const TGlobalReg& reg) {
  std::vector<Text> phrases;
  for (const Text& entry : reg.BuiltInExclusions)
    phrases.push_back(LowerCase(entry));
  for (const Text& entry : reg.IgnoreList) {
    if (!entry.starts_with(kOffMark))
      phrases.push_back(LowerCase(entry));
  }
  return phrases;
}

// The text up to and including a module's extension, where a resource path continues below the module file.
Text CutBelowModule(TextView text, TextView extensionWithSeparator) {
  const std::size_t at = text.find(extensionWithSeparator);
  return Text(at == TextView::npos ? text : text.substr(0, at + extensionWithSeparator.size() - 1));
}

ScanProblem Problem(TProblemKind kind, TRootKey rootKey, TextView keyPath, TextView valueName,
                    TextView valueData, TextView description) {
  ScanProblem problem;
  problem.KeyPath = keyPath;
  problem.ValueName = valueName;
  problem.ValueData = valueData;
  problem.RootKey = rootKey;
  problem.Description = description;
  problem.Kind = kind;
  return problem;
}

}  // namespace

std::int32_t ShareOfBar(std::size_t i, std::size_t count, double scale, double start) {
  return RoundHalfToEven(static_cast<double>(i + 1) * scale / static_cast<double>(count) + start);
}

Text LabelOf(TextView keyPath, TextView valueName) {
  return Text(WithoutLeadingBackslash(keyPath)) + u"\\" + Text(valueName);
}

bool BeginsWithArgument(TextView text) {
  return text.substr(0, 2) == u"%1" || (!text.empty() && text.substr(1, 2) == u"%1");
}

bool IsClassRegistered(RegistryStore& prober, TextView classId) {
  return prober.KeyExists(u"\\CLSID\\" + Text(classId)) ||
         prober.KeyExists(u"\\Wow6432Node\\CLSID\\" + Text(classId));
}

std::vector<Text> SubKeyNames(RegistryStore& registry, TextView keyPath) {
  const TOpenKey key(registry, keyPath);
  return key ? registry.GetKeyNames() : std::vector<Text>();
}

std::optional<Text> DefaultValue(RegistryStore& registry, TextView keyPath) {
  const TOpenKey key(registry, keyPath);
  return key ? std::optional(registry.ReadString({})) : std::nullopt;
}

TScan::TScan(TScanContext context, TProgressDialog& progressDialog)
    : TWorkerThread(context.UiThread),
      m_context(std::move(context)),
      m_probe(m_context.System.Probe),
      m_paths(m_probe, m_context.Vars, [this] { return Terminated(); }),
      m_ignored(IgnoredPhrases(m_context.Reg)),
      m_batch({.Results = m_context.Results,
               .Synchronize = [this](const TProblemBatch::TRoutine& routine) { Synchronize(routine); },
               .IsCancelled = [this] { return Terminated(); }}),
      Registry(m_context.System.Registry.CreateStore(TRegistryAccess::Read)),
      ProgressDialog(progressDialog) {
  Start();
}

void TScan::Execute() {
  m_context.Results.Clear();
  SetOnTerminate(m_context.OnFinished);
  EnabledSectionCount = 0;
  const Text enabled = CollectEnabledSections(m_context.Sections.FirstRoot());
  std::int32_t ordinal = 0;
  for (const TSection& section : SectionCatalogue()) {
    if (!Contains(enabled, SectionToken(DecimalText(section.Code))))
      continue;
    BeginSection(++ordinal, section.ProgressName);
    RunSection(section);
    if (Terminated())
      break;
  }
}

void TScan::RunSection(const TSection& section) {
  m_section = &section;
  m_batch.RunSection([&] {
    AddHeader();
    section.Scanner(*this);
  });
}

Text TScan::CollectEnabledSections(TSectionsNode* node) {
  const TSectionsTree& sections = m_context.Sections;
  Text enabled;
  for (; node != nullptr; node = sections.NextSibling(node)) {
    TSectionsNode* child = sections.FirstChild(node);
    if (child != nullptr) {
      enabled += CollectEnabledSections(child);
    } else if (sections.CheckState(node) == TCheckState::Checked) {
      enabled += SectionToken(DecimalText(sections.Code(node)));
      ++EnabledSectionCount;
    }
  }
  return enabled;
}

void TScan::BeginSection(std::int32_t ordinal, TextView name) {
  SectionPosition = RoundHalfToEven(ordinal * 100.0 / EnabledSectionCount);
  CurrentSectionName = name;
  ShowSection();
}

void TScan::ShowSectionAt(std::int32_t position) {
  SectionPosition = position;
  ShowSection();
}

void TScan::ShowSection() {
  m_batch.Show([this] {
    if (Terminated())
      return;
    ProgressDialog.SetItemLabel({});
    ProgressDialog.SetSectionLabel(ScanningLine(m_context.Vars.Texts, CurrentSectionName));
    ProgressDialog.SetOverallPosition(SectionPosition);
  });
}

bool TScan::Report(ScanProblem row) {
  if (IsIgnored(row))
    return false;
  m_batch.Add(std::move(row));
  return true;
}

bool TScan::IsIgnored(const ScanProblem& row) const {
  const Text probe = KeyText(row) + u"\\" + row.ValueName + u"\\" + row.ValueData;
  return m_ignored.OccursIn(LowerCase(probe));
}

void TScan::AddHeader() {
  ScanProblem header;
  header.RootKey = m_section->HeaderRoot;
  header.SectionCaption = m_section->HeaderCaption;
  header.ImageIndex = m_section->HeaderImage;
  Report(std::move(header));
}

bool TScan::ReportKey(TRootKey rootKey, TextView keyPath, TextView valueData, TextView description,
                      std::int32_t imageIndex, TextView valueName) {
  ScanProblem problem = Problem(TProblemKind::Key, rootKey, keyPath, valueName, valueData, description);
  problem.ImageIndex = imageIndex;
  return Report(std::move(problem));
}

bool TScan::ReportValue(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                        TextView description) {
  return Report(Problem(TProblemKind::Value, rootKey, keyPath, valueName, valueData, description));
}

Text TScan::Say(TextId id, TextView arg1, TextView arg2) const {
  return LanguageText(m_context.Vars.Texts, id, arg1, arg2);
}

bool TScan::IsProgressDue() const {
  const std::int32_t threshold = CurrentSectionName == kUnthrottledSection ? 0 : kProgressThreshold;
  return threshold <= ProgressCounter;
}

void TScan::ReportProgress(std::int32_t percent, TextView label) {
  if (IsProgressDue()) {
    ItemPercent = percent;
    ProgressLabel = label;
    m_batch.Show([this] { RefreshProgress(); });
    ProgressCounter = 0;
  } else {
    m_batch.HandOverIfDue();
  }
  ++ProgressCounter;
}

void TScan::RefreshProgress() {
  if (Terminated())
    return;
  ProgressDialog.SetItemLabel(ProgressLabel);
  ProgressDialog.SetSectionPosition(ItemPercent);
}

std::unique_ptr<RegistryStore> TScan::OpenRoot(TRootKey rootKey) const {
  std::unique_ptr<RegistryStore> registry = m_context.System.Registry.CreateStore(TRegistryAccess::Read);
  registry->SetRootKey(rootKey);
  return registry;
}

bool TScan::CommandPathExists(TextView originalText) {
  Text text(originalText);
  if (Contains(text, u"%"))
    text = LowerCase(m_paths.ExpandPathVariables(text));
  if (Contains(text, u"?:\\") || !Contains(text, u":\\"))
    return true;
  const bool quotedByApostrophes = text.find(u'\'') != text.rfind(u'\'');
  const std::size_t colon = text.find(u":\\");
  if (colon > 0)
    text.erase(0, colon - 1);
  if (quotedByApostrophes)
    text = CutAt(u"'", text);
  for (const TextView separator : {u"\"", u",", u";", u"|"})
    text = CutAt(separator, text);
  for (const TextView module : {u".dll\\", u".ocx\\", u".exe\\"})
    text = CutBelowModule(text, module);
  if (m_paths.CommandLineFileExists(text, true))
    return true;
  const Text beforeParenthesis = CutAt(u"(", text);
  return beforeParenthesis.size() != text.size() && m_paths.CommandLineFileExists(beforeParenthesis, true);
}

}  // namespace corvalt
