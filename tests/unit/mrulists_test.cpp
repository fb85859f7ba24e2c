#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"

namespace corvalt {

namespace {

constexpr TextView kOpenSaveMru =
    u"\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\ComDlg32\\OpenSaveMRU";
constexpr TextView kNul(u"\0", 1);

Text FullPathOf(TextView extension) {
  return u"HKEY_CURRENT_USER" + Text(kOpenSaveMru) + u"\\" + Text(extension);
}

void Remember(TScanRig& rig, TextView extension, TextView letter, TextView path) {
  rig.System.Registry.Set(FullPathOf(extension), letter, path);
}

void SetOrder(TScanRig& rig, TextView extension, TextView order) {
  rig.System.Registry.Set(FullPathOf(extension), u"MRUList", order);
}

ScanProblem Missing(TextView extension, TextView name, TextView path) {
  return ValueProblem(kHkeyCurrentUser, Text(kOpenSaveMru) + u"\\" + Text(extension), name, path,
                      Says(TextId::MissingRecentFile, name, path));
}

void RememberManyFiles(TScanRig& rig) {
  rig.System.Disk.AddFile(u"C:\\Docs\\here.txt");
  SetOrder(rig, u"txt", u"dcba");
  Remember(rig, u"txt", u"", u"C:\\Old\\default.txt");
  Remember(rig, u"txt", u"a", u"C:\\Old\\a.txt");
  Remember(rig, u"txt", u"b", u"C:\\Docs\\here.txt");
  Remember(rig, u"txt", u"c", u"C:\\Old\\c.txt");
  Remember(rig, u"txt", u"d", u"C:\\Old\\d.txt");
  Remember(rig, u"txt", u"e", u"C:\\Old\\e.txt");
  SetOrder(rig, u"*", u"ab");
  Remember(rig, u"*", u"a", u"C:\\Old\\star.doc");
  SetOrder(rig, u"_x", u"ab");
  Remember(rig, u"_x", u"a", u"C:\\Old\\under.doc");
  SetOrder(rig, u"denied", u"ab");
  Remember(rig, u"denied", u"a", u"C:\\Old\\denied.doc");
  rig.System.Registry.Deny(FullPathOf(u"denied"));
  Remember(rig, u"none", u"", u"C:\\Old\\none.doc");
}

}  // namespace

TEST(MruLists, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  RememberManyFiles(rig);

  rig.Run({Section::MruLists});

  EXPECT_EQ(AllFields(rig.Headers()),
            AllFields({SectionHeader(u"MRU and History Lists", 17, kNoRootKey, 5)}));
  EXPECT_EQ(
      AllFields(rig.Problems()),
      AllFields({Missing(u"*", u"a", u"C:\\Old\\star.doc"), Missing(u"txt", kNul, u"C:\\Old\\default.txt"),
                 Missing(u"txt", u"d", u"C:\\Old\\d.txt"), Missing(u"txt", u"c", u"C:\\Old\\c.txt"),
                 Missing(u"_x", u"a", u"C:\\Old\\under.doc")}));
}

TEST(MruLists, ListsComeInTheOrderOfThePlatformAndTheirFilesInTheOrderOfTheList) {
  TScanRig rig(TNameOrder::Wine);
  RememberManyFiles(rig);

  rig.Run({Section::MruLists});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"*", u"a", u"C:\\Old\\star.doc"), Missing(u"_x", u"a", u"C:\\Old\\under.doc"),
                       Missing(u"txt", kNul, u"C:\\Old\\default.txt"),
                       Missing(u"txt", u"d", u"C:\\Old\\d.txt"), Missing(u"txt", u"c", u"C:\\Old\\c.txt")}));
}

TEST(MruLists, TheLastLetterIsNeverVisited) {
  TScanRig rig;
  SetOrder(rig, u"txt", u"a");
  Remember(rig, u"txt", u"a", u"C:\\Old\\a.txt");
  rig.Run({Section::MruLists});
  EXPECT_TRUE(rig.Headers().empty());

  SetOrder(rig, u"txt", u"ba");
  Remember(rig, u"txt", u"b", u"C:\\Old\\b.txt");
  rig.Run({Section::MruLists});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"txt", u"b", u"C:\\Old\\b.txt")}));
}

TEST(MruLists, TheDefaultValueIsVisitedFirstUnderTheNameOfOneNul) {
  TScanRig rig;
  SetOrder(rig, u"txt", u"a");
  Remember(rig, u"txt", u"", u"C:\\Old\\default.txt");

  rig.Run({Section::MruLists});

  const std::vector<ScanProblem> problems = rig.Problems();
  ASSERT_EQ(problems.size(), 1u);
  EXPECT_EQ(problems.front().ValueName, Text(1, u'\0'));
  EXPECT_EQ(AllFields(problems), AllFields({Missing(u"txt", kNul, u"C:\\Old\\default.txt")}));
}

TEST(MruLists, AnEmptyOrderReadsNothing) {
  TScanRig rig;
  SetOrder(rig, u"empty", u"");
  Remember(rig, u"empty", u"", u"C:\\Old\\default.txt");
  Remember(rig, u"none", u"", u"C:\\Old\\default.txt");
  rig.System.Registry.SetInteger(FullPathOf(u"number"), u"MRUList", 5);
  Remember(rig, u"number", u"", u"C:\\Old\\default.txt");

  rig.Run({Section::MruLists});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(MruLists, ALetterThatIsNamedTwiceIsVisitedTwice) {
  TScanRig rig;
  SetOrder(rig, u"txt", u"aab");
  Remember(rig, u"txt", u"a", u"C:\\Old\\a.txt");

  rig.Run({Section::MruLists});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"txt", u"a", u"C:\\Old\\a.txt"), Missing(u"txt", u"a", u"C:\\Old\\a.txt")}));
}

TEST(MruLists, TheNameIsTheLetterOfTheListWhateverTheValuesCase) {
  TScanRig rig;
  SetOrder(rig, u"txt", u"Ab");
  Remember(rig, u"txt", u"a", u"C:\\Old\\a.txt");

  rig.Run({Section::MruLists});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"txt", u"A", u"C:\\Old\\a.txt")}));
}

TEST(MruLists, ANamedValueThatIsMissingOrNoTextIsNotReported) {
  TScanRig rig;
  SetOrder(rig, u"txt", u"abc");
  rig.System.Registry.SetRaw(FullPathOf(u"txt"), {u"b", kRegBinary, {1, 2}});

  rig.Run({Section::MruLists});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(MruLists, APathIsCutAtItsFirstComma) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Docs\\one");
  SetOrder(rig, u"txt", u"ab");
  Remember(rig, u"txt", u"a", u"C:\\Docs\\one, two.txt");

  rig.Run({Section::MruLists});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(MruLists, ABareNameIsLookedForOnTheSearchPath) {
  TScanRig rig;
  rig.System.Disk.AddFile(u"C:\\Tools\\found.txt");
  SetOrder(rig, u"txt", u"abc");
  Remember(rig, u"txt", u"a", u"found.txt");
  Remember(rig, u"txt", u"b", u"gone.txt");

  rig.Run({Section::MruLists});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Missing(u"txt", u"b", u"gone.txt")}));
}

TEST(MruLists, NoListsLeaveNoHeader) {
  TScanRig rig;

  rig.Run({Section::MruLists});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(MruLists, ProgressNamesTheListAlsoWhenItDoesNotOpen) {
  TScanRig rig;
  for (int i = 0; i < 120; ++i)
    rig.System.Registry.AddKey(FullPathOf(NumberedName(u"x", i)));
  rig.System.Registry.Deny(FullPathOf(u"x050"));

  rig.Run({Section::MruLists});

  const std::string key =
      "item: Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\ComDlg32\\OpenSaveMRU\\";
  EXPECT_EQ(rig.Dialog.Updates,
            UpdatesOf("MRU and History Lists", {key + "x050", "bar: 42", key + "x100", "bar: 84"}));
}

TEST(MruLists, ACancelledScanFinishesItsListAndLooksAtNoOther) {
  TScanRig rig;
  for (const TextView extension : {u"a", u"b"}) {
    SetOrder(rig, extension, u"cba");
    Remember(rig, extension, u"c", u"C:\\Old\\c.txt");
    Remember(rig, extension, u"b", u"C:\\Old\\b.txt");
  }

  rig.RunAndCancel({Section::MruLists}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::MruLists}, 2);
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Missing(u"a", u"c", u"C:\\Old\\c.txt"), Missing(u"a", u"b", u"C:\\Old\\b.txt")}));
}

TEST(MruLists, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  RememberManyFiles(rig);
  ExpectConsistentWhereverCancelled(rig, Section::MruLists);
}

}  // namespace corvalt
