#include "formats/regfilereader.h"

#include <algorithm>
#include <utility>

#include "base/lettercase.h"

namespace corvalt {

namespace {

TextView WithoutBlanks(TextView text) {
  constexpr TextView kBlanks = u" \t";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == TextView::npos)
    return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::uint32_t CodePageOf(const std::optional<TBackupOrigin>& origin, TLocale& locale) {
  const bool isKnown = origin && locale.HasCodePage(origin->CodePage);
  return isKnown ? origin->CodePage : locale.AnsiCodePage();
}

}  // namespace

TCodePage CodePageOfFile(std::span<const std::uint8_t> bytes, TLocale& locale) {
  return {locale, CodePageOf(ReadOrigin(bytes), locale)};
}

TRegFileReader::TRegFileReader(std::span<const std::uint8_t> bytes, TLocale& locale, TDeletionLines deletions)
    : m_origin(ReadOrigin(bytes)),
      m_codePage{locale, CodePageOf(m_origin, locale)},
      m_cursor(bytes, m_codePage),
      m_deletions(deletions) {
  while (m_cursor.NextEntry()) {
    const TextView line = WithoutBlanks(m_cursor.Rest());
    if (line.empty())
      continue;
    m_hasHeader = line == kRegFileHeader;
    break;
  }
}

const TRegFileEntry* TRegFileReader::Next() {
  while (m_hasHeader && m_cursor.NextEntry()) {
    if (!m_cursor.HasContent())
      continue;
    const TLineResult result = ReadLine();
    if (result == TLineResult::Malformed)
      m_cursor.SkipMalformed();
    else if (result == TLineResult::Entry && !IsWanted())
      m_cursor.SkipEntry();
    else if (result == TLineResult::Entry)
      return &m_entry;
  }
  return nullptr;
}

bool TRegFileReader::IsWanted() const {
  if (m_entry.Kind == TRegFileEntry::TKind::DeleteKey)
    return m_deletions == TDeletionLines::Entries;
  if (m_entry.Kind == TRegFileEntry::TKind::DeleteValue && m_deletions == TDeletionLines::Skipped)
    return false;
  return m_hasKey;
}

TRegFileReader::TLineResult TRegFileReader::ReadLine() {
  if (m_cursor.TakeExact(kBackupLine))
    return ReadAttribute() ? TLineResult::Comment : TLineResult::Malformed;
  return ReadEntry() ? TLineResult::Entry : TLineResult::Malformed;
}

bool TRegFileReader::ReadEntry() {
  const TextView rest = m_cursor.Rest();
  if (rest.front() == u'[')
    return ReadKeyLine();
  if (IsExactLine(rest))
    return ReadExactLine();
  EndKeyWhereAKeyLineIsMissing();
  if (rest.front() == u'"' || rest.front() == u'@')
    return ReadValueLine();
  // A key line with a damaged beginning must end the key before it.
  if (WithoutBlanks(rest).ends_with(u']'))
    m_hasKey = false;
  return false;
}

// Only a key line follows the comments about a key: what stands there instead has taken its place.
void TRegFileReader::EndKeyWhereAKeyLineIsMissing() {
  TRegFileAttributes attributes;
  if (!TakeAttributes(attributes) || attributes != TRegFileAttributes())
    m_hasKey = false;
}

// What was read for this key; false where it tells of no hive that could be read: the key, and its values,
// may not go to another one.
bool TRegFileReader::TakeAttributes(TRegFileAttributes& attributes) {
  attributes = std::exchange(m_attributes, {});
  return !std::exchange(m_hiveIsLost, false);
}

// A key's name may hold "]": the last one ends the line.
bool TRegFileReader::ReadKeyLine() {
  m_hasKey = false;
  const bool hasHive = TakeAttributes(m_entry.Attributes);
  const TextView line = m_cursor.Rest();
  const std::size_t close = line.rfind(u']');
  if (close == TextView::npos || !hasHive)
    return false;
  TextView name = line.substr(1, close - 1);
  m_cursor.RemovePrefix(close + 1);
  m_cursor.SkipBlanks();
  if (!m_cursor.AtEnd())
    return false;
  const bool isDeletion = name.starts_with(u'-');
  if (isDeletion)
    name.remove_prefix(1);
  const std::size_t rootEnd = std::min(name.find(u'\\'), name.size());
  const TextView keyPath = rootEnd == name.size() ? TextView(u"\\") : name.substr(rootEnd);
  if (!SetKey(name.substr(0, rootEnd), keyPath))
    return false;
  m_hasKey = !isDeletion;
  m_entry.Kind = isDeletion ? TRegFileEntry::TKind::DeleteKey : TRegFileEntry::TKind::Key;
  return true;
}

bool TRegFileReader::SetKey(TextView rootName, TextView keyPath) {
  const Text root = UpperCase(rootName);
  if (!IsRootKeyName(root) || HoldsNul(keyPath) || !OpensKey(keyPath))
    return false;
  m_entry.RootKey = RootKeyFromName(root);
  m_entry.KeyPath = keyPath;
  // Only the classes have two hives.
  if (m_entry.RootKey != kHkeyClassesRoot)
    m_entry.Attributes.Hive = kNoRootKey;
  return true;
}

bool TRegFileReader::ReadValueLine() {
  if (!ReadName())
    return false;
  m_cursor.SkipBlanks();
  if (!m_cursor.Take(u'='))
    return false;
  m_cursor.SkipBlanks();
  m_entry.Value.Type = kRegNone;
  m_entry.Value.Data.clear();
  return ReadData();
}

bool TRegFileReader::ReadName() {
  m_entry.Value.Name.clear();
  if (m_cursor.Take(u'@'))
    return true;
  return m_cursor.Take(u'"') && m_cursor.TakeString(m_entry.Value.Name) == TRegFileCursor::TStringEnd::Closed;
}

bool TRegFileReader::ReadData() {
  m_entry.Kind = TRegFileEntry::TKind::Value;
  if (m_cursor.Take(u'"'))
    return ReadString();
  if (m_cursor.TakeWord(kDwordWord))
    return ReadDword();
  if (m_cursor.TakeWord(kHexWord))
    return ReadHex();
  m_entry.Kind = TRegFileEntry::TKind::DeleteValue;
  if (!m_cursor.Take(u'-'))
    return false;
  m_cursor.SkipBlanks();
  return m_cursor.AtEnd();
}

bool TRegFileReader::ReadString() {
  m_string.clear();
  const TRegFileCursor::TStringEnd end = m_cursor.TakeString(m_string);
  if (end == TRegFileCursor::TStringEnd::Malformed)
    return false;
  if (end == TRegFileCursor::TStringEnd::Open && !m_cursor.TakeStringOverLines(m_string))
    return false;
  m_cursor.SkipBlanks();
  if (!m_cursor.AtEnd())
    return false;
  m_string += u'\0';
  m_entry.Value.Type = kRegSz;
  AppendUnits(m_string, m_entry.Value.Data);
  return true;
}

bool TRegFileReader::ReadDword() {
  m_cursor.SkipBlanks();
  const std::optional<std::uint32_t> number = m_cursor.TakeNumber();
  m_cursor.SkipBlanks();
  if (!number || !m_cursor.AtEnd())
    return false;
  m_entry.Value.Type = kRegDword;
  m_entry.Value.Data = IntegerBytes(*number);
  return true;
}

bool TRegFileReader::ReadHex() {
  std::optional<std::uint32_t> type = kRegBinary;
  if (m_cursor.Take(u'(')) {
    type = m_cursor.TakeNumber();
    if (!type || !m_cursor.Take(u')'))
      return false;
  }
  TBytes& data = m_entry.Value.Data;
  if (!m_cursor.Take(u':') || !ReadHexBytes(data))
    return false;
  m_entry.Value.Type = *type;
  if (IsTextType(*type)) {
    const Text text = m_codePage.Decode({reinterpret_cast<const char*>(data.data()), data.size()});
    data.clear();
    AppendUnits(text, data);
  }
  return true;
}

bool TRegFileReader::ReadHexBytes(TBytes& bytes) {
  if (!m_cursor.SkipBlanksAndFolds())
    return false;
  if (m_cursor.AtEnd())
    return true;
  std::uint8_t byte = 0;
  while (m_cursor.TakeByte(byte)) {
    bytes.push_back(byte);
    if (!m_cursor.SkipBlanksAndFolds())
      return false;
    if (m_cursor.AtEnd())
      return true;
    if (!m_cursor.Take(u',') || !m_cursor.SkipBlanksAndFolds())
      return false;
  }
  return false;
}

bool TRegFileReader::ReadExactLine() {
  if (!m_cursor.TakeExact(kExactLine))
    return false;
  if (m_cursor.TakeWord(kExactValue)) {
    EndKeyWhereAKeyLineIsMissing();
    return ReadExactValue();
  }
  // A comment of this form that is no value may be a damaged key line.
  m_hasKey = false;
  const bool hasHive = TakeAttributes(m_entry.Attributes);
  return hasHive && m_cursor.TakeWord(kExactKey) && ReadExactKey();
}

bool TRegFileReader::ReadExactKey() {
  const TextView rest = m_cursor.Rest();
  const std::size_t rootEnd = rest.find(kExactSeparator);
  if (rootEnd == TextView::npos)
    return false;
  const Text rootName(rest.substr(0, rootEnd));
  m_cursor.RemovePrefix(rootEnd + 1);
  Text keyPath;
  if (!ReadExactText(keyPath) || !m_cursor.Rest().empty() || !keyPath.starts_with(u'\\') ||
      !SetKey(rootName, keyPath))
    return false;
  m_hasKey = true;
  m_entry.Kind = TRegFileEntry::TKind::Key;
  return true;
}

bool TRegFileReader::ReadExactValue() {
  TRawValue& value = m_entry.Value;
  if (!ReadExactText(value.Name) || HoldsNul(value.Name) || !m_cursor.Take(kExactSeparator))
    return false;
  const std::optional<std::uint32_t> type = m_cursor.TakeNumber();
  value.Data.clear();
  if (!type || !m_cursor.Take(kExactSeparator) || !m_cursor.TakePairs(kExactContinuation, value.Data) ||
      !m_cursor.Rest().empty())
    return false;
  value.Type = *type;
  m_entry.Kind = TRegFileEntry::TKind::Value;
  return true;
}

bool TRegFileReader::ReadExactText(Text& text) {
  TBytes bytes;
  if (!m_cursor.TakePairs(kExactContinuation, bytes) || bytes.size() % 2 != 0)
    return false;
  text = UnitsOf(bytes);
  return true;
}

// Comments of an unknown kind are newer ones, or those of the file as a whole.
bool TRegFileReader::ReadAttribute() {
  if (m_cursor.TakeExact(kHiveWord)) {
    const TRootKey hive = IsRootKeyName(m_cursor.Rest()) ? RootKeyFromName(m_cursor.Rest()) : kNoRootKey;
    m_hiveIsLost = hive != kHkeyCurrentUser && hive != kHkeyLocalMachine;
    m_attributes.Hive = m_hiveIsLost ? kNoRootKey : hive;
    return !m_hiveIsLost;
  }
  if (m_cursor.TakeExact(kClassWord))
    return ReadClass();
  if (m_cursor.TakeExact(kSecurityWord))
    return ReadAttributeBytes(m_attributes.Security);
  if (m_cursor.TakeExact(kTimeWord))
    return ReadTime();
  if (m_cursor.Rest() == kVolatileLine)
    m_attributes.IsVolatile = true;
  return true;
}

bool TRegFileReader::ReadAttributeBytes(TBytes& bytes) {
  TBytes read;
  if (!m_cursor.TakePairs(kBackupContinuation, read) || !m_cursor.Rest().empty())
    return false;
  bytes = std::move(read);
  return true;
}

bool TRegFileReader::ReadClass() {
  TBytes bytes;
  if (!ReadAttributeBytes(bytes) || bytes.size() % 2 != 0)
    return false;
  m_attributes.ClassName = UnitsOf(bytes);
  return true;
}

bool TRegFileReader::ReadTime() {
  TBytes bytes;
  if (!ReadAttributeBytes(bytes) || bytes.size() != sizeof(std::uint64_t))
    return false;
  std::uint64_t time = 0;
  for (const std::uint8_t byte : bytes)
    time = time << 8 | byte;
  m_attributes.LastWrite = time;
  return true;
}

}  // namespace corvalt
