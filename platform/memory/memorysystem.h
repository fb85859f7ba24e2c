// The whole system in memory, for tests, fuzzers and benchmarks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/memory/journal.h"
#include "platform/memory/memoryfiles.h"
#include "platform/memory/memoryhives.h"
#include "platform/memory/memoryrawregistry.h"
#include "platform/memory/memoryregistry.h"
#include "system/system.h"

namespace corvalt {

class TMemoryMachine : public TMachine {
 public:
  TSystemVersion GetVersion() override {
    return Version;
  }
  Text GetSystemDirectory(std::size_t bufferLength) override;
  Text ProgramFile() override {
    return Program;
  }
  Text ComputerName() override {
    return Computer;
  }
  Text UserSid() override {
    return User;
  }

  TSystemVersion Version = {5, 1, false};
  Text SystemDirectory = u"C:\\Windows\\system32";
  Text Program = u"C:\\Program Files\\Tessaly\\corvalt.exe";
  Text Computer = u"ANNS-PC";
  Text User = u"S-1-5-21-1000-2000-3000-1001";
};

// An English locale on code page 1252, or 1251 for a test that needs another one; it has no third.
class TMemoryLocale : public TLocale {
 public:
  Text DecimalSeparator() override {
    return Decimal;
  }
  Text ThousandsSeparator() override {
    return Thousands;
  }
  Text FormatShortDate(TDateTime time) override;
  Text FormatLongTime(TDateTime time) override;
  Text DecodeAnsi(std::string_view bytes) override;
  std::string EncodeAnsi(TextView text) override;
  std::optional<std::string> EncodeAnsiExact(TextView text) override;
  std::uint32_t AnsiCodePage() override {
    return CodePage;
  }
  bool HasCodePage(std::uint32_t codePage) override;
  Text DecodeCodePage(std::uint32_t codePage, std::string_view bytes) override;
  Text SystemMessage(std::uint32_t code) override;

  Text Decimal = u".";
  Text Thousands = u",";
  std::uint32_t CodePage = 1252;
};

class TMemoryClock : public TClock {
 public:
  TDateTime Now() override {
    return Time;
  }
  // Moves the clock instead of waiting.
  void Sleep(std::chrono::milliseconds duration) override;

  TDateTime Time = 46341.5;
  std::chrono::milliseconds Slept{0};
};

// Returns what a test has prepared, and remembers every call as one line.
class TMemoryShell : public Shell {
 public:
  TAnswer ShowMessage(TextView text, TextView title, TMessageKind kind) override;
  void Execute(TextView verb, TextView target) override;
  bool ExecuteAndWaitForIdle(TextView verb, TextView program) override;
  bool ShowProperties(TextView path, std::uint32_t mask) override;
  void ShowHelpTopic(TextView helpFile, TextView topic) override;
  TWindowHandle FindTopLevelWindow(TextView className) override;
  TWindowHandle FindChildWindow(TWindowHandle parent, TextView className, bool deep) override;
  void ShowWindow(TWindowHandle window) override;
  void BringToForeground(TWindowHandle window) override;
  void SetFocus(TWindowHandle window) override;
  void SendMessage(TWindowHandle window, std::uint32_t message, std::uintptr_t wParam,
                   std::intptr_t lParam) override;
  std::uint32_t FirstDisplayModeBitsPerPixel() override {
    return BitsPerPixel;
  }
  bool OpensWithFullAccess(std::uint32_t rootKey, TextView subKey) override;

  // What ShowMessage returns for the questions to come; No when none is left.
  std::deque<TAnswer> Answers;
  bool Starts = true;
  std::uint32_t BitsPerPixel = 32;
  std::map<Text, TWindowHandle> TopLevelWindows;     // by class
  std::map<Text, TWindowHandle> DirectChildren;      // by class
  std::map<Text, TWindowHandle> DeepChildren;        // by class
  std::map<Text, TWindowHandle> WindowsOnceStarted;  // appear when a program is started
  std::vector<std::string> FullAccessKeys;           // "2147483649:Software\Foo" for what opens
  std::vector<std::string> Calls;
};

// The locks of one machine, which the programs of several users may share.
struct TMemoryLocks {
  std::mutex Mutex;
  std::condition_variable Released;
  std::set<Text> Held;
  bool AllHeld = false;
};

// As Windows keeps them: a lock of one user has another name for another user. Stricter in one thing: the
// thread that holds a lock waits for it in vain.
class TMemoryInterprocess : public TInterprocess {
 public:
  TLockAnswer Lock(const TLockWish& wish, const std::function<bool()>& stop) override;
  bool ProcessRuns(std::uint32_t processId) override {
    return RunningProcesses.contains(processId);
  }

  // Another copy of the program holds every lock that there is, until the returned lock is destroyed.
  std::unique_ptr<THeldLock> HoldEveryLock();

  std::shared_ptr<TMemoryLocks> Locks = std::make_shared<TMemoryLocks>();
  Text User = u"S-1-5-21-1-2-3-1001";
  // A test need not wait for as long as a program does.
  std::chrono::milliseconds LongestPatience = std::chrono::milliseconds(10000);
  std::set<std::uint32_t> RunningProcesses;
  std::vector<Text> Names;  // of the locks that were wished for
};

class TMemorySystem {
 public:
  explicit TMemorySystem(TNameOrder order = TNameOrder::Windows) : Registry(order), Raw(Registry) {
  }

  // Valid as long as this object.
  TSystem Bundle() {
    return {Registry, Raw, Disk, Disk, Machine, Locale, Clock, Shell, Interprocess};
  }

  // The usual variables and folders of a Windows XP machine: C:\Windows, C:\Program Files, a user "Ann".
  void AddUsualFolders();

  // Writes every change of the registry and the disk into one journal.
  void KeepJournal(TJournal& journal);

  TMemoryRegistry Registry;
  TMemoryRawRegistry Raw;
  TMemoryDisk Disk;
  TMemoryMachine Machine;
  TMemoryLocale Locale;
  TMemoryClock Clock;
  TMemoryShell Shell;
  TMemoryInterprocess Interprocess;
};

}  // namespace corvalt
