#include <gtest/gtest.h>

#include "tests/support/names.h"
#include "tests/support/problemfields.h"
#include "tests/support/regtext.h"

namespace corvalt {

namespace {

Text UserKey(TextView vendor) {
  return u"HKEY_CURRENT_USER\\SOFTWARE\\" + Text(vendor);
}

Text MachineKey(TextView vendor) {
  return u"HKEY_LOCAL_MACHINE\\SOFTWARE\\" + Text(vendor);
}

ScanProblem Empty(TRootKey root, TextView vendor) {
  return KeyProblem(root, u"\\software\\" + Text(vendor), u"", u"", Says(TextId::EmptyKey));
}

void AddManyVendors(TScanRig& rig) {
  LoadRegText(rig.System.Registry, R"(
[HKEY_CURRENT_USER\SOFTWARE\_Old]
[HKEY_CURRENT_USER\SOFTWARE\Empty]
[HKEY_CURRENT_USER\SOFTWARE\Deep\A\B]
[HKEY_CURRENT_USER\SOFTWARE\Deep\C]
[HKEY_CURRENT_USER\SOFTWARE\Used\A\B]
@=""
[HKEY_CURRENT_USER\SOFTWARE\POLICIES]
[HKEY_CURRENT_USER\SOFTWARE\Partly denied\Shut]
[HKEY_LOCAL_MACHINE\SOFTWARE\Machine Vendor]
[HKEY_LOCAL_MACHINE\SOFTWARE\Used]
"n"=dword:00000000
[HKEY_LOCAL_MACHINE\SOFTWARE\Policies]
)");
  rig.System.Registry.Deny(UserKey(u"Partly denied\\Shut"));
}

}  // namespace

TEST(ObsoleteSoftware, EveryProblemOfALargerRegistryWithAllFields) {
  TScanRig rig;
  AddManyVendors(rig);

  rig.Run({Section::ObsoleteSoftware});

  EXPECT_EQ(AllFields(rig.Headers()), AllFields({SectionHeader(u"Obsolete software", 5, kNoRootKey, 4)}));
  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Empty(kHkeyCurrentUser, u"Deep"), Empty(kHkeyCurrentUser, u"Empty"),
                       Empty(kHkeyCurrentUser, u"_Old"), Empty(kHkeyLocalMachine, u"Machine Vendor")}));
}

TEST(ObsoleteSoftware, ProblemsComeInTheOrderOfThePlatform) {
  TScanRig rig(TNameOrder::Wine);
  AddManyVendors(rig);

  rig.Run({Section::ObsoleteSoftware});

  EXPECT_EQ(AllFields(rig.Problems()),
            AllFields({Empty(kHkeyCurrentUser, u"_Old"), Empty(kHkeyCurrentUser, u"Deep"),
                       Empty(kHkeyCurrentUser, u"Empty"), Empty(kHkeyLocalMachine, u"Machine Vendor")}));
}

TEST(ObsoleteSoftware, OneValueAnywhereBelowKeepsTheVendor) {
  TScanRig rig;
  rig.System.Registry.AddKey(UserKey(u"Vendor\\A\\B"));
  rig.System.Registry.AddKey(UserKey(u"Vendor\\C\\D"));
  rig.Run({Section::ObsoleteSoftware});
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(kHkeyCurrentUser, u"Vendor")}));

  rig.System.Registry.SetInteger(UserKey(u"Vendor\\C\\D"), u"n", 0);
  rig.Run({Section::ObsoleteSoftware});
  EXPECT_TRUE(rig.Headers().empty());
}

TEST(ObsoleteSoftware, AnEmptyUnnamedValueIsAValue) {
  TScanRig rig;
  rig.System.Registry.Set(UserKey(u"Vendor"), u"", u"");

  rig.Run({Section::ObsoleteSoftware});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(ObsoleteSoftware, AKeyThatDoesNotOpenIsNotEmpty) {
  TScanRig rig;
  rig.System.Registry.Deny(UserKey(u"Vendor"));
  rig.System.Registry.AddKey(UserKey(u"Parent\\Shut"));
  rig.System.Registry.Deny(UserKey(u"Parent\\Shut"));

  rig.Run({Section::ObsoleteSoftware});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(ObsoleteSoftware, PoliciesAreNeverTestedWhateverTheirCase) {
  for (const TextView name : {u"Policies", u"POLICIES", u"policies"}) {
    TScanRig rig;
    rig.System.Registry.AddKey(UserKey(name));
    rig.System.Registry.AddKey(MachineKey(name));
    rig.Run({Section::ObsoleteSoftware});
    EXPECT_TRUE(rig.Headers().empty()) << EncodeUtf8(name);
  }
}

TEST(ObsoleteSoftware, AKeyThatOnlyBeginsLikePoliciesIsTested) {
  TScanRig rig;
  rig.System.Registry.AddKey(UserKey(u"Policies2"));

  rig.Run({Section::ObsoleteSoftware});

  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(kHkeyCurrentUser, u"Policies2")}));
}

TEST(ObsoleteSoftware, KeysBelowAVendorAreNotReportedByThemselves) {
  TScanRig rig;
  rig.System.Registry.Set(UserKey(u"Vendor"), u"v", u"x");
  rig.System.Registry.AddKey(UserKey(u"Vendor\\Empty"));

  rig.Run({Section::ObsoleteSoftware});

  EXPECT_TRUE(rig.Headers().empty());
}

TEST(ObsoleteSoftware, EachRootFillsOneHalfOfTheBarAndASkippedKeyMakesNoProgress) {
  TScanRig rig;
  rig.System.Registry.AddKey(UserKey(u"Policies"));
  for (int i = 0; i < 60; ++i) {
    if (i > 0)
      rig.System.Registry.Set(UserKey(NumberedName(u"v", i)), u"v", u"");
    rig.System.Registry.Set(MachineKey(NumberedName(u"w", i)), u"v", u"");
  }

  rig.Run({Section::ObsoleteSoftware});

  // Each list begins with Classes. The user's has 61 keys of which the second is skipped: the 51st call is
  // that of the 52nd key, 52 x 50 / 61 = 42.6; the 101st that of the machine's 41st, 50 + 41 x 50 / 61
  // = 83.6.
  EXPECT_EQ(rig.Dialog.Updates, UpdatesOf("Obsolete Software", {"item: Software\\v050", "bar: 43",
                                                                "item: Software\\w039", "bar: 84"}));
}

TEST(ObsoleteSoftware, ACancelledScanLooksAtNoOtherItemAndNotAtTheMachine) {
  TScanRig rig;
  rig.System.Registry.AddKey(UserKey(u"Alpha"));
  rig.System.Registry.AddKey(UserKey(u"Beta"));
  rig.System.Registry.AddKey(MachineKey(u"Three"));

  rig.RunAndCancel({Section::ObsoleteSoftware}, 1);
  EXPECT_TRUE(rig.Headers().empty());

  rig.RunAndCancel({Section::ObsoleteSoftware}, 2);
  EXPECT_EQ(AllFields(rig.Problems()), AllFields({Empty(kHkeyCurrentUser, u"Alpha")}));
}

TEST(ObsoleteSoftware, TheTreeStaysConsistentWhereverTheScanIsCancelled) {
  TScanRig rig;
  AddManyVendors(rig);
  ExpectConsistentWhereverCancelled(rig, Section::ObsoleteSoftware);
}

}  // namespace corvalt
