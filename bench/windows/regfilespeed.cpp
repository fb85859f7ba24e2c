// Export and import of 100,000 values against the system's own registry editor (whole processes), and
// deletion against the system's bare routine, all in one run. Prints the medians and their ratios; run it
// pinned to the core of the registry's server.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "formats/ioregistry.h"
#include "platform/windows/windowssystem.h"

namespace corvalt {

namespace {

constexpr int kRounds = 5;  // unless the command line gives another number
constexpr TextView kTopPath = u"\\Software\\CorvaltRegFileSpeed";

void Expect(TRawResult result) {
  if (result != TRawResult::Done)
    throw std::runtime_error("The registry refused a change.");
}

// 58,000 keys with 100,000 values, as names and data go in a user's classes.
void BuildKeys(TRawRegistry& registry) {
  constexpr std::int64_t kKeys = 58000;
  constexpr std::int64_t kValues = 100000;
  constexpr std::int64_t kKeysAGroup = 240;
  std::int64_t written = 0;
  for (std::int64_t i = 0; i < kKeys; ++i) {
    const Text path =
        Text(kTopPath) + u"\\Group" + DecimalText(i / kKeysAGroup) + u"\\Entry" + DecimalText(i);
    Expect(registry.CreateKey(kHkeyCurrentUser, path));
    for (; written < (i + 1) * kValues / kKeys; ++written) {
      TRawValue value{u"Name" + DecimalText(written), kRegSz, {}};
      for (const char16_t unit :
           u"C:\\Program Files\\Vendor\\Program\\component" + DecimalText(written) + u".dll") {
        value.Data.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        value.Data.push_back(static_cast<std::uint8_t>(unit >> 8));
      }
      value.Data.insert(value.Data.end(), {0, 0});
      if (written % 5 == 4)
        value = {u"Number" + DecimalText(written), kRegDword, {1, 2, 3, 4}};
      if (written % 10 == 8)
        value = {u"Bytes" + DecimalText(written), kRegBinary, TBytes(60, 0xA5)};
      Expect(registry.WriteValue(kHkeyCurrentUser, path, value));
    }
  }
  registry.ReleaseKeys();
}

bool RunEditor(const Text& arguments) {
  Text command = u"regedit.exe " + arguments;
  STARTUPINFOW startup = {};
  startup.cb = sizeof(startup);
  PROCESS_INFORMATION process = {};
  if (!CreateProcessW(nullptr, WideBuffer(command), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process))
    return false;
  WaitForSingleObject(process.hProcess, INFINITE);
  DWORD code = 1;
  GetExitCodeProcess(process.hProcess, &code);
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
  return code == 0;
}

bool DeleteBare() {
  using TDeleteTree = LSTATUS(WINAPI*)(HKEY, LPCWSTR);
  const auto deleteTree = FindRoutine<TDeleteTree>(GetModuleHandleW(L"advapi32.dll"), "RegDeleteTreeW");
  return deleteTree(HKEY_CURRENT_USER, Wide(Text(WithoutLeadingBackslash(kTopPath)))) == ERROR_SUCCESS;
}

class TMedian {
 public:
  // False when the work failed.
  bool Measure(const std::function<bool()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    const bool done = work();
    m_seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    return done;
  }
  double Seconds() {
    std::sort(m_seconds.begin(), m_seconds.end());
    return m_seconds[m_seconds.size() / 2];
  }

 private:
  std::vector<double> m_seconds;
};

void Print(const char* what, TMedian& ours, TMedian& theirs) {
  std::printf("%-8s %6.3f s against %6.3f s, ratio %.2f\n", what, ours.Seconds(), theirs.Seconds(),
              ours.Seconds() / theirs.Seconds());
}

class TComparison {
 public:
  bool Run(int rounds) {
    BuildKeys(m_system.Raw);
    for (int round = 0; round < rounds; ++round) {
      if (!Export() || !Delete() || !Import())
        return false;
    }
    Print("export", m_exports, m_editorExports);
    Print("import", m_imports, m_editorImports);
    Print("delete", m_deletions, m_bareDeletions);
    return DeleteBare();
  }

 private:
  bool Export() {
    const bool ours = m_exports.Measure([this] {
      TIORegistry exporter(m_system.Raw, m_system.Locale);
      return exporter.ExportKey(*TKeyPath::Parse(kHkeyCurrentUser, kTopPath)) == TExportResult::Done &&
             !m_system.Files.ReplaceFile(m_ourFile, exporter.ExportedText()).Failed();
    });
    return ours && m_editorExports.Measure([this] {
      return RunEditor(u"/E \"" + m_editorFile + u"\" \"HKEY_CURRENT_USER" + Text(kTopPath) + u"\"");
    });
  }

  // Both delete the same keys; they come back between.
  bool Delete() {
    const bool ours = m_deletions.Measure(
        [this] { return m_system.Raw.DeleteKey(kHkeyCurrentUser, kTopPath) == TRawResult::Done; });
    m_system.Raw.ReleaseKeys();
    return ours && ImportOurs() && m_bareDeletions.Measure(DeleteBare);
  }

  bool Import() {
    const bool ours = m_imports.Measure([this] { return ImportOurs(); });
    return ours && DeleteBare() &&
           m_editorImports.Measure([this] { return RunEditor(u"/S \"" + m_ourFile + u"\""); });
  }

  bool ImportOurs() {
    TBytes bytes;
    return !m_system.Files.ReadFile(m_ourFile, bytes).Failed() &&
           TIORegistry(m_system.Raw, m_system.Locale).Import(bytes).EverythingWritten();
  }

  static Text TemporaryFile(TextView name) {
    wchar_t folder[MAX_PATH + 1] = {};
    const DWORD length = GetTempPathW(MAX_PATH + 1, folder);
    return Text(FromWide(folder, length)) + Text(name);
  }

  TWindowsSystem m_system;
  const Text m_ourFile = TemporaryFile(u"corvalt-ours.reg");
  const Text m_editorFile = TemporaryFile(u"corvalt-editor.reg");
  TMedian m_exports;
  TMedian m_editorExports;
  TMedian m_imports;
  TMedian m_editorImports;
  TMedian m_deletions;
  TMedian m_bareDeletions;
};

int RunBenchmark(int argc, char** argv) {
  try {
    TComparison comparison;
    if (comparison.Run(argc > 1 ? std::atoi(argv[1]) : kRounds))
      return 0;
    std::puts("A step failed.");
  } catch (const std::exception& failure) {
    std::puts(failure.what());
  }
  return 1;
}

}  // namespace

}  // namespace corvalt

int main(int argc, char** argv) {
  return corvalt::RunBenchmark(argc, argv);
}
