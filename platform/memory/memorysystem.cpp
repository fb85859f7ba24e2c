#include "platform/memory/memorysystem.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace corvalt {

namespace {

// The characters of a code page's bytes from 0x80 on; 0 where it has none, and Windows takes the control
// character of the same number. Behind the table 1252 has the characters of the bytes' own numbers, and 1251
// the Russian alphabet.
struct TCodePageTable {
  std::uint32_t Number;
  std::array<char16_t, 64> Characters;
};

constexpr TCodePageTable kWestern = {
    1252,
    {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152,
     0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122,
     0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178, 0xA0,   0xA1,   0xA2,   0xA3,   0xA4,   0xA5,   0xA6,
     0xA7,   0xA8,   0xA9,   0xAA,   0xAB,   0xAC,   0xAD,   0xAE,   0xAF,   0xB0,   0xB1,   0xB2,   0xB3,
     0xB4,   0xB5,   0xB6,   0xB7,   0xB8,   0xB9,   0xBA,   0xBB,   0xBC,   0xBD,   0xBE,   0xBF}};
constexpr TCodePageTable kCyrillic = {
    1251,
    {0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
     0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0,      0x2122,
     0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0xA0,   0x040E, 0x045E, 0x0408, 0xA4,   0x0490, 0xA6,
     0xA7,   0x0401, 0xA9,   0x0404, 0xAB,   0xAC,   0xAD,   0xAE,   0x0407, 0xB0,   0xB1,   0x0406, 0x0456,
     0x0491, 0xB5,   0xB6,   0xB7,   0x0451, 0x2116, 0x0454, 0xBB,   0x0458, 0x0405, 0x0455, 0x0457}};

constexpr unsigned char kFirstOwn = 0x80;

const TCodePageTable* TableOf(std::uint32_t codePage) {
  for (const TCodePageTable* table : {&kWestern, &kCyrillic}) {
    if (table->Number == codePage)
      return table;
  }
  return nullptr;
}

char16_t UnitOf(const TCodePageTable& table, unsigned char byte) {
  constexpr char16_t kFirstLetter = 0x0410;  // of the Russian alphabet, in one piece behind the table
  if (byte < kFirstOwn)
    return byte;
  const std::size_t index = byte - kFirstOwn;
  if (index >= table.Characters.size())
    return &table == &kCyrillic ? static_cast<char16_t>(byte - 0xC0 + kFirstLetter) : byte;
  return table.Characters[index] == 0 ? byte : table.Characters[index];
}

std::optional<char> ByteOf(const TCodePageTable& table, char16_t unit) {
  if (unit < kFirstOwn)
    return static_cast<char>(unit);
  for (int byte = 0; byte < 256; ++byte) {
    if (UnitOf(table, static_cast<unsigned char>(byte)) == unit)
      return static_cast<char>(static_cast<unsigned char>(byte));
  }
  return std::nullopt;
}

Text TwoDigits(std::int64_t number) {
  return (number < 10 ? u"0" : u"") + DecimalText(number);
}

struct TDate {
  std::int64_t Year;
  std::int64_t Month;
  std::int64_t Day;
};

constexpr std::int64_t kMillisecondsADay = 86400000;

// Whole days and the milliseconds of the last one. nullopt outside the calendar of Windows, 1601 to 30827.
struct TMoment {
  std::int64_t Days;
  std::int64_t Milliseconds;
};
std::optional<TMoment> MomentOf(TDateTime time) {
  constexpr double kFirst = -109205;
  constexpr double kBehindLast = 10565737;
  if (!(time >= kFirst && time < kBehindLast))
    return std::nullopt;
  const std::int64_t milliseconds = std::llround((time - kFirst) * kMillisecondsADay);
  return TMoment{milliseconds / kMillisecondsADay + static_cast<std::int64_t>(kFirst),
                 milliseconds % kMillisecondsADay};
}

// The Gregorian date of a day count from 30 December 1899.
TDate DateOf(std::int64_t dayCount) {
  constexpr std::int64_t kDaysFromMarchOfYearZero = 693899;  // from 1 March of year 0 to 30 December 1899
  const std::int64_t days = dayCount + kDaysFromMarchOfYearZero;
  const std::int64_t era = days / 146097;
  const std::int64_t dayOfEra = days % 146097;
  const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
  const std::int64_t month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
  return {yearOfEra + era * 400 + (month <= 2 ? 1 : 0), month, dayOfYear - (153 * marchMonth + 2) / 5 + 1};
}

constexpr std::chrono::milliseconds kLockSlice(5);

// The lock of a name, or all locks.
class TMemoryLock : public THeldLock {
 public:
  TMemoryLock(std::shared_ptr<TMemoryLocks> locks, std::optional<Text> name)
      : m_locks(std::move(locks)), m_name(std::move(name)) {
  }
  ~TMemoryLock() override {
    const std::lock_guard<std::mutex> hold(m_locks->Mutex);
    if (m_name)
      m_locks->Held.erase(*m_name);
    else
      m_locks->AllHeld = false;
    m_locks->Released.notify_all();
  }

 private:
  std::shared_ptr<TMemoryLocks> m_locks;
  std::optional<Text> m_name;
};

}  // namespace

Text TMemoryMachine::GetSystemDirectory(std::size_t bufferLength) {
  return SystemDirectory.size() < bufferLength ? SystemDirectory : Text();
}

Text TMemoryLocale::FormatShortDate(TDateTime time) {
  const std::optional<TMoment> moment = MomentOf(time);
  if (!moment)
    return {};
  const TDate date = DateOf(moment->Days);
  return DecimalText(date.Month) + u"/" + DecimalText(date.Day) + u"/" + DecimalText(date.Year);
}

Text TMemoryLocale::FormatLongTime(TDateTime time) {
  const std::optional<TMoment> moment = MomentOf(time);
  if (!moment)
    return {};
  const std::int64_t seconds = moment->Milliseconds / 1000;
  const std::int64_t hour = seconds / 3600;
  const std::int64_t shown = hour % 12 == 0 ? 12 : hour % 12;
  return DecimalText(shown) + u":" + TwoDigits(seconds / 60 % 60) + u":" + TwoDigits(seconds % 60) +
         (hour < 12 ? u" AM" : u" PM");
}

Text TMemoryLocale::DecodeAnsi(std::string_view bytes) {
  return DecodeCodePage(CodePage, bytes);
}

bool TMemoryLocale::HasCodePage(std::uint32_t codePage) {
  return TableOf(codePage) != nullptr;
}

Text TMemoryLocale::DecodeCodePage(std::uint32_t codePage, std::string_view bytes) {
  const TCodePageTable* table = TableOf(codePage);
  Text text;
  if (table == nullptr)
    return text;
  for (const char byte : bytes)
    text.push_back(UnitOf(*table, static_cast<unsigned char>(byte)));
  return text;
}

std::string TMemoryLocale::EncodeAnsi(TextView text) {
  const TCodePageTable* table = TableOf(CodePage);
  std::string bytes;
  for (const char16_t unit : text)
    bytes.push_back(table == nullptr ? '?' : ByteOf(*table, unit).value_or('?'));
  return bytes;
}

std::optional<std::string> TMemoryLocale::EncodeAnsiExact(TextView text) {
  std::string bytes;
  for (const char16_t unit : text) {
    const std::optional<char> byte = ByteOf(*TableOf(CodePage), unit);
    if (!byte)
      return std::nullopt;
    bytes.push_back(*byte);
  }
  return bytes;
}

Text TMemoryLocale::SystemMessage(std::uint32_t code) {
  return u"System message " + DecimalText(code) + u".";
}

void TMemoryClock::Sleep(std::chrono::milliseconds duration) {
  Slept += duration;
  Time += static_cast<double>(duration.count()) / static_cast<double>(kMillisecondsADay);
}

TLockAnswer TMemoryInterprocess::Lock(const TLockWish& wish, const std::function<bool()>& stop) {
  const Text name = UpperCase(wish.Name) + (wish.ForAllUsers ? Text() : u" " + User);
  const auto end = std::chrono::steady_clock::now() + std::min(wish.Patience, LongestPatience);
  if (HoldsNul(wish.Name))
    return {};
  std::unique_lock<std::mutex> hold(Locks->Mutex);
  Names.push_back(name);
  while (Locks->AllHeld || Locks->Held.contains(name)) {
    if (OnWait)
      OnWait();
    Locks->Released.wait_for(hold, kLockSlice);
    if (stop && stop())
      return {TLockEnd::Stopped, nullptr};
    if (std::chrono::steady_clock::now() >= end)
      return {TLockEnd::TimedOut, nullptr};
  }
  Locks->Held.insert(name);
  return {TLockEnd::Held, std::make_unique<TMemoryLock>(Locks, name)};
}

std::unique_ptr<THeldLock> TMemoryInterprocess::HoldEveryLock() {
  const std::lock_guard<std::mutex> hold(Locks->Mutex);
  Locks->AllHeld = true;
  return std::make_unique<TMemoryLock>(Locks, std::nullopt);
}

void TMemorySystem::AddUsualFolders() {
  Disk.SetEnvironmentVariable(u"windir", u"C:\\Windows");
  Disk.SetEnvironmentVariable(u"APPDATA", u"C:\\Users\\Ann\\AppData");
  Disk.SetEnvironmentVariable(u"ProgramFiles", u"C:\\Program Files");
  Disk.SetEnvironmentVariable(u"CommonProgramFiles", u"C:\\Program Files\\Common Files");
  Disk.SetEnvironmentVariable(u"TEMP", u"C:\\Users\\Ann\\Temp");
  Disk.SetEnvironmentVariable(u"ALLUSERSPROFILE", u"C:\\Users\\All");
  Disk.SetEnvironmentVariable(u"USERPROFILE", u"C:\\Users\\Ann");
  Disk.SetEnvironmentVariable(u"Path", u"C:\\Windows;C:\\Tools");
  for (const TextView folder :
       {u"C:\\Windows\\system32", u"C:\\Windows\\fonts", u"C:\\Program Files\\Common Files",
        u"C:\\Program Files\\Internet Explorer", u"C:\\Program Files\\Tessaly", u"C:\\Users\\Ann\\AppData",
        u"C:\\Users\\Ann\\Temp", u"C:\\Users\\All", u"C:\\Tools"}) {
    Disk.AddFolder(folder);
  }
}

void TMemorySystem::KeepJournal(TJournal& journal) {
  Registry.SetJournal(&journal);
  Disk.SetJournal(&journal);
}

}  // namespace corvalt
