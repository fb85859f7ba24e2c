// Registry files against the real registry and the system's own registry editor. What the registry holds is
// written and read by plain system calls here, not by the class under test.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "formats/ioregistry.h"
#include "platform/memory/memorysecurity.h"
#include "platform/windows/registrycalls.h"
#include "platform/windows/windowsapi.h"
#include "tests/contract/subject.h"
#include "tests/support/nastyregistry.h"

namespace corvalt {

namespace {

// By full key path; a key without values has no values.
using TDump = std::map<Text, std::set<std::pair<Text, std::string>>>;

class TPlainKey {
 public:
  // Keys are found from their parents, because a whole path may be too long for one call.
  TPlainKey(HKEY parent, const Text& name) {
    const LSTATUS status =
        RegCreateKeyExW(parent, Wide(name), 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, &m_key, nullptr);
    EXPECT_EQ(status, ERROR_SUCCESS) << EncodeUtf8(name);
  }
  ~TPlainKey() {
    RegCloseKey(m_key);
  }
  TPlainKey(const TPlainKey&) = delete;
  TPlainKey& operator=(const TPlainKey&) = delete;

  HKEY Get() const {
    return m_key;
  }

 private:
  HKEY m_key = nullptr;
};

std::unique_ptr<TPlainKey> CreatePlainKey(TextView path) {
  const std::vector<Text> names = ParseKeyPath(path)->Names;
  std::unique_ptr<TPlainKey> key;
  for (const Text& name : names)
    key = std::make_unique<TPlainKey>(key ? key->Get() : HKEY_CURRENT_USER, name);
  return key;
}

void WritePlainValue(HKEY key, const TRawValue& value) {
  // The system takes a NUL behind an unterminated text for its terminator, so none follows here.
  TBytes data = value.Data;
  data.insert(data.end(), {1, 1});
  const LSTATUS status = RegSetValueExW(key, Wide(value.Name), 0, value.Type, data.data(),
                                        static_cast<DWORD>(value.Data.size()));
  EXPECT_EQ(status, ERROR_SUCCESS) << EncodeUtf8(value.Name);
}

std::string DataSaid(DWORD type, const BYTE* data, DWORD size) {
  return std::to_string(type) + ":" + std::string(reinterpret_cast<const char*>(data), size);
}

void DumpPlainKey(HKEY key, const Text& path, TDump& dump) {
  constexpr std::size_t kLongestName = 16384;
  auto& values = dump[path];
  Text name(kLongestName, u'\0');
  DWORD largest = 0;
  RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &largest,
                   nullptr, nullptr);
  TBytes data(largest + 1);
  for (DWORD index = 0;; ++index) {
    DWORD units = kLongestName;
    auto size = static_cast<DWORD>(data.size());
    DWORD type = 0;
    if (RegEnumValueW(key, index, WideBuffer(name), &units, nullptr, &type, data.data(), &size) !=
        ERROR_SUCCESS)
      break;
    values.emplace(name.substr(0, units), DataSaid(type, data.data(), size));
  }
  for (DWORD index = 0;; ++index) {
    DWORD units = kLongestName;
    if (RegEnumKeyExW(key, index, WideBuffer(name), &units, nullptr, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS)
      break;
    const Text subName = name.substr(0, units);
    const TPlainKey subKey(key, subName);
    DumpPlainKey(subKey.Get(), path + u"\\" + subName, dump);
  }
}

TDump DumpBelow(const Text& path) {
  TDump dump;
  DumpPlainKey(CreatePlainKey(path)->Get(), path, dump);
  return dump;
}

// What a text in the system's code page can say, on one line, as the answer of the system itself.
bool CodePageSays(TextView text) {
  for (const char16_t unit : text) {
    if (unit < u' ' && unit != u'\t')
      return false;
  }
  if (text.empty())
    return true;
  std::string bytes(4 * text.size(), '\0');
  const int size = WideCharToMultiByte(CP_ACP, 0, WideUnits(text), static_cast<int>(text.size()),
                                       bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  Text again(4 * text.size(), u'\0');
  const int units =
      MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, WideBuffer(again), static_cast<int>(again.size()));
  again.resize(static_cast<std::size_t>(units));
  return again == text;
}

// Data that REGEDIT4 has a way to write: all but texts that the code page lacks or that don't end in their
// one NUL.
bool Regedit4SaysData(const std::string& said) {
  const std::size_t colon = said.find(':');
  const unsigned long type = std::stoul(said.substr(0, colon));
  const std::string data = said.substr(colon + 1);
  if ((type != REG_SZ && type != REG_EXPAND_SZ && type != REG_MULTI_SZ) || data.empty())
    return true;
  Text text;
  for (std::size_t i = 0; i + 1 < data.size(); i += 2)
    text.push_back(static_cast<char16_t>(static_cast<std::uint8_t>(data[i]) |
                                         (static_cast<std::uint8_t>(data[i + 1]) << 8)));
  if (data.size() % 2 != 0 || text.back() != u'\0')
    return false;
  text.pop_back();
  Text spoken;
  for (const char16_t unit : text) {
    if (unit == u'\0' && type != REG_MULTI_SZ)
      return false;
    // Other control characters stand in bytes, one each.
    spoken.push_back(unit < u' ' ? u' ' : unit);
  }
  return CodePageSays(spoken);
}

TDump WhatRegedit4Says(const TDump& dump) {
  TDump said;
  for (const auto& [path, values] : dump) {
    if (!CodePageSays(path))
      continue;
    auto& saidValues = said[path];
    for (const auto& value : values) {
      if (CodePageSays(value.first) && Regedit4SaysData(value.second))
        saidValues.insert(value);
    }
  }
  return said;
}

void RunSystemEditor(const Text& arguments) {
  Text command = u"regedit.exe " + arguments;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  ASSERT_TRUE(CreateProcessW(nullptr, WideBuffer(command), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                             &startup, &process));
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  EXPECT_EQ(code, 0U);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

class RegFileOnWindows : public testing::Test {
 protected:
  static constexpr std::size_t kValues = 10000;

  RegFileOnWindows() {
    for (const TNastyKey& key : MakeNastyTree(20240608, kValues, m_path)) {
      const std::unique_ptr<TPlainKey> plainKey = CreatePlainKey(key.Path);
      for (const TRawValue& value : key.Values)
        WritePlainValue(plainKey->Get(), value);
    }
    m_before = DumpBelow(m_path);
    EXPECT_EQ(m_exporter.ExportKey(*TKeyPath::Parse(kScratchRoot, m_path)), TExportResult::Done);
  }

  void DeleteEverything() {
    EXPECT_EQ(m_system.Raw.DeleteKey(kScratchRoot, m_path), TRawResult::Done);
    m_system.Raw.ReleaseKeys();
  }

  // And nothing else: what it skips leaves no wrong key and no wrong value behind.
  void EditorImportsAllThatTheCodePageSays() {
    const Text file = m_subject->ScratchFolder() + u"\\export.reg";
    ASSERT_FALSE(m_system.Files.ReplaceFile(file, m_exporter.ExportedText()).Failed());
    DeleteEverything();
    RunSystemEditor(u"/S \"" + file + u"\"");
    const TDump expected = WhatRegedit4Says(m_before);
    const TDump after = DumpBelow(m_path);
    EXPECT_GT(expected.size(), m_before.size() / 8);
    for (const auto& [path, values] : expected) {
      ASSERT_TRUE(after.contains(path)) << EncodeUtf8(path);
      for (const auto& [name, data] : values)
        EXPECT_TRUE(after.at(path).contains({name, data})) << EncodeUtf8(path) << " | " << EncodeUtf8(name);
    }
    EXPECT_TRUE(after == expected);
  }

  const std::unique_ptr<TSubject> m_subject = MakeSubject();
  TSystem m_system = m_subject->System();
  const Text m_path = m_subject->ScratchKey() + u"\\K";
  TIORegistry m_exporter{m_system.Raw, m_system.Locale};
  TDump m_before;
};

}  // namespace

TEST_F(RegFileOnWindows, AnythingComesBackByteForByte) {
  std::size_t values = 0;
  for (const auto& [path, keyValues] : m_before)
    values += keyValues.size();
  EXPECT_EQ(values, kValues);
  EXPECT_TRUE(m_exporter.HoldsWhatWasExported(m_exporter.ExportedText()));
  DeleteEverything();
  EXPECT_TRUE(m_exporter.Import(m_exporter.ExportedText()).EverythingWritten());
  EXPECT_TRUE(DumpBelow(m_path) == m_before);
}

TEST_F(RegFileOnWindows, TheSystemsEditorImportsAllThatTheCodePageSays) {
  EditorImportsAllThatTheCodePageSays();
}

// A backup keeps in comments what its keys have besides values.
TEST_F(RegFileOnWindows, TheSystemsEditorImportsTheSameValuesFromABackup) {
  bool isNew = false;
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, m_path + u"\\With class", {u"Class", false}, isNew),
            TRawResult::Done);
  EXPECT_EQ(m_system.Raw.CreateKey(kScratchRoot, m_path + u"\\Volatile", {u"", true}, isNew),
            TRawResult::Done);
  // Without owner and group, which not every user may set.
  TBytes security = SecurityBytes({.Access = {{u"S-1-1-0"}}, .IsProtected = true});
  std::fill(security.begin() + 4, security.begin() + 12, std::uint8_t{0});
  TAttributesLost lost;
  EXPECT_EQ(
      m_system.Raw.WriteAttributes(kScratchRoot, m_path + u"\\With class", {std::nullopt, security}, lost),
      TRawResult::Done);
  EXPECT_FALSE(lost.Security);
  // Wine takes a key's class away when somebody opens it as TPlainKey does.
  m_before[m_path + u"\\With class"] = {};
  m_before[m_path + u"\\Volatile"] = {};
  TBackupOrigin origin;
  origin.CodePage = m_system.Locale.AnsiCodePage();
  origin.Computer = u"ANN'S \u0416";
  m_exporter.Clear(origin);
  ASSERT_EQ(m_exporter.ExportKey(*TKeyPath::Parse(kScratchRoot, m_path)), TExportResult::Done);
  m_exporter.Finish();
  const std::string text(m_exporter.ExportedText().begin(), m_exporter.ExportedText().end());
  for (const char* line : {"codepage=", "class=", "security=", "time=", "end="})
    EXPECT_NE(text.find(std::string("\r\n;Corvalt ") + line), std::string::npos) << line;
  EditorImportsAllThatTheCodePageSays();
}

}  // namespace corvalt
