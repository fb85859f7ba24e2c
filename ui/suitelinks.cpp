#include "ui/suitelinks.h"

#include <optional>

namespace corvalt {

namespace {

// Pages of the suite's maker, enciphered so that the program file does not show them as plain text.
constexpr std::string_view kHomePage =
    "32151C1F0547ABA4E5EED789DAD0CFB0ABBDA1F183959596726575386B51455F5335212A2572";
constexpr std::string_view kUpgradePage =
    "32151C1F0547ABA4E5EED789DAD0CFB0ABBDA1F183959596726575386B51455F5335212A2572111B150BE1E3EB";

// The first letter's key, and how it grows from letter to letter.
constexpr unsigned kFirstKey = 0x5A;
constexpr unsigned kKeyStep = 7;

std::optional<unsigned> DigitOf(char digit) {
  if (digit >= '0' && digit <= '9')
    return static_cast<unsigned>(digit - '0');
  if (digit >= 'A' && digit <= 'F')
    return static_cast<unsigned>(digit - 'A' + 10);
  return std::nullopt;
}

TextView ProgramFileOf(TSuiteTool tool) {
  switch (tool) {
    case TSuiteTool::DiskCleanup:
      return u"diskcleanup.exe";
    case TSuiteTool::StartupManager:
      return u"startupmanager.exe";
    case TSuiteTool::UninstallManager:
      return u"uninstallmanager.exe";
    case TSuiteTool::ProcessManager:
      return u"processmanager.exe";
  }
  return {};
}

}  // namespace

Text DecodeLink(std::string_view enciphered) {
  Text link;
  if (enciphered.size() % 2 != 0)
    return link;
  for (std::size_t i = 0; i < enciphered.size() / 2; ++i) {
    const std::optional<unsigned> high = DigitOf(enciphered[2 * i]);
    const std::optional<unsigned> low = DigitOf(enciphered[2 * i + 1]);
    if (!high || !low)
      return {};
    const unsigned key = (kFirstKey + static_cast<unsigned>(i) * kKeyStep) & 0xFF;
    link.push_back(static_cast<char16_t>((*high * 16 + *low) ^ key));
  }
  return link;
}

void OpenHelp(TPrograms& programs, const TGlobalVars& vars) {
  // The folder ends in a separator already; the system takes two for one.
  programs.ShowHelpTopic(vars.ProgramFolder + u"\\help.chm", u"/Registry_Cleaner.htm");
}

void OpenHomePage(TPrograms& programs) {
  programs.Execute(u"open", DecodeLink(kHomePage));
}

void OpenUpgradePage(TPrograms& programs) {
  programs.Execute(u"open", DecodeLink(kUpgradePage));
}

void RecommendToFriends(TPrograms& programs) {
  programs.Execute(u"open", u"mailto:?subject= &body=");
}

void StartSuiteTool(TSuiteTool tool, TPrograms& programs, const TGlobalVars& vars) {
  programs.Execute(u"open", vars.ProgramFolder + u"\\" + Text(ProgramFileOf(tool)));
}

}  // namespace corvalt
