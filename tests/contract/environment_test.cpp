#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>

#include "tests/contract/subject.h"

namespace corvalt {

namespace {

class EnvironmentContract : public ::testing::Test {
 protected:
  const std::unique_ptr<TSubject> m_subject = MakeSubject();
  TSystem m_system = m_subject->System();
};

TEST_F(EnvironmentContract, EveryByteOfTheCodePageComesBack) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte)
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(byte)));
  const Text text = m_system.Locale.DecodeAnsi(bytes);
  EXPECT_EQ(text.size(), bytes.size());
  EXPECT_EQ(m_system.Locale.EncodeAnsi(text), bytes);
  EXPECT_EQ(m_system.Locale.EncodeAnsiExact(text), bytes);
  EXPECT_EQ(m_system.Locale.DecodeAnsi(""), u"");
  EXPECT_EQ(m_system.Locale.EncodeAnsiExact(u""), "");
}

TEST_F(EnvironmentContract, WhatTheCodePageLacksHasNoExactBytes) {
  for (const Text& text : {Text(u"a\u65E5"), Text(u"\u0416"), Text{u'x', 0xD800}, Text{0xDC00}}) {
    EXPECT_EQ(m_system.Locale.EncodeAnsiExact(text), std::nullopt);
    EXPECT_EQ(m_system.Locale.EncodeAnsi(text).size(), text.size());
  }
}

TEST_F(EnvironmentContract, ACodePageIsKnownByItsNumber) {
  TLocale& locale = m_system.Locale;
  EXPECT_EQ(locale.AnsiCodePage(), 1252u);
  EXPECT_EQ(locale.DecodeCodePage(1252, "a\xE4\x80"), u"a\u00E4\u20AC");
  EXPECT_EQ(locale.DecodeCodePage(1251, "a\xE4\x80"), u"a\u0434\u0402");
  EXPECT_EQ(locale.DecodeCodePage(1251, "\xC0\xFF\xA8\xB8"), u"\u0410\u044F\u0401\u0451");
  EXPECT_TRUE(locale.HasCodePage(1251));
  EXPECT_FALSE(locale.HasCodePage(4711));
  EXPECT_EQ(locale.DecodeCodePage(4711, "abc"), u"");
}

TEST_F(EnvironmentContract, WindowsShowsItselfInALanguage) {
  constexpr std::uint16_t kEnglish = 0x09;  // the tests set no other language
  EXPECT_EQ(m_system.Locale.DisplayLanguage() & 0x03FF, kEnglish);
}

TEST_F(EnvironmentContract, TheMachineAndTheUserAreKnown) {
  TMachine& machine = m_system.Machine;
  EXPECT_FALSE(machine.ComputerName().empty());
  EXPECT_LE(machine.ComputerName().size(), 15u);
  EXPECT_TRUE(machine.UserSid().starts_with(u"S-1-")) << EncodeUtf8(machine.UserSid());
}

TEST_F(EnvironmentContract, NumbersHaveSeparators) {
  EXPECT_EQ(m_system.Locale.DecimalSeparator(), u".");
  EXPECT_EQ(m_system.Locale.ThousandsSeparator(), u",");
}

TEST_F(EnvironmentContract, DatesAndTimesAreWritten) {
  EXPECT_EQ(m_system.Locale.FormatShortDate(46341.5), u"11/15/2026");
  EXPECT_EQ(m_system.Locale.FormatShortDate(1.0), u"12/31/1899");
  EXPECT_EQ(m_system.Locale.FormatShortDate(36585.0), u"2/29/2000");
  EXPECT_EQ(m_system.Locale.FormatLongTime(46341.0), u"12:00:00 AM");
  EXPECT_EQ(m_system.Locale.FormatLongTime(46341.0 + (13 * 3600 + 5 * 60 + 9.25) / 86400), u"1:05:09 PM");
}

TEST_F(EnvironmentContract, TimesAreCutToTheSecondAndRolledOverAtMidnight) {
  EXPECT_EQ(m_system.Locale.FormatLongTime(46341.0 + 9.75 / 86400), u"12:00:09 AM");
  const TDateTime almostMidnight = 46341.0 + 86399.9999 / 86400;
  EXPECT_EQ(m_system.Locale.FormatLongTime(almostMidnight), u"12:00:00 AM");
  EXPECT_EQ(m_system.Locale.FormatShortDate(almostMidnight), u"11/16/2026");
}

TEST_F(EnvironmentContract, WhatTheCalendarCannotSayIsEmpty) {
  for (const TDateTime time :
       {-200000.0, 1e9, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_EQ(m_system.Locale.FormatShortDate(time), u"");
    EXPECT_EQ(m_system.Locale.FormatLongTime(time), u"");
  }
}

TEST_F(EnvironmentContract, SystemMessagesAreOneLineAndDiffer) {
  const Text memory = m_system.Locale.SystemMessage(kErrorOutOfMemory);
  const Text denied = m_system.Locale.SystemMessage(kErrorAccessDenied);
  EXPECT_FALSE(memory.empty());
  EXPECT_NE(memory, denied);
  EXPECT_EQ(memory.find_first_of(u"\r\n"), Text::npos);
  EXPECT_FALSE(m_system.Locale.SystemMessage(0xEFFFFFFF).empty());
}

TEST_F(EnvironmentContract, SleepingMovesTheClock) {
  constexpr double kDay = 86400.0;
  const TDateTime before = m_system.Clock.Now();
  m_system.Clock.Sleep(std::chrono::milliseconds(30));
  EXPECT_GE((m_system.Clock.Now() - before) * kDay, 0.025);
  EXPECT_GT(before, 40000.0);
}

TEST_F(EnvironmentContract, TheProgramAndTheSystemFolderAreFound) {
  const Text program = m_system.Machine.ProgramFile();
  EXPECT_EQ(program.substr(1, 2), u":\\");
  EXPECT_TRUE(FolderOf(program).ends_with(u"\\"));
  EXPECT_TRUE(m_system.Probe.DirectoryExists(m_system.Machine.GetSystemDirectory(261)));
  EXPECT_EQ(m_system.Machine.GetSystemDirectory(5), u"");
  EXPECT_GE(m_system.Machine.GetVersion().Major, 4u);
}

TLockWish LockNamed(TextView name, int patienceInMilliseconds = 10000) {
  return {Text(name), false, std::chrono::milliseconds(patienceInMilliseconds)};
}

// Takes the lock on a thread of its own, as another program would.
TLockEnd TryOnAnotherThread(TSystem& system, const TLockWish& wish, const std::function<bool()>& stop = {}) {
  TLockEnd end = TLockEnd::Refused;
  std::thread([&] { end = system.Interprocess.Lock(wish, stop).End; }).join();
  return end;
}

TEST_F(EnvironmentContract, ALockHasOneHolder) {
  TLockAnswer held = m_system.Interprocess.Lock(LockNamed(u"Corvalt\\Contract"), {});
  ASSERT_EQ(held.End, TLockEnd::Held);
  std::atomic<bool> released = false;
  std::atomic<bool> releasedWhenTaken = false;
  std::thread other([&] {
    const TLockAnswer answer = m_system.Interprocess.Lock(LockNamed(u"Corvalt\\Contract"), {});
    releasedWhenTaken = answer.Lock != nullptr && released.load();
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  released = true;
  held.Lock.reset();
  other.join();
  EXPECT_TRUE(releasedWhenTaken);
}

TEST_F(EnvironmentContract, ALocksNameHasNoLetterCase) {
  const TLockAnswer held = m_system.Interprocess.Lock(LockNamed(u"Corvalt Case"), {});
  EXPECT_EQ(TryOnAnotherThread(m_system, LockNamed(u"CORVALT CASE", 1)), TLockEnd::TimedOut);
  EXPECT_EQ(TryOnAnotherThread(m_system, LockNamed(u"Corvalt Case 2", 1)), TLockEnd::Held);
}

TEST_F(EnvironmentContract, WaitingForALockEndsWhenThePatienceDoes) {
  const TLockAnswer held = m_system.Interprocess.Lock(LockNamed(u"Corvalt Patience"), {});
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(TryOnAnotherThread(m_system, LockNamed(u"Corvalt Patience", 250)), TLockEnd::TimedOut);
  const auto waited = std::chrono::steady_clock::now() - begin;
  EXPECT_GE(waited, std::chrono::milliseconds(240));
  EXPECT_LT(waited, std::chrono::seconds(5));
}

TEST_F(EnvironmentContract, WaitingForALockEndsWhenItIsAskedToStop) {
  const TLockAnswer held = m_system.Interprocess.Lock(LockNamed(u"Corvalt Stop"), {});
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(TryOnAnotherThread(m_system, LockNamed(u"Corvalt Stop"), [] { return true; }), TLockEnd::Stopped);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST_F(EnvironmentContract, ALockOfAllUsersIsNotThatOfOne) {
  TLockWish shared = LockNamed(u"Corvalt Shared", 1);
  shared.ForAllUsers = true;
  const TLockAnswer held = m_system.Interprocess.Lock(shared, {});
  ASSERT_EQ(held.End, TLockEnd::Held);
  EXPECT_EQ(TryOnAnotherThread(m_system, shared), TLockEnd::TimedOut);
  EXPECT_EQ(TryOnAnotherThread(m_system, LockNamed(u"Corvalt Shared", 1)), TLockEnd::Held);
}

TEST_F(EnvironmentContract, ALockIsGivenUpByAThreadThatEnds) {
  EXPECT_EQ(TryOnAnotherThread(m_system, LockNamed(u"Corvalt Contract")), TLockEnd::Held);
  EXPECT_EQ(m_system.Interprocess.Lock(LockNamed(u"Corvalt Contract"), {}).End, TLockEnd::Held);
}

TEST_F(EnvironmentContract, ALockOfANameWithANulIsRefused) {
  EXPECT_EQ(m_system.Interprocess.Lock(LockNamed(TextView(u"a\0b", 3)), {}).End, TLockEnd::Refused);
}

// No process has an identifier that is not a multiple of four.
TEST_F(EnvironmentContract, AProcessThatIsNotThereDoesNotRun) {
  EXPECT_FALSE(m_system.Interprocess.ProcessRuns(0x7FFFFFF1));
}

}  // namespace

}  // namespace corvalt
