#include "tests/support/healthymachine.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "system/registryvalues.h"
#include "tests/support/sourcefolder.h"

namespace corvalt {

namespace {

constexpr TextView kUser = u"HKEY_CURRENT_USER";
constexpr TextView kUserInUsers = u"HKEY_USERS\\S-1-5-21-0-0-0-1000";
constexpr TextView kUserClasses = u"HKEY_CURRENT_USER\\Software\\Classes";
constexpr TextView kClasses = u"HKEY_CLASSES_ROOT";

std::vector<Text> LinesOf(const std::string& path) {
  std::ifstream file(SourceFolder() + "/" + path, std::ios::binary);
  if (!file)
    throw std::runtime_error("no file " + path);
  const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::optional<Text> text = DecodeUtf8(bytes);
  if (!text)
    throw std::runtime_error(path + " is not UTF-8");
  return SplitLines(*text);
}

// Takes a quoted text with its escapes off the line's beginning.
Text TakeQuoted(TextView& line) {
  Text text;
  std::size_t at = 1;
  for (; at < line.size() && line[at] != u'"'; ++at) {
    if (line[at] == u'\\')
      ++at;
    text += line[at];
  }
  line.remove_prefix(at + 1);
  return text;
}

// What stands before the quotes of a text that is no plain string.
constexpr std::pair<TextView, std::uint32_t> kTextMarks[] = {{u"expand:", kRegExpandSz},
                                                             {u"multi:", kRegMultiSz}};

class THealthyReader {
 public:
  explicit THealthyReader(TMemoryRegistry& registry) : m_registry(registry) {
  }

  void Read(const std::vector<Text>& lines) {
    for (const Text& line : lines) {
      if (line.starts_with(u'['))
        BeginKey(line.substr(1, line.size() - 2));
      else if (line.starts_with(u'"') || line.starts_with(u'@'))
        ReadValue(line);
    }
  }

 private:
  // The key, and the places where Windows shows it as well.
  void BeginKey(const Text& path) {
    m_places = {path};
    if (path.starts_with(kUser))
      m_places.push_back(Text(kUserInUsers) + path.substr(kUser.size()));
    if (path.starts_with(kUserClasses))
      m_places.push_back(Text(kClasses) + path.substr(kUserClasses.size()));
    for (const Text& place : m_places)
      m_registry.AddKey(place);
  }

  void ReadValue(TextView line) {
    Text name;
    if (line.front() == u'"')
      name = TakeQuoted(line);
    else
      line.remove_prefix(1);
    line.remove_prefix(1);  // "="
    if (line.starts_with(u"dword:"))
      SetNumber(name, line.substr(TextView(u"dword:").size()));
    else
      SetText(name, line);
  }

  void SetNumber(const Text& name, TextView hexadecimal) {
    const std::uint32_t number = static_cast<std::uint32_t>(std::stoul(EncodeUtf8(hexadecimal), nullptr, 16));
    for (const Text& place : m_places)
      m_registry.SetInteger(place, name, number);
  }

  void SetText(const Text& name, TextView line) {
    std::uint32_t type = kRegSz;
    for (const auto& [mark, marked] : kTextMarks) {
      if (line.starts_with(mark)) {
        type = marked;
        line.remove_prefix(mark.size());
      }
    }
    if (!line.starts_with(u'"'))
      throw std::runtime_error("a value of an unknown form: " + EncodeUtf8(line));
    Text data = TakeQuoted(line);
    if (type == kRegMultiSz)
      data += u'\0';  // the end of the list, after that of its only string
    for (const Text& place : m_places)
      m_registry.SetRaw(place, {name, type, StringBytes(data)});
  }

  TMemoryRegistry& m_registry;
  std::vector<Text> m_places;
};

const std::map<std::string, std::string> kShortRoots = {{"HKEY_CLASSES_ROOT", "HKCR"},
                                                        {"HKEY_CURRENT_USER", "HKCU"},
                                                        {"HKEY_LOCAL_MACHINE", "HKLM"},
                                                        {"HKEY_USERS", "HKU"}};

// The number at the beginning of a numbered text; the whole of another one.
std::string NumberOf(const std::string& description) {
  const std::size_t end = description.find('(');
  return description.substr(0, end);
}

// A scanner that names the hive itself spells it in another way than one that lists its keys, and Wine in
// another way than Windows: one spelling for all.
std::string WithOneSpelling(std::string line) {
  const std::string hive = "HKLM\\SOFTWARE\\";
  const std::size_t at = line.find(hive);
  return at == std::string::npos ? line : line.replace(at, hive.size(), "HKLM\\Software\\");
}

std::string FoundLine(const ScanProblem& problem) {
  const std::string kind = problem.Kind == TProblemKind::Key ? "key " : "value ";
  const std::string place =
      kShortRoots.at(EncodeUtf8(RootKeyName(problem.RootKey))) + EncodeUtf8(problem.KeyPath);
  std::string line = kind + std::to_string(problem.ImageIndex) + " " + place;
  for (const std::string& column : {EncodeUtf8(problem.ValueName), EncodeUtf8(problem.ValueData),
                                    NumberOf(EncodeUtf8(problem.Description))}) {
    line += column.empty() ? " |" : " | " + column;
  }
  return WithOneSpelling(line);
}

std::string Listed(const std::vector<std::pair<std::string, std::string>>& lines, const char* what) {
  std::string text;
  std::string caption;
  for (const auto& [section, line] : lines) {
    if (section != caption)
      text += "[" + section + "]\n";
    caption = section;
    text += what + line + "\n";
  }
  return text;
}

}  // namespace

void BecomeHealthyMachine(TScanRig& rig) {
  TMemoryDisk& disk = rig.System.Disk;
  rig.System.Machine.Version = {10, 0, false};
  disk.SetEnvironmentVariable(u"ProgramFiles(x86)", u"C:\\Program Files (x86)");
  disk.SetEnvironmentVariable(u"ALLUSERSPROFILE", u"C:\\ProgramData");
  disk.SetEnvironmentVariable(u"Path", u"C:\\Windows\\system32;C:\\Windows");
  for (const Text& line : LinesOf("tests/healthy/healthyfiles.txt")) {
    if (line.empty() || line.starts_with(u';'))
      continue;
    line.ends_with(u'\\') ? disk.AddFolder(line) : disk.AddFile(line);
  }
  TSystem system = rig.System.Bundle();
  const TLanguageTexts texts = rig.Vars.Texts;
  FillGlobalVars(system, rig.Vars);
  // As a 64-bit program sees the machine, though the tests may be a 32-bit one.
  rig.Vars.SysWow64Folder = u"C:\\Windows\\SysWOW64\\";
  rig.Vars.Texts = texts;
  rig.System.Registry.RemoveKey(u"HKEY_CURRENT_USER\\Software");
  THealthyReader(rig.System.Registry).Read(LinesOf("tests/healthy/healthy.reg"));
}

int HealthyEntries() {
  int values = 0;
  int emptyKeys = 0;
  bool afterKey = false;
  for (const Text& line : LinesOf("tests/healthy/healthy.reg")) {
    const bool isValue = line.starts_with(u'"') || line.starts_with(u'@');
    values += isValue ? 1 : 0;
    if (afterKey && !isValue)
      ++emptyKeys;
    afterKey = line.starts_with(u'[');
  }
  return values + emptyKeys;
}

std::vector<Text> ShippedExclusions() {
  std::vector<Text> exclusions;
  for (const Text& line : LinesOf("data/exclusions.txt")) {
    if (std::optional<Text> entry = ParseExclusion(line))
      exclusions.push_back(*std::move(entry));
  }
  return exclusions;
}

TFoundLines FoundLines(TScanRig& rig) {
  TFoundLines lines;
  for (const ScanProblem& header : rig.Headers()) {
    for (const ScanProblem& problem : rig.ProblemsOf(header.SectionCaption))
      lines.emplace(EncodeUtf8(header.SectionCaption), FoundLine(problem));
  }
  return lines;
}

TFoundLines ExpectedLines(const std::string& fileName) {
  TFoundLines lines;
  std::string section;
  for (const Text& wide : LinesOf("tests/healthy/" + fileName)) {
    const std::string line = EncodeUtf8(wide);
    if (line.starts_with('['))
      section = line.substr(1, line.find(" | ") - 1);
    else if (!line.empty() && !line.starts_with('#'))
      lines.emplace(section, WithOneSpelling(line.substr(0, line.find('(', line.rfind(" | ")))));
  }
  return lines;
}

std::string Differences(const TFoundLines& expected, const TFoundLines& found) {
  const auto sorted = [](const TFoundLines& lines) {
    std::vector<std::pair<std::string, std::string>> pairs(lines.begin(), lines.end());
    std::sort(pairs.begin(), pairs.end());
    return pairs;
  };
  const auto without = [&](const TFoundLines& some, const TFoundLines& others) {
    std::vector<std::pair<std::string, std::string>> rest;
    const auto from = sorted(some);
    const auto less = sorted(others);
    std::set_difference(from.begin(), from.end(), less.begin(), less.end(), std::back_inserter(rest));
    return rest;
  };
  return Listed(without(expected, found), "missing       ") +
         Listed(without(found, expected), "not expected  ");
}

}  // namespace corvalt
