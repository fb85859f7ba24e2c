#include "core/functions.h"

#include <algorithm>
#include <array>

#include "base/lettercase.h"
#include "base/limits.h"

namespace corvalt {

namespace {

constexpr TextView kProgramExtension = u".exe";
constexpr TextView kNetworkPrefix = u"\\\\";

// Command lines hold fewer. Of a text with more blanks only the part that a path can reach to is looked for
// (PossiblePart), because each blank costs questions to the disk.
constexpr std::ptrdiff_t kManyBlanks = 32;

bool IsAbsolute(TextView text) {
  return text.size() > 2 && text.substr(1, 2) == u":\\";
}

// "C:", "\\server\share", or the empty text for a path that names no drive.
TextView DriveOf(TextView path) {
  if (path.size() >= 2 && path[1] == u':')
    return path.substr(0, 2);
  if (!path.starts_with(kNetworkPrefix))
    return {};
  const std::size_t serverEnd = path.find(u'\\', kNetworkPrefix.size());
  if (serverEnd == TextView::npos)
    return path;
  return path.substr(0, path.find(u'\\', serverEnd + 1));
}

// The text before its last blank, without trimming it; nullopt when no blank is left.
std::optional<TextView> CutAtLastBlank(TextView text) {
  const std::size_t blank = text.rfind(u' ');
  if (blank == TextView::npos)
    return std::nullopt;
  return text.substr(0, blank);
}

Text Joined(TextView left, TextView right) {
  return Text(left).append(right);
}

// Digits in groups of three, from the right.
Text Grouped(const Text& digits, const Text& separator) {
  Text result;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0)
      result += separator;
    result += digits[i];
  }
  return result;
}

// A quotient with two decimals, rounded half up, as the suite's other programs print it.
Text TwoDecimals(std::int64_t size, std::int64_t unit, TLocale& locale) {
  std::int64_t whole = size / unit;
  std::int64_t hundredths = ((size % unit) * 100 + unit / 2) / unit;
  if (hundredths == 100) {
    ++whole;
    hundredths = 0;
  }
  const Text padding(hundredths < 10 ? 1 : 0, u'0');
  return Grouped(DecimalText(whole), locale.ThousandsSeparator()) + locale.DecimalSeparator() + padding +
         DecimalText(hundredths);
}

}  // namespace

Text ExpandPathVariables(TextView text, const TGlobalVars& vars) {
  struct TReference {
    TextView Name;
    const Text& Folder;
  };
  const std::array<TReference, 6> references = {{
      {u"%SYSTEMROOT%\\", vars.WindowsFolder},
      {u"%PROGRAMFILES%\\", vars.ProgramFilesFolder},
      {u"%SYSTEMDIRECTORY%\\", vars.SystemFolder},
      {u"%WINDIR%\\", vars.WindowsFolder},
      {u"%TEMP%\\", vars.TempFolder},
      {u"%TMP%\\", vars.TempFolder},
  }};
  Text result = UpperCase(text);
  if (!Contains(result, u"%"))
    return result;
  for (const TReference& reference : references)
    result = ReplaceAll(UpperCase(result), reference.Name, reference.Folder);
  return result;
}

bool TPathChecks::IsOnFixedDrive(TextView path) const {
  return Contains(m_vars.FixedDrives, UpperCase(DriveOf(path)));
}

bool TPathChecks::Exists(TextView path, bool filesOnly) {
  return m_probe.FileExists(path) || (!filesOnly && m_probe.DirectoryExists(path));
}

bool TPathChecks::FileOrFolderExists(TextView path, bool filesOnly) {
  return !IsOnFixedDrive(path) || Exists(path, filesOnly) || ExistsForOtherBitness(path, filesOnly);
}

bool TPathChecks::ExistsForOtherBitness(TextView path, bool filesOnly) {
  const Text& system = m_vars.SystemFolder;
  const bool isBelowSystem = !system.empty() && EqualIgnoringCase(path.substr(0, system.size()), system);
  if (isBelowSystem && !m_vars.SysWow64Folder.empty() &&
      Exists(Joined(m_vars.SysWow64Folder, path.substr(system.size())), filesOnly))
    return true;
  if (m_probe.GetEnvironmentVariable(u"ProgramFiles(x86)").empty())
    return false;
  const TRedirectionOff redirectionOff(m_probe);
  // Where there was no redirection to switch off, the result would be the same.
  return redirectionOff.Switched() && Exists(path, filesOnly);
}

Text TPathChecks::LongForm(TextView path) {
  if (!Contains(path, u"~"))
    return Text(path);
  return m_probe.GetLongPathName(path).value_or(Text(path));
}

// A path of another drive exists, and the drive isn't asked for its long form: it may be a medium that has to
// be put in first.
std::optional<Text> TPathChecks::FoundAs(TextView path, bool filesOnly) {
  if (!IsOnFixedDrive(path))
    return Text(path);
  Text longForm = LongForm(path);
  if (!FileOrFolderExists(longForm, filesOnly))
    return std::nullopt;
  return longForm;
}

std::optional<Text> TPathChecks::FoundWithOrWithoutExtension(TextView path, bool filesOnly) {
  std::optional<Text> found = FoundAs(path, filesOnly);
  return found ? found : FoundAs(Joined(path, kProgramExtension), filesOnly);
}

std::optional<Text> TPathChecks::LongestExistingFile(TextView command) {
  std::optional<Text> found = FoundWithOrWithoutExtension(command, false);
  if (found)
    return found;
  // On a drive that is not fixed the whole text was found already.
  const bool hasManyBlanks = std::count(command.begin(), command.end(), u' ') > kManyBlanks;
  const TextView possible = hasManyBlanks ? PossiblePart(command) : command;
  for (auto rest = CutAtLastBlank(possible); rest && !found; rest = CutAtLastBlank(*rest)) {
    if (hasManyBlanks && IsStopped())
      return Text(*rest);
    found = FoundWithOrWithoutExtension(*rest, true);
  }
  return found;
}

// What a command line's file and the blank behind it can reach to: no further than a path and its last name
// are long, nor than the first folder that is missing. Otherwise a text of thousands of blanks would be
// looked for on the disk once for each of them.
TextView TPathChecks::PossiblePart(TextView command) {
  TextView possible = command.substr(0, kLongestPath + 1);
  // A folder before ".." need not exist.
  std::size_t end = Contains(possible, u"..") ? TextView::npos : possible.find(u'\\');
  while (end != TextView::npos && !IsStopped()) {
    end = possible.find(u'\\', end + 1);
    if (end != TextView::npos && !FileOrFolderExists(possible.substr(0, end), false))
      possible = possible.substr(0, end);
  }
  return possible.substr(0, LastPos(u"\\", possible) + kLongestFileName + 1);
}

std::optional<Text> TPathChecks::SplitCommandFile(TextView text) {
  const Text command = Trim(text);
  if (IsAbsolute(command))
    return LongestExistingFile(command);
  for (const Text& folder : m_vars.SearchFolders) {
    if (std::optional<Text> found = LongestExistingFile(Joined(WithTrailingBackslash(folder), command)))
      return found;
  }
  return std::nullopt;
}

bool TPathChecks::QuotedFileExists(TextView quoted) {
  if (IsAbsolute(quoted))
    return FoundWithOrWithoutExtension(quoted, false).has_value();
  for (const Text& folder : m_vars.SearchFolders) {
    const Text path = Joined(WithTrailingBackslash(folder), quoted);
    if (FileOrFolderExists(path, false) || FileOrFolderExists(Joined(path, kProgramExtension), false))
      return true;
  }
  return false;
}

bool TPathChecks::CommandLineFileExists(TextView text, bool commaSeparates) {
  Text command = Trim(text);
  if (command.starts_with(u'"'))
    return QuotedFileExists(CutAt(u"\"", TextView(command).substr(1)));
  command = Trim(CutAt(u"\"", command));
  command = Trim(CutAt(u"/", command));
  if (commaSeparates)
    command = Trim(CutAt(u",", command));
  return SplitCommandFile(command).has_value();
}

Text FormatSize(std::int64_t size, TLocale& locale) {
  constexpr std::int64_t kKilobyte = 1024;
  constexpr std::int64_t kMegabyte = kKilobyte * 1024;
  constexpr std::int64_t kGigabyte = kMegabyte * 1024;
  if (size < kKilobyte)
    return DecimalText(size) + u" Byte";
  if (size < kMegabyte)
    return TwoDecimals(size, kKilobyte, locale) + u" KB";
  if (size < kGigabyte)
    return TwoDecimals(size, kMegabyte, locale) + u" MB";
  return TwoDecimals(size, kGigabyte, locale) + u" GB";
}

bool ShowFileProperties(TextView path, TPrograms& programs) {
  return programs.ShowProperties(path, kShowPropertiesMask);
}

}  // namespace corvalt
