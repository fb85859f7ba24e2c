#include "base/devicenames.h"

#include <gtest/gtest.h>

namespace corvalt {

// Naming Files, Paths, and Namespaces, learn.microsoft.com.
TEST(DeviceNames, AreKnownInAnyLetterCaseAndWithAnyExtension) {
  for (const TextView name : {u"CON", u"prn", u"Aux", u"nul", u"NUL.txt", u"nul .txt", u"com1", u"COM9.log",
                              u"LPT1", u"lpt\u00B2", u"COM\u00B9.a.b", u"conin$", u"CONOUT$", u"clock$"})
    EXPECT_TRUE(IsDeviceName(name)) << EncodeUtf8(name);
}

TEST(DeviceNames, AreNotFoundWithinOtherNames) {
  for (const TextView name : {u"", u".", u"null", u"com", u"com0", u"com10", u"console", u"file.nul", u"lpt",
                              u"lpt12", u"com\u2074", u" nul", u"a nul", u"clock"})
    EXPECT_FALSE(IsDeviceName(name)) << EncodeUtf8(name);
}

}  // namespace corvalt
