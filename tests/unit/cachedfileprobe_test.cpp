#include "core/cachedfileprobe.h"

#include <gtest/gtest.h>

#include <random>

#include "platform/memory/memoryfiles.h"
#include "tests/support/largeinput.h"

namespace corvalt {

namespace {

class CachedProbe : public testing::Test {
 protected:
  // Asks about names in a folder until it has been listed.
  void MakeListed(const Text& folder) {
    for (int i = 0; i < 5; ++i)
      Cached.FileExists(folder + u"\\never" + DecimalText(i));
  }
  int QuestionsOf(TextView path) {
    const int before = Disk.Questions();
    Cached.FileExists(path);
    Cached.DirectoryExists(path);
    return Disk.Questions() - before;
  }
  bool IsAskedPlainly(TextView path) {
    return QuestionsOf(path) == 2;
  }

  TMemoryDisk Disk;
  TCachedFileProbe Cached{Disk};
};

TEST_F(CachedProbe, AnswersAsTheProbeBelow) {
  Disk.AddFile(u"C:\\App\\a.exe");
  Disk.AddFolder(u"C:\\App\\sub");
  for (int round = 0; round < 5; ++round) {
    EXPECT_TRUE(Cached.FileExists(u"C:\\App\\a.exe"));
    EXPECT_TRUE(Cached.FileExists(u"c:\\APP\\A.EXE"));
    EXPECT_FALSE(Cached.DirectoryExists(u"C:\\App\\a.exe"));
    EXPECT_TRUE(Cached.DirectoryExists(u"C:\\App\\sub"));
    EXPECT_TRUE(Cached.DirectoryExists(u"C:\\App\\sub\\"));
    EXPECT_FALSE(Cached.FileExists(u"C:\\App\\sub"));
    EXPECT_FALSE(Cached.FileExists(u"C:\\App\\b.exe"));
    EXPECT_FALSE(Cached.FileExists(u"C:\\Gone\\b.exe"));
    EXPECT_FALSE(Cached.DirectoryExists(u"C:\\Gone\\deep\\below"));
    EXPECT_FALSE(Cached.FileExists(u"Q:\\a.exe"));
    EXPECT_TRUE(Cached.DirectoryExists(u"C:\\"));
  }
}

TEST_F(CachedProbe, AThousandChecksInAFolderCostAFewQuestions) {
  Disk.AddFile(u"C:\\App\\a.exe");
  for (int i = 0; i < 1000; ++i) {
    EXPECT_FALSE(Cached.FileExists(u"C:\\App\\gone" + DecimalText(i)));
    EXPECT_TRUE(Cached.FileExists(u"C:\\App\\a.exe"));
  }
  EXPECT_LE(Disk.Questions(), 4);
}

TEST_F(CachedProbe, ASingleCheckListsNothing) {
  Disk.AddFile(u"C:\\App\\a.exe");
  EXPECT_TRUE(Cached.FileExists(u"C:\\App\\a.exe"));
  EXPECT_EQ(Disk.Questions(), 1);
}

TEST_F(CachedProbe, AMissingFolderAnswersEverythingBelowIt) {
  MakeListed(u"C:\\Gone");
  const int before = Disk.Questions();
  EXPECT_FALSE(Cached.FileExists(u"C:\\Gone\\a\\b\\c.dll"));
  EXPECT_FALSE(Cached.DirectoryExists(u"C:\\gone\\x\\y"));
  EXPECT_EQ(Disk.Questions(), before);
}

TEST_F(CachedProbe, ManyMissingFoldersAreFoundMissingInTheirParent) {
  Disk.AddFolder(u"C:\\Program Files\\Kept");
  for (int i = 0; i < 1000; ++i)
    EXPECT_FALSE(Cached.FileExists(u"C:\\Program Files\\Gone" + DecimalText(i) + u"\\a.exe"));
  EXPECT_LE(Disk.Questions(), 5);
}

TEST_F(CachedProbe, NothingIsBelowAFile) {
  Disk.AddFile(u"C:\\App\\a.exe");
  MakeListed(u"C:\\App");
  EXPECT_EQ(QuestionsOf(u"C:\\App\\a.exe\\b"), 0);
  EXPECT_FALSE(Cached.FileExists(u"C:\\App\\a.exe\\b"));
}

TEST_F(CachedProbe, DoubledSeparatorsCountAsOne) {
  Disk.AddFile(u"C:\\App\\a.exe");
  MakeListed(u"C:\\App");
  EXPECT_EQ(QuestionsOf(u"C:\\\\App\\\\\\a.exe"), 0);
  EXPECT_TRUE(Cached.FileExists(u"C:\\\\App\\\\\\a.exe"));
  EXPECT_TRUE(Cached.DirectoryExists(u"C:\\App\\\\"));
}

TEST_F(CachedProbe, PathsThatTheSystemRewritesAreAskedPlainly) {
  Disk.AddFile(u"C:\\App\\a.exe");
  MakeListed(u"C:\\App");
  for (const TextView path :
       {u"C:\\App\\a.exe.", u"C:\\App\\a.exe ", u"C:\\App.\\a.exe", u"C:\\App \\a.exe", u"C:\\App\\.\\a.exe",
        u"C:\\App\\..\\App\\a.exe", u"C:/App/a.exe", u"C:\\App/a.exe", u"C:\\App\\nul", u"C:\\App\\Con.txt",
        u"C:\\App\\com1.exe", u"C:\\App\\LPT9", u"C:\\aux \\a", u"C:\\App\\prn .x", u"C:\\App\\conout$"}) {
    EXPECT_TRUE(IsAskedPlainly(path)) << EncodeUtf8(path);
  }
}

TEST_F(CachedProbe, PathsThatNameNoPlaceOnADriveAreAskedPlainly) {
  MakeListed(u"C:\\App");
  for (const TextView path :
       {u"", u"C", u"C:", u"C:\\", u"C:\\\\", u"C:a.exe", u"a.exe", u"\\App\\a.exe", u"\\\\server\\share\\a",
        u"\\\\?\\C:\\App\\a", u"1:\\App\\a", u"C:\\App\\a:stream", u"C:\\App\\*", u"C:\\App\\?.exe",
        u"C:\\App\\a<b", u"C:\\App\\a|b", u"C:\\App\\a\"b", u"C:\\App\\a\tb"}) {
    EXPECT_TRUE(IsAskedPlainly(path)) << EncodeUtf8(path);
  }
  EXPECT_TRUE(IsAskedPlainly(Text(u"C:\\App\\a\0b", 10)));
}

TEST_F(CachedProbe, NamesThatOnlyBeginLikeADeviceAreNone) {
  MakeListed(u"C:\\App");
  for (const TextView path : {u"C:\\App\\console", u"C:\\App\\com", u"C:\\App\\com12", u"C:\\App\\nul1.txt",
                              u"C:\\App\\lptx", u"C:\\App\\a.con"}) {
    EXPECT_EQ(QuestionsOf(path), 0) << EncodeUtf8(path);
  }
}

TEST_F(CachedProbe, PathsBeyondTheSystemsLimitAreAskedPlainly) {
  MakeListed(u"C:\\App");
  EXPECT_EQ(QuestionsOf(Text(u"C:\\App\\").append(252, u'x')), 0);
  EXPECT_TRUE(IsAskedPlainly(Text(u"C:\\App\\").append(253, u'x')));
}

TEST_F(CachedProbe, AMissOfAShortNameIsAskedPlainly) {
  Disk.AddFile(u"C:\\Program Files\\App\\a.exe");
  Disk.SetShortName(u"C:\\Program Files", u"PROGRA~1");
  MakeListed(u"C:\\Program Files\\App");
  MakeListed(u"C:\\PROGRA~1\\App");
  EXPECT_TRUE(Cached.FileExists(u"C:\\PROGRA~1\\App\\a.exe"));
  EXPECT_TRUE(IsAskedPlainly(u"C:\\PROGRA~1\\App\\gone.exe"));
  EXPECT_TRUE(IsAskedPlainly(u"C:\\Program Files\\App\\GONE~1.EXE"));
}

TEST_F(CachedProbe, AMissOfOtherLettersThanAsciiIsAskedPlainly) {
  Disk.AddFile(u"C:\\App\\caf\u00E9.exe");
  MakeListed(u"C:\\App");
  EXPECT_TRUE(Cached.FileExists(u"C:\\App\\CAF\u00C9.exe"));
  EXPECT_EQ(QuestionsOf(u"C:\\App\\caf\u00E9.exe"), 0);
  EXPECT_TRUE(IsAskedPlainly(u"C:\\App\\th\u00E9.exe"));
}

TEST_F(CachedProbe, ALinkAndWhatLiesBelowItAreAskedPlainly) {
  Disk.AddFile(u"C:\\Link\\sub\\a.exe");
  Disk.MakeLink(u"C:\\Link");
  MakeListed(u"C:");
  EXPECT_TRUE(IsAskedPlainly(u"C:\\Link"));
  MakeListed(u"C:\\Link\\sub");
  EXPECT_TRUE(IsAskedPlainly(u"C:\\Link\\sub\\a.exe"));
  EXPECT_TRUE(IsAskedPlainly(u"C:\\Link\\sub\\gone.exe"));
}

TEST_F(CachedProbe, AFolderThatCannotBeListedIsAskedPlainly) {
  Disk.AddFile(u"C:\\Secret\\a.exe");
  Disk.AddFile(u"C:\\Secret\\open\\b.exe");
  Disk.MakeUnreadable(u"C:\\Secret");
  MakeListed(u"C:\\Secret");
  EXPECT_TRUE(Cached.FileExists(u"C:\\Secret\\a.exe"));
  EXPECT_TRUE(IsAskedPlainly(u"C:\\Secret\\gone.exe"));
  MakeListed(u"C:\\Secret\\open");
  EXPECT_EQ(QuestionsOf(u"C:\\Secret\\open\\gone.exe"), 0);
}

TEST_F(CachedProbe, AFileNameThatEndsWithASeparatorIsAskedPlainly) {
  Disk.AddFile(u"C:\\App\\a.exe");
  MakeListed(u"C:\\App");
  EXPECT_TRUE(IsAskedPlainly(u"C:\\App\\a.exe\\"));
  EXPECT_EQ(QuestionsOf(u"C:\\App\\gone\\"), 0);
}

TEST_F(CachedProbe, EachStateOfTheRedirectionHasItsOwnListings) {
  Disk.RedirectFolder(u"C:\\Windows\\System32", u"C:\\Windows\\SysWOW64");
  Disk.AddFile(u"C:\\Windows\\System32\\only64.dll");
  Disk.AddFile(u"C:\\Windows\\SysWOW64\\only32.dll");
  for (int round = 0; round < 5; ++round) {
    EXPECT_TRUE(Cached.FileExists(u"C:\\Windows\\System32\\only32.dll"));
    EXPECT_FALSE(Cached.FileExists(u"C:\\Windows\\System32\\only64.dll"));
    const TRedirectionOff off(Cached);
    EXPECT_TRUE(off.Switched());
    EXPECT_FALSE(Cached.FileExists(u"C:\\Windows\\System32\\only32.dll"));
    EXPECT_TRUE(Cached.FileExists(u"C:\\Windows\\System32\\only64.dll"));
  }
  EXPECT_EQ(Disk.RedirectionDepth(), 0);
}

TEST_F(CachedProbe, FoldersThatTheRedirectionTreatsByThemselvesAreAskedPlainly) {
  Disk.RedirectFolder(u"C:\\Windows\\Sysnative", u"C:\\Windows\\System32");
  Disk.AddFile(u"C:\\Windows\\System32\\a.dll");
  MakeListed(u"C:\\Windows");
  EXPECT_TRUE(Cached.FileExists(u"C:\\Windows\\Sysnative\\a.dll"));
  MakeListed(u"C:\\Windows\\Sysnative");
  EXPECT_TRUE(Cached.FileExists(u"C:\\Windows\\Sysnative\\a.dll"));
  EXPECT_TRUE(IsAskedPlainly(u"C:\\Windows\\System32\\spool"));
}

TEST_F(CachedProbe, PassesTheOtherQuestionsOn) {
  Disk.AddFile(u"C:\\Program Files\\a.txt", "12345");
  Disk.SetShortName(u"C:\\Program Files", u"PROGRA~1");
  Disk.SetEnvironmentVariable(u"X", u"y");
  Text roots;
  std::vector<TFolderEntry> entries;
  EXPECT_EQ(Cached.GetLongPathName(u"C:\\PROGRA~1"), u"C:\\Program Files");
  EXPECT_EQ(Cached.GetLogicalDriveStrings(129, roots), 4u);
  EXPECT_EQ(roots, Text(u"C:\\\0", 4));
  EXPECT_EQ(Cached.GetDriveType(u"C:\\"), kDriveFixed);
  EXPECT_EQ(Cached.GetEnvironmentVariable(u"X"), u"y");
  EXPECT_EQ(Cached.FileSize(u"C:\\Program Files\\a.txt"), 5);
  EXPECT_EQ(Cached.ListFolder(u"C:\\Program Files", entries), FileSystemProbe::TListing::Listed);
  EXPECT_EQ(entries.size(), 1u);
}

// A disk whose folders hold ever more names.
class TEndlessDisk : public TMemoryDisk {
 public:
  TListing ListFolder(TextView, std::vector<TFolderEntry>& entries) override {
    ++m_listed;
    entries.clear();
    for (int i = 0; i < 50000; ++i)
      entries.push_back({u"some name of a file " + DecimalText(i), {}, false, false});
    return TListing::Listed;
  }
  int Listed() const {
    return m_listed;
  }

 private:
  int m_listed = 0;
};

TEST(CachedProbeMemory, IsBounded) {
  TEndlessDisk disk;
  TCachedFileProbe cached(disk);
  // Several drives, so that no parent's listing says that a folder is missing.
  for (char16_t drive = u'A'; drive <= u'Z'; ++drive) {
    for (int folder = 0; folder < 3; ++folder) {
      const Text root = Text(1, drive) + u":\\some name of a folder~" + DecimalText(folder);
      for (int i = 0; i < 4; ++i)
        cached.FileExists(root + u"\\" + DecimalText(i));
    }
  }
  EXPECT_GT(disk.Listed(), 5);
  EXPECT_LT(disk.Listed(), 20);
  EXPECT_FALSE(cached.FileExists(u"A:\\new folder\\a"));
}

// Random disks and random paths: cached and plain answer alike.
class TRandomDisk {
 public:
  explicit TRandomDisk(unsigned seed) : m_random(seed) {
    Disk.RedirectFolder(u"C:\\System32", u"C:\\SysWOW64");
    Disk.AddFolder(u"C:\\SysWOW64");
    Disk.AddDrive(u"D:\\", kDriveFixed);
    // Looked at as it is built.
    const TRedirectionOff off(Disk);
    for (int i = 0; i < 60; ++i)
      AddSomething();
  }

  Text RandomPath() {
    static constexpr TextView kRoots[] = {
        u"C:\\", u"c:\\", u"D:\\", u"C:\\System32\\", u"C:\\\\", u"C:/", u"Q:\\", u"", u"\\", u"C:"};
    static constexpr TextView kEnds[] = {u"", u"", u"", u"", u"\\", u".", u" ", u"\\.", u"*"};
    Text path(kRoots[Below(Below(3) == 0 ? std::size(kRoots) : 4)]);
    for (std::size_t depth = 1 + Below(4); depth > 0; --depth)
      path.append(RandomName()).append(depth == 1 ? u"" : Below(9) == 0 ? u"\\\\" : u"\\");
    return path.append(kEnds[Below(std::size(kEnds))]);
  }

  TMemoryDisk Disk;

 private:
  std::size_t Below(std::size_t limit) {
    return m_random() % limit;
  }
  TextView RandomName() {
    static constexpr TextView kNames[] = {u"a",      u"A",        u"b",        u"c",        u"\u00E9",
                                          u"\u00C9", u"spool",    u"LONGNA~1", u"d.e",      u"f g",
                                          u"..",     u"System32", u"B",        u"SysWOW64", u"\u0434"};
    return kNames[Below(std::size(kNames))];
  }
  Text RandomBuiltPath() {
    Text path = Below(4) == 0 ? u"D:" : Below(3) == 0 ? u"C:\\System32" : u"C:";
    for (std::size_t depth = 1 + Below(3); depth > 0; --depth) {
      const TextView name = RandomName();
      path.append(u"\\").append(name == u".." ? u"a" : name);
    }
    return path;
  }
  void AddSomething() {
    const Text path = RandomBuiltPath();
    if (Disk.FileExists(path) || Disk.DirectoryExists(path) || !ParentsAreFolders(path))
      return;
    if (Below(2) == 0)
      Disk.AddFile(path);
    else
      Disk.AddFolder(path);
    if (!Disk.FileExists(path) && !Disk.DirectoryExists(path))
      return;
    if (Below(12) == 0)
      Disk.SetShortName(path, u"LONGNA~1");
    if (Below(12) == 0)
      Disk.MakeLink(path);
    if (Below(12) == 0)
      Disk.MakeUnreadable(path);
  }
  bool ParentsAreFolders(const Text& path) {
    for (std::size_t at = path.find(u'\\'); at != Text::npos; at = path.find(u'\\', at + 1)) {
      if (Disk.FileExists(path.substr(0, at)))
        return false;
    }
    return true;
  }

  std::mt19937 m_random;
};

TEST(CachedProbeComparison, CachedAndPlainAgreeOnRandomPaths) {
  std::size_t asked = 0;
  std::size_t found = 0;
  const std::size_t disks = LargeInput(15, 4);
  for (unsigned seed = 1; seed <= disks; ++seed) {
    TRandomDisk random(seed);
    TCachedFileProbe cached(random.Disk);
    for (int i = 0; i < 2000; ++i) {
      const Text path = random.RandomPath();
      const auto compare = [&] {
        const bool file = random.Disk.FileExists(path);
        const bool folder = random.Disk.DirectoryExists(path);
        EXPECT_EQ(cached.FileExists(path), file) << EncodeUtf8(path) << " on disk " << seed;
        EXPECT_EQ(cached.DirectoryExists(path), folder) << EncodeUtf8(path) << " on disk " << seed;
        ++asked;
        found += (file || folder) ? 1 : 0;
      };
      compare();
      const TRedirectionOff off(cached);
      compare();
    }
    ASSERT_FALSE(testing::Test::HasFailure());
  }
  // The paths are worth asking about: many exist and many do not.
  EXPECT_GT(found, asked * 7 / 60);
  EXPECT_LT(found, asked * 5 / 6);
}

}  // namespace

}  // namespace corvalt
