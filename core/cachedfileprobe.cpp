#include "core/cachedfileprobe.h"

#include <algorithm>

#include "base/devicenames.h"
#include "base/lettercase.h"
#include "base/limits.h"

namespace corvalt {

namespace {

constexpr std::size_t kRootLength = 3;  // "C:\"

// A listing costs about as much as three plain questions, and most folders are asked about once or twice.
constexpr int kQuestionsBeforeListing = 3;

// Bytes that all listings may hold, by estimate; room for half a million names. Folders met later are asked
// plainly: a scan must run beside other programs on a small machine.
constexpr std::size_t kMostKept = std::size_t{64} * 1024 * 1024;
constexpr std::size_t kNodeSize = 64;

bool IsAsciiLetter(char16_t unit) {
  return (unit >= u'A' && unit <= u'Z') || (unit >= u'a' && unit <= u'z');
}

// Characters that no name holds, or that mean something else: wildcards, streams, the other separator.
bool NeverInNames(char16_t unit) {
  return unit < 0x20 || unit == u'"' || unit == u'*' || unit == u'/' || unit == u':' || unit == u'<' ||
         unit == u'>' || unit == u'?' || unit == u'|';
}

// The system rewrites a name that ends like this before it looks.
bool IsRewritten(TextView upperName) {
  return upperName.back() == u'.' || upperName.back() == u' ' || IsDeviceName(upperName);
}

// In a 32-bit process on a 64-bit system these lead elsewhere than the listing of their parent shows (page
// "File System Redirector", learn.microsoft.com).
bool IsTreatedByRedirection(TextView upperName) {
  return upperName == u"SYSNATIVE" || upperName == u"CATROOT" || upperName == u"CATROOT2" ||
         upperName == u"DRIVERSTORE" || upperName == u"ETC" || upperName == u"LOGFILES" ||
         upperName == u"SPOOL";
}

// Whether a name that a listing lacks does not exist. Short names have "~" and need not be listed; of other
// letters than ASCII the disk may have another table of upper and lower case.
bool IsMissCertain(TextView upperName) {
  const bool plainLetters = std::all_of(upperName.begin(), upperName.end(),
                                        [](char16_t unit) { return unit < 0x80 && unit != u'~'; });
  return plainLetters && !IsTreatedByRedirection(upperName);
}

}  // namespace

bool TCachedFileProbe::FileExists(TextView path) {
  const TFinding finding = Find(path);
  return finding == TFinding::Unknown ? m_base.FileExists(path) : finding == TFinding::File;
}

bool TCachedFileProbe::DirectoryExists(TextView path) {
  const TFinding finding = Find(path);
  return finding == TFinding::Unknown ? m_base.DirectoryExists(path) : finding == TFinding::Folder;
}

bool TCachedFileProbe::Wow64DisableWow64FsRedirection() {
  const bool switched = m_base.Wow64DisableWow64FsRedirection();
  if (switched)
    ++m_redirectionOff;
  return switched;
}

void TCachedFileProbe::Wow64RevertWow64FsRedirection() {
  m_base.Wow64RevertWow64FsRedirection();
  if (m_redirectionOff > 0)
    --m_redirectionOff;
}

TCachedFileProbe::TFinding TCachedFileProbe::Find(TextView path) {
  const std::optional<TQuestion> question = TakeApart(path);
  if (!question)
    return TFinding::Unknown;
  const TFinding finding = FindingOf(*question);
  if (finding == TFinding::Missing && !question->MissIsCertain)
    return TFinding::Unknown;
  // Whether a file's name may end with "\" is for the system to decide.
  if (finding == TFinding::File && question->EndsWithSeparator)
    return TFinding::Unknown;
  return finding;
}

std::optional<TCachedFileProbe::TQuestion> TCachedFileProbe::TakeApart(TextView path) {
  // The system takes longer paths in another form.
  if (path.size() <= kRootLength || path.size() >= kMaxPath || path.substr(1, 2) != u":\\" ||
      !IsAsciiLetter(path[0]))
    return std::nullopt;
  const auto& upperCase = SystemLetterCase().Upper;
  TQuestion question;
  m_plain.assign(path.substr(0, 2));
  m_upper.assign({upperCase[path[0]], u':'});
  std::size_t at = kRootLength;
  while (at < path.size()) {
    const std::size_t start = m_upper.size() + 1;
    const std::size_t end = std::min(path.find(u'\\', at), path.size());
    question.EndsWithSeparator = end < path.size();
    if (end == at) {
      ++at;
      continue;
    }
    const TextView name = path.substr(at, end - at);
    m_plain.append(1, u'\\').append(name);
    m_upper.resize(start + name.size(), u'\\');
    for (std::size_t i = 0; i < name.size(); ++i) {
      if (NeverInNames(name[i]))
        return std::nullopt;
      m_upper[start + i] = upperCase[name[i]];
    }
    const TextView upperName = TextView(m_upper).substr(start);
    if (IsRewritten(upperName))
      return std::nullopt;
    question.MissIsCertain = question.MissIsCertain && IsMissCertain(upperName);
    at = end + 1;
  }
  if (m_upper.size() < kRootLength)
    return std::nullopt;
  question.Plain = m_plain;
  question.Upper = m_upper;
  return question;
}

TCachedFileProbe::TFinding TCachedFileProbe::FindingOf(const TQuestion& question) {
  const std::size_t separator = question.Upper.rfind(u'\\');
  TFolder* const folder = Folder(question.Plain.substr(0, separator), question.Upper.substr(0, separator));
  if (!folder)
    return TFinding::Unknown;
  ListWhenItPays(question.Plain.substr(0, separator), *folder);
  if (folder->State == TFolder::TState::Missing)
    return TFinding::Missing;
  if (folder->State != TFolder::TState::Listed)
    return TFinding::Unknown;
  const auto entry = folder->Entries.find(question.Upper.substr(separator + 1));
  if (entry == folder->Entries.end())
    return TFinding::Missing;
  if (entry->second == TEntryKind::AskPlainly)
    return TFinding::Unknown;
  return entry->second == TEntryKind::File ? TFinding::File : TFinding::Folder;
}

TCachedFileProbe::TFolder* TCachedFileProbe::Folder(TextView plain, TextView upper) {
  TFolders& folders = m_folders[m_redirectionOff > 0 ? 1 : 0];
  const auto known = folders.find(upper);
  if (known != folders.end())
    return &known->second;
  if (m_kept >= kMostKept)
    return nullptr;
  TFolder folder;
  const std::size_t separator = upper.rfind(u'\\');
  if (separator != TextView::npos) {
    TFolder* const parent = Folder(plain.substr(0, separator), upper.substr(0, separator));
    if (!parent)
      return nullptr;
    ListWhenItPays(plain.substr(0, separator), *parent);
    folder.State = StateBelow(*parent, upper.substr(separator + 1));
  }
  m_kept += sizeof(TFolder) + kNodeSize + upper.size() * sizeof(char16_t);
  return &folders.emplace(upper, std::move(folder)).first->second;
}

TCachedFileProbe::TFolder::TState TCachedFileProbe::StateBelow(const TFolder& parent, TextView upperName) {
  using TState = TFolder::TState;
  if (parent.State == TState::Missing || parent.State == TState::AskPlainly)
    return parent.State;
  if (parent.State != TState::Listed)
    return TState::NotListed;
  const auto entry = parent.Entries.find(upperName);
  if (entry == parent.Entries.end())
    return IsMissCertain(upperName) ? TState::Missing : TState::NotListed;
  if (entry->second == TEntryKind::AskPlainly)
    return TState::AskPlainly;
  return entry->second == TEntryKind::Folder ? TState::NotListed : TState::Missing;
}

void TCachedFileProbe::ListWhenItPays(TextView plain, TFolder& folder) {
  if (folder.State != TFolder::TState::NotListed || ++folder.Questions < kQuestionsBeforeListing ||
      m_kept >= kMostKept)
    return;
  const bool isRoot = plain.size() < kRootLength;
  switch (m_base.ListFolder(isRoot ? WithTrailingBackslash(plain) : Text(plain), m_listing)) {
    case TListing::Missing:
      folder.State = TFolder::TState::Missing;
      break;
    case TListing::Unreadable:
      folder.State = TFolder::TState::Unreadable;
      break;
    case TListing::Listed:
      folder.State = TFolder::TState::Listed;
      for (const TFolderEntry& entry : m_listing) {
        const TEntryKind kind = entry.IsFolder ? TEntryKind::Folder : TEntryKind::File;
        AddEntry(entry.Name, entry.IsLink ? TEntryKind::AskPlainly : kind, folder);
        if (!entry.ShortName.empty())
          AddEntry(entry.ShortName, entry.IsLink ? TEntryKind::AskPlainly : kind, folder);
      }
      break;
  }
}

void TCachedFileProbe::AddEntry(const Text& name, TEntryKind kind, TFolder& folder) {
  m_kept += kNodeSize + name.size() * sizeof(char16_t);
  const auto [entry, added] = folder.Entries.emplace(UpperCase(name), kind);
  // Two names that differ only in letter case, on a disk that tells them apart.
  if (!added && entry->second != kind)
    entry->second = TEntryKind::AskPlainly;
}

}  // namespace corvalt
