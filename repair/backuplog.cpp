#include "repair/backuplog.h"

#include <string_view>
#include <utility>

#include "base/characters.h"
#include "formats/textfile.h"
#include "repair/backupfolder.h"

namespace corvalt {

namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;  // bytes
constexpr char kEscape = '^';

std::string_view NameOf(TChangeKind kind) {
  switch (kind) {
    case TChangeKind::KeyCreated:
      return "key created";
    case TChangeKind::KeyDeleted:
      return "key deleted";
    case TChangeKind::ValueWritten:
      return "value written";
    case TChangeKind::ValueDeleted:
      return "value deleted";
    case TChangeKind::AttributesWritten:
      return "attributes written";
  }
  return {};
}

std::string_view NameOf(TRawResult result) {
  switch (result) {
    case TRawResult::Done:
      return "done";
    case TRawResult::Missing:
      return "missing";
    case TRawResult::Denied:
      return "access denied";
    case TRawResult::Link:
      return "is a link";
    case TRawResult::MustBeVolatile:
      return "must be volatile";
    case TRawResult::Refused:
      return "not as saved";
    case TRawResult::InPart:
      return "in part";
    case TRawResult::Failed:
      return "failed";
  }
  return {};
}

// Control characters, the separators of lines and paragraphs, and those that turn the direction of what
// follows (Unicode Standard Annex 9, unicode.org/reports/tr9).
bool BreaksLine(char16_t unit) {
  return IsControl(unit) || (unit >= 0x2028 && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}

// A name so that it stays on its line, and no two names look the same.
std::string InOneLine(TextView name) {
  std::string line;
  while (!name.empty()) {
    const TCharacter character = FirstCharacter(name);
    if (character.Value == kEscape || BreaksLine(name[0]) || character.IsHalf())
      line += kEscape + HexDigits(character.Value, 4);
    else
      line += EncodeUtf8(name.substr(0, character.Units));
    name.remove_prefix(character.Units);
  }
  return line;
}

std::string LineOf(const TRegistryChange& change) {
  std::string line = InOneLine(RootKeyName(change.RootKey) + change.KeyPath);
  line += '\t';
  line += InOneLine(change.ValueName);
  line += '\t';
  line += NameOf(change.Kind);
  line += '\t';
  line += NameOf(change.Result);
  return line + "\r\n";
}

}  // namespace

TBackupLog::TBackupLog(TSystem& system, const TGlobalVars& vars, std::optional<TBackupName> name, TRun run)
    : m_system(system), m_vars(vars), m_name(std::move(name)), m_run(run) {
}

TBackupLog::~TBackupLog() {
  Finish();
}

template <typename TStep>
void TBackupLog::Try(TStep step) {
  if (m_failure)
    return;
  try {
    step();
  } catch (...) {
    m_failure = std::current_exception();
  }
}

void TBackupLog::Changed(const TRegistryChange& change) {
  if (!m_name)
    return;
  Try([this, &change] {
    m_block += LineOf(change);
    if (m_block.size() >= kBlock)
      WriteBlock();
  });
}

void TBackupLog::Finish() {
  Try([this] {
    WriteBlock();
    if (m_file)
      Expect(m_file->Flush());
    m_file.reset();
  });
}

void TBackupLog::WriteBlock() {
  if (m_block.empty())
    return;
  if (!m_file)
    Open();
  if (m_file)
    Expect(m_file->Append({reinterpret_cast<const std::uint8_t*>(m_block.data()), m_block.size()}));
  m_block.clear();
}

// A log whose backup has gone would never be removed.
void TBackupLog::Open() {
  std::optional<TBackupFolder> folder =
      TBackupFolder::OpenIfThere(m_system, m_vars, m_vars.SuiteBackupsFolder);
  if (!folder || !folder->HasFile(m_name->Value())) {
    m_name.reset();
    return;
  }
  const bool isNew = folder->FileSize(m_name->LogName()) == 0;
  Expect(folder->GrowFile(m_name->LogName(), m_file));
  m_block.insert(0, (isNew ? std::string(kUtf8Mark) : std::string()) + RunLine());
}

std::string TBackupLog::RunLine() const {
  const TDateTime now = m_system.Clock.Now();
  const Text time = m_system.Locale.FormatShortDate(now) + u" " + m_system.Locale.FormatLongTime(now);
  return (m_run == TRun::Repair ? "; repair, " : "; restore, ") + InOneLine(time) + "\r\n";
}

void TBackupLog::Expect(TSystemError error) const {
  if (error.Failed())
    throw TSystemException(error, m_vars.SuiteBackupsFolder + m_name->LogName());
}

}  // namespace corvalt
