// What a scan of the real registry and of real folders costs, as ratios against floors measured in the same
// run.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <functional>
#include <random>

#include "base/limits.h"
#include "core/cachedfileprobe.h"
#include "platform/memory/memorysystem.h"
#include "platform/windows/windowssystem.h"
#include "scan/threadscan.h"
#include "system/queueuithread.h"
#include "tests/support/silentdialog.h"
#include "ui/resultstree.h"
#include "ui/sectionstree.h"

namespace corvalt {

namespace {

constexpr std::size_t kKeys = 58000;
constexpr std::size_t kValues = 100000;
constexpr std::size_t kDeepest = 8;
constexpr std::size_t kFolders = 1000;
constexpr std::size_t kFilesPerFolder = 20;
constexpr std::size_t kChecks = 100000;
constexpr std::uint32_t kSeed = 20070904;
constexpr int kRounds = 7;
constexpr std::int32_t kCurrentUserSection = 22;

constexpr TextView kScratchKey = u"Software\\Corvalt Bench";
constexpr TextView kProgramsFolder = u"C:\\Program Files\\";

// The same numbers everywhere: the standard's distributions differ between libraries.
class TDice {
 public:
  std::size_t Below(std::size_t limit) {
    return m_engine() % limit;
  }

 private:
  std::mt19937 m_engine{kSeed};
};

double Seconds(const std::function<void()>& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

void PrintRow(const char* name, double value, double limit, const char* unit) {
  std::printf("| %-58s | %9.3f %-5s | %6.2f | %s |\n", name, value, unit, limit,
              value <= limit ? "met   " : "MISSED");
}

// A registry of kKeys keys and kValues values, and the files that its values name.

Text NumberedName(TextView stem, std::size_t number) {
  return Text(stem) + u" " + DecimalText(static_cast<std::int64_t>(number));
}

Text ProgramFile(std::size_t number) {
  return Text(kProgramsFolder) + NumberedName(u"Vendor", number % 50) + u"\\" +
         NumberedName(u"Module", number) + u".dll";
}

constexpr std::size_t kProgramFiles = 2000;

// How many of a hundred strings name a file that is gone, and how many more one that exists.
constexpr std::size_t kUsualGone = 1;
constexpr std::size_t kManyGone = 38;  // 30 of a hundred values, of which 80 are strings
constexpr std::size_t kExisting = 33;

Text StringData(TDice& dice, std::size_t gone) {
  const std::size_t kind = dice.Below(100);
  if (kind < gone)
    return Text(kProgramsFolder) + u"Gone\\" + NumberedName(u"Module", dice.Below(kProgramFiles)) + u".dll";
  if (kind < gone + kExisting)
    return ProgramFile(dice.Below(kProgramFiles));
  return NumberedName(u"A setting of the usual length", dice.Below(10000));
}

void WriteValue(HKEY key, std::size_t number, std::size_t gone, TDice& dice) {
  const Text name = NumberedName(u"Value", number);
  if (dice.Below(100) < 20) {
    const auto data = static_cast<DWORD>(dice.Below(1000));
    RegSetValueExW(key, Wide(name), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&data), sizeof(data));
    return;
  }
  const Text data = StringData(dice, gone);
  const DWORD type = dice.Below(10) == 0 ? REG_EXPAND_SZ : REG_SZ;
  RegSetValueExW(key, Wide(name), 0, type, reinterpret_cast<const BYTE*>(data.c_str()),
                 static_cast<DWORD>((data.size() + 1) * sizeof(char16_t)));
}

struct TPlan {
  std::size_t Gone = kUsualGone;
  std::vector<std::vector<std::size_t>> SubKeys;  // of each key, by number; key 0 is the top
  std::vector<std::size_t> Values;                // of each key
};

TPlan MakePlan(std::size_t gone, TDice& dice) {
  TPlan plan;
  plan.Gone = gone;
  plan.SubKeys.resize(kKeys);
  plan.Values.resize(kKeys);
  std::vector<std::size_t> depth(kKeys);
  for (std::size_t key = 1; key < kKeys; ++key) {
    std::size_t parent = dice.Below(key);
    while (depth[parent] >= kDeepest)
      parent = dice.Below(key);
    depth[key] = depth[parent] + 1;
    plan.SubKeys[parent].push_back(key);
  }
  for (std::size_t value = 0; value < kValues; ++value)
    ++plan.Values[dice.Below(kKeys)];
  return plan;
}

void WriteKey(HKEY parent, const Text& name, std::size_t number, const TPlan& plan, TDice& dice) {
  HKEY key = nullptr;
  if (RegCreateKeyExW(parent, Wide(name), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr) !=
      ERROR_SUCCESS)
    return;
  for (std::size_t i = 0; i < plan.Values[number]; ++i)
    WriteValue(key, i, plan.Gone, dice);
  for (const std::size_t subKey : plan.SubKeys[number])
    WriteKey(key, NumberedName(u"Key", subKey), subKey, plan, dice);
  RegCloseKey(key);
}

void WriteHive(std::size_t gone) {
  TDice dice;
  const TPlan plan = MakePlan(gone, dice);
  WriteKey(HKEY_CURRENT_USER, Text(kScratchKey), 0, plan, dice);
}

void DeleteHive(TWindowsSystem& windows) {
  const std::unique_ptr<RegistryStore> store = windows.Registry.CreateStore(TRegistryAccess::Full);
  store->DeleteKey(u"\\" + Text(kScratchKey));
}

// The floor: a walk that opens each key relative to its parent, asks for the counts first, enumerates the
// values with their data into one buffer, and examines none of them.
class TBareWalk {
 public:
  void Walk(HKEY key) {
    ++Keys;
    DWORD subKeys = 0;
    DWORD values = 0;
    DWORD longestName = 0;
    DWORD largestData = 0;
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &subKeys, nullptr, nullptr, &values, &longestName,
                     &largestData, nullptr, nullptr);
    ReadValues(key, values, longestName, largestData);
    for (const Text& name : SubKeyNames(key, subKeys)) {
      HKEY subKey = nullptr;
      if (RegOpenKeyExW(key, Wide(name), 0, KEY_READ, &subKey) != ERROR_SUCCESS)
        continue;
      Walk(subKey);
      RegCloseKey(subKey);
    }
  }

  std::size_t Keys = 0;
  std::size_t Values = 0;

 private:
  void ReadValues(HKEY key, DWORD count, DWORD longestName, DWORD largestData) {
    m_name.resize(std::max<std::size_t>(m_name.size(), longestName + 1));
    m_data.resize(std::max<std::size_t>(m_data.size(), largestData));
    for (DWORD i = 0; i < count; ++i) {
      auto nameLength = static_cast<DWORD>(m_name.size());
      auto size = static_cast<DWORD>(m_data.size());
      DWORD type = 0;
      RegEnumValueW(key, i, WideBuffer(m_name), &nameLength, nullptr, &type, m_data.data(), &size);
      ++Values;
    }
  }

  static std::vector<Text> SubKeyNames(HKEY key, DWORD count) {
    std::vector<Text> names;
    names.reserve(count);
    wchar_t name[kLongestKeyName + 1] = {};
    for (DWORD i = 0; i < count; ++i) {
      DWORD length = kLongestKeyName + 1;
      if (RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS)
        names.emplace_back(FromWide(name, length));
    }
    return names;
  }

  Text m_name;
  std::vector<BYTE> m_data;
};

// The real registry, with the calls of all its stores counted.
class TCountedRegistry : public TRegistryFactory {
 public:
  std::unique_ptr<RegistryStore> CreateStore(TRegistryAccess access) override {
    return std::make_unique<TCountedStore>(access, Calls);
  }

  std::uint64_t Calls = 0;

 private:
  class TCountedStore : public TWindowsRegistryStore {
   public:
    TCountedStore(TRegistryAccess access, std::uint64_t& calls)
        : TWindowsRegistryStore(access), m_calls(calls) {
    }
    ~TCountedStore() override {
      m_calls += SystemCalls();
    }

   private:
    std::uint64_t& m_calls;
  };
};

// A queue that counts how often another thread waited for it.
class TCountedUiThread : public TQueueUiThread {
 public:
  bool Send(const std::function<void()>& routine) override {
    ++Sends;
    return TQueueUiThread::Send(routine);
  }

  std::uint64_t Sends = 0;
};

// The Files and Folders section for the current user, with the real registry and the existence of every file
// known in memory.
class TWalk {
 public:
  TWalk() {
    m_memory.AddUsualFolders();
    for (std::size_t i = 0; i < kProgramFiles; ++i)
      m_memory.Disk.AddFile(ProgramFile(i));
    FillGlobalVars(m_system, m_vars);
    m_sections.CheckOnly({kCurrentUserSection});
  }

  void Run() {
    m_registry.Calls = 0;
    m_uiThread.Sends = 0;
    m_results.Clear();
    bool finished = false;
    const auto onFinished = [&finished](TWorkerThread&) { finished = true; };
    const TScanContext context = {.System = m_system,
                                  .Vars = m_vars,
                                  .Reg = m_reg,
                                  .Sections = m_sections,
                                  .Results = m_results,
                                  .UiThread = m_uiThread,
                                  .OnFinished = onFinished};
    TWorkerThread::Launch<TScan>(context, m_dialog);
    m_uiThread.RunUntil([&finished] { return finished; });
  }

  std::uint64_t Calls() const {
    return m_registry.Calls;
  }
  std::uint64_t Sends() const {
    return m_uiThread.Sends;
  }
  std::size_t Problems() {
    return m_results.Model().TotalCount() - 1;
  }

 private:
  TMemorySystem m_memory;
  TWindowsRawRegistry m_raw;
  TCountedRegistry m_registry;
  TSystem m_system = {
      m_registry,           m_raw,          m_memory.Disk,         m_memory.Disk,     m_memory.Machine,
      m_memory.Locale,      m_memory.Clock, m_memory.MessageBoxes, m_memory.Programs, m_memory.EditorWindows,
      m_memory.Interprocess};
  TGlobalVars m_vars;
  TGlobalReg m_reg;
  TSectionsTreeModel m_sections;
  TResultsTreeModel m_results;
  TCountedUiThread m_uiThread;
  TSilentDialog m_dialog;
};

struct TWalkTimes {
  double Floor = 1e9;
  double Scan = 1e9;
};

// Taken in turn, so that a time in which the machine is slower counts for both.
TWalkTimes TimeWalks(TWalk& walk) {
  TWalkTimes times;
  for (int i = 0; i < kRounds; ++i) {
    times.Floor = std::min(times.Floor, Seconds([] { TBareWalk().Walk(HKEY_CURRENT_USER); }));
    times.Scan = std::min(times.Scan, Seconds([&walk] { walk.Run(); }));
  }
  return times;
}

void MeasureWalk(TWindowsSystem& windows) {
  DeleteHive(windows);
  WriteHive(kUsualGone);
  TWalk walk;
  TBareWalk counts;
  counts.Walk(HKEY_CURRENT_USER);
  const TWalkTimes times = TimeWalks(walk);
  std::printf("%zu keys, %zu values, %zu problems; floor %.3f s, scan %.3f s, %llu registry calls\n\n",
              counts.Keys, counts.Values, walk.Problems(), times.Floor, times.Scan,
              static_cast<unsigned long long>(walk.Calls()));
  const double keyCalls = static_cast<double>(walk.Calls()) - static_cast<double>(counts.Values);
  PrintRow("Files and Folders walk / bare walk", times.Scan / times.Floor, 1.3, "");
  PrintRow("registry calls beyond one a value / keys", keyCalls / static_cast<double>(counts.Keys), 5,
           "calls");
}

void MeasureProblems(TWindowsSystem& windows) {
  DeleteHive(windows);
  WriteHive(kManyGone);
  TWalk walk;
  const TWalkTimes times = TimeWalks(walk);
  std::printf("\n%zu problems, %llu hand-overs; floor %.3f s, scan %.3f s\n\n", walk.Problems(),
              static_cast<unsigned long long>(walk.Sends()), times.Floor, times.Scan);
  PrintRow("the same walk with 30 problems in 100 values", times.Scan / times.Floor, 1.5, "");
  PrintRow("waits for the user interface / problems",
           static_cast<double>(walk.Sends()) / static_cast<double>(walk.Problems()), 0.1, "waits");
}

// Real folders, and questions about files in them of which every second one is not there.
class TFolders {
 public:
  explicit TFolders(TWindowsSystem& windows)
      : m_windows(windows),
        m_top(WithTrailingBackslash(windows.Probe.GetEnvironmentVariable(u"TEMP")) + u"Corvalt Bench\\") {
    for (std::size_t folder = 0; folder < kFolders; ++folder) {
      if (const TSystemError error = m_windows.Files.MakeFolders(FolderPath(folder)); error.Failed())
        throw TSystemException(error, FolderPath(folder));
      for (std::size_t file = 0; file < kFilesPerFolder; ++file)
        TOwnedFile(
            CreateFileW(Wide(FilePath(folder, file)), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    }
    TDice dice;
    for (std::size_t i = 0; i < kChecks; ++i)
      Paths.push_back(FilePath(dice.Below(kFolders), dice.Below(2 * kFilesPerFolder)));
  }
  ~TFolders() {
    for (std::size_t folder = 0; folder < kFolders; ++folder) {
      for (std::size_t file = 0; file < kFilesPerFolder; ++file)
        DeleteFileW(Wide(FilePath(folder, file)));
      RemoveDirectoryW(Wide(FolderPath(folder)));
    }
    RemoveDirectoryW(Wide(m_top));
  }
  TFolders(const TFolders&) = delete;
  TFolders& operator=(const TFolders&) = delete;

  std::size_t CountExisting(FileSystemProbe& probe) const {
    return static_cast<std::size_t>(std::count_if(
        Paths.begin(), Paths.end(), [&probe](const Text& path) { return probe.FileExists(path); }));
  }

  std::vector<Text> Paths;

 private:
  Text FolderPath(std::size_t folder) const {
    return m_top + NumberedName(u"Folder", folder) + u"\\";
  }
  Text FilePath(std::size_t folder, std::size_t file) const {
    return FolderPath(folder) + NumberedName(u"File", file) + u".dll";
  }

  TWindowsSystem& m_windows;
  Text m_top;
};

void MeasureChecks(TWindowsSystem& windows) {
  const TFolders folders(windows);
  double plain = 1e9;
  double cached = 1e9;
  std::size_t plainFound = 0;
  std::size_t cachedFound = 0;
  for (int i = 0; i < kRounds; ++i) {
    plain = std::min(plain, Seconds([&] { plainFound = folders.CountExisting(windows.Probe); }));
    cached = std::min(cached, Seconds([&] {
                        TCachedFileProbe probe(windows.Probe);
                        cachedFound = folders.CountExisting(probe);
                      }));
  }
  PrintRow("existence checks from listings / plain checks", cached / plain, 0.3, "");
  std::printf(
      "\n%zu checks in %zu folders, %zu found plainly, %zu from listings; plain %.3f s, from listings %.3f "
      "s\n",
      kChecks, kFolders, plainFound, cachedFound, plain, cached);
}

int RunBenchmark() {
  try {
    TWindowsSystem windows;
    MeasureWalk(windows);
    MeasureProblems(windows);
    DeleteHive(windows);
    MeasureChecks(windows);
    return 0;
  } catch (const std::exception& failure) {
    std::puts(failure.what());
    return 1;
  }
}

}  // namespace

}  // namespace corvalt

int main() {
  return corvalt::RunBenchmark();
}
