#include "scan/threadscan.h"

#include <algorithm>
#include <exception>
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

// A scanner that throws ends the scan. Its section ends like any other: a header without a number would look
// as if it were still being scanned.
void TScan::RunSection(const TSection& section) {
  m_section = &section;
  AddHeader();
  std::exception_ptr failure;
  try {
    section.Scanner(*this);
  } catch (...) {
    failure = std::current_exception();
  }
  Synchronize([this] { EndSection(); });
  if (failure)
    std::rethrow_exception(failure);
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
  Synchronize([this] {
    if (Terminated())
      return;
    ProgressDialog.SetItemLabel({});
    ProgressDialog.SetSectionLabel(ScanningLine(m_context.Vars.Texts, CurrentSectionName));
    ProgressDialog.SetOverallPosition(SectionPosition);
  });
}

void TScan::EndSection() {
  if (ParentNode == nullptr)
    return;
  TResultsTree& results = m_context.Results;
  const std::size_t count = results.ChildCount(ParentNode);
  results.Data(ParentNode).ChildCount = static_cast<std::uint32_t>(count);
  if (count == 0)
    results.DeleteNode(std::exchange(ParentNode, nullptr));
}

void TScan::AddProblem(TResultsNode* parentNode, TRootKey rootKey, TextView sectionCaption,
                       std::int32_t imageIndex, TextView keyPath, TextView valueName, TextView valueData,
                       TextView extra, TextView description, TCheckMark checkMark, TProblemKind kind) {
  ParentNode = parentNode;
  m_pending.KeyPath = keyPath;
  m_pending.ValueName = valueName;
  m_pending.ValueData = valueData;
  m_pending.RootKey = rootKey;
  m_pending.Description = description;
  m_pending.Kind = kind;
  m_pending.SectionCaption = sectionCaption;
  m_pending.ImageIndex = imageIndex;
  m_pending.CheckMark = checkMark;
  m_pending.Extra = extra;
}

bool TScan::HandOver() {
  if (IsIgnored())
    return false;
  Synchronize([this] { AddProblemNode(); });
  return true;
}

void TScan::AddProblemNode() {
  TResultsTree& results = m_context.Results;
  const int textWidth =
      std::max(results.MeasureText(m_pending.KeyPath), results.MeasureText(m_pending.Description));
  if (textWidth + kColumnRoom > results.ColumnWidth())
    results.SetColumnWidth(textWidth + kColumnRoom);
  TResultsNode* node = results.AddNode(ParentNode);
  results.Data(node) = m_pending;
  if (ParentNode == nullptr)
    ParentNode = node;
}

bool TScan::IsIgnored() const {
  const Text probe = KeyText(m_pending) + u"\\" + m_pending.ValueName + u"\\" + m_pending.ValueData;
  return m_ignored.OccursIn(LowerCase(probe));
}

void TScan::AddHeader() {
  AddProblem(nullptr, m_section->HeaderRoot, m_section->HeaderCaption, m_section->HeaderImage, {}, {}, {}, {},
             {}, TCheckMark::Repair, TProblemKind::Value);
  HandOver();
}

bool TScan::ReportKey(TRootKey rootKey, TextView keyPath, TextView valueData, TextView description,
                      std::int32_t imageIndex, TextView valueName) {
  AddProblem(ParentNode, rootKey, {}, imageIndex, keyPath, valueName, valueData, {}, description,
             TCheckMark::Repair, TProblemKind::Key);
  return HandOver();
}

bool TScan::ReportValue(TRootKey rootKey, TextView keyPath, TextView valueName, TextView valueData,
                        TextView description) {
  AddProblem(ParentNode, rootKey, {}, kNoImage, keyPath, valueName, valueData, {}, description,
             TCheckMark::Repair, TProblemKind::Value);
  return HandOver();
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
    Synchronize([this] { RefreshProgress(); });
    ProgressCounter = 0;
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
