#include <gtest/gtest.h>

#include "core/globals.h"
#include "platform/windows/windowsapi.h"
#include "platform/windows/windowssystem.h"
#include "tests/contract/windows/childprocess.h"

namespace corvalt {

namespace {

constexpr TextView kExpectedVariable = u"CORVALT_EXPECTED_VERSION";

// "4.10 95 98" for a version of the 95 family named "98".
Text Described(const TSystemVersion& version) {
  return DecimalText(version.Major) + u"." + DecimalText(version.Minor) +
         (version.Is95Family ? u" 95 " : u" nt ") + WindowsVersionNameOf(version);
}

// Wine's "Version" setting, put back at the end.
class TWineVersion {
 public:
  explicit TWineVersion(TextView version) : m_store(m_registry.CreateStore(TRegistryAccess::Full)) {
    EXPECT_TRUE(m_store->OpenKey(u"\\Software\\Wine", true));
    m_existed = m_store->ValueExists(u"Version");
    m_before = m_store->ReadString(u"Version");
    EXPECT_TRUE(m_store->WriteString(u"Version", version));
  }
  ~TWineVersion() {
    if (m_existed) {
      m_store->WriteString(u"Version", m_before);
    } else {
      m_store->DeleteValue(u"Version");
    }
  }
  TWineVersion(const TWineVersion&) = delete;
  TWineVersion& operator=(const TWineVersion&) = delete;

 private:
  TWindowsRegistry m_registry;
  std::unique_ptr<RegistryStore> m_store;
  bool m_existed = false;
  Text m_before;
};

// Run by the test below, in a process that begins under the version.
TEST(VersionContract, DISABLED_InChild) {
  TWindowsSystem system;
  EXPECT_EQ(Described(system.Machine.GetVersion()), system.Probe.GetEnvironmentVariable(kExpectedVariable));
}

TEST(VersionContract, TheSystemsAnswerGivesTheVersionsName) {
  // The manifest of this program names no Windows, so that those after 8 say that they are 8.
  const struct {
    TextView Setting;
    TextView Expected;
  } cases[] = {
      {u"nt351", u"3.51 nt nt3.51"}, {u"win95", u"4.0 95 95"},    {u"nt40", u"4.0 nt nt4.0"},
      {u"win98", u"4.10 95 98"},     {u"winme", u"4.90 95 me"},   {u"win2k", u"5.0 nt 2000"},
      {u"winxp", u"5.1 nt xp"},      {u"winxp64", u"5.2 nt "},    {u"vista", u"6.0 nt vista"},
      {u"win7", u"6.1 nt vista"},    {u"win81", u"6.2 nt vista"},
  };
  for (const auto& each : cases) {
    const TWineVersion version(each.Setting);
    SetEnvironmentVariableW(Wide(Text(kExpectedVariable)), Wide(Text(each.Expected)));
    EXPECT_EQ(RunTestInChild(u"VersionContract.DISABLED_InChild"), 0) << EncodeUtf8(each.Setting);
  }
  SetEnvironmentVariableW(Wide(Text(kExpectedVariable)), nullptr);
}

}  // namespace

}  // namespace corvalt
