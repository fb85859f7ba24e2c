#include "tests/support/names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "scan/catalogue.h"
#include "tests/support/scanrig.h"

namespace corvalt {

TEST(Names, SectionsHaveTheCatalogueCodes) {
  std::vector<std::pair<std::int32_t, Text>> named = {
      {Section::RegistryIntegrity, u"Registry Integrity"},
      {Section::FilesOfLocalMachine, u"HKEY_LOCAL_MACHINE"},
      {Section::FilesOfCurrentUser, u"HKEY_CURRENT_USER"},
      {Section::FilesOfUsers, u"HKEY_USERS"},
      {Section::AdwareAndSpyware, u"Adware and Spyware"},
      {Section::ObsoleteSoftware, u"Obsolete Software"},
      {Section::CustomControls, u"Custom Controls"},
      {Section::FileExtensions, u"File Extensions"},
      {Section::FileAssociations, u"File Associations"},
      {Section::StartMenu, u"Start Menu"},
      {Section::StartupPrograms, u"Startup Programs"},
      {Section::SharedPrograms, u"Shared Programs"},
      {Section::SoftwareLocations, u"Software Locations"},
      {Section::AddRemovePrograms, u"Add/Remove Programs"},
      {Section::WindowsFonts, u"Windows Fonts"},
      {Section::HelpAndResources, u"Help and Resources"},
      {Section::SoundsAndAppevents, u"Sounds and Appevents"},
      {Section::MruLists, u"MRU and History Lists"},
      {Section::DeviceDrivers, u"Device Drivers"},
      {Section::WindowsServices, u"Windows Services"},
      {Section::VirtualDevices, u"Virtual Devices"},
      {Section::ArpCache, u"ARP Cache"},
  };
  std::vector<std::pair<std::int32_t, Text>> catalogue;
  for (const TSection& section : SectionCatalogue())
    catalogue.emplace_back(section.Code, section.TreeCaption);
  EXPECT_EQ(catalogue, named);
}

TEST(Names, TextsAreThoseOfTheNumberedLanguage) {
  const TLanguageTexts texts = NumberedTexts();
  EXPECT_EQ(Says(TextId::EmptyKey), LanguageText(texts, TextId::EmptyKey));
  EXPECT_EQ(Says(TextId::MissingIcon, u"a"), LanguageText(texts, TextId::MissingIcon, u"a"));
  EXPECT_EQ(Says(TextId::BrokenVerb, u"a", u"b"), LanguageText(texts, TextId::BrokenVerb, u"a", u"b"));
}

}  // namespace corvalt
