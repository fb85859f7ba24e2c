// The whole system in memory, for tests, fuzzers and benchmarks.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/text.h"
#include "platform/memory/journal.h"
#include "platform/memory/memoryeditorwindows.h"
#include "platform/memory/memoryfiles.h"
#include "platform/memory/memoryhives.h"
#include "platform/memory/memorymessageboxes.h"
#include "platform/memory/memoryprograms.h"
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
  std::uint16_t DisplayLanguage() override {
    return Language;
  }
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
  std::uint16_t Language = 0x0409;  // English as in the United States
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
  // Called on the thread that has to wait for a lock, several times a second.
  std::function<void()> OnWait;
};

class TMemorySystem {
 public:
  explicit TMemorySystem(TNameOrder order = TNameOrder::Windows) : Registry(order), Raw(Registry) {
  }

  // Valid as long as this object.
  TSystem Bundle() {
    return {.Registry = Registry,
            .Raw = Raw,
            .Probe = Disk,
            .Files = Disk,
            .Machine = Machine,
            .Locale = Locale,
            .Clock = Clock,
            .MessageBoxes = MessageBoxes,
            .Programs = Programs,
            .EditorWindows = EditorWindows,
            .Interprocess = Interprocess};
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
  // What was shown to the user and done to other programs, in this order.
  std::vector<std::string> Calls;
  TMemoryMessageBoxes MessageBoxes{Calls};
  TMemoryPrograms Programs{Calls};
  TMemoryEditorWindows EditorWindows{Calls};
  TMemoryInterprocess Interprocess;
};

}  // namespace corvalt
