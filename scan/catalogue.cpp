#include "scan/catalogue.h"

#include <array>

#include "scan/threadscan.h"

namespace corvalt {

namespace {

// The adware section has the largest code and runs fifth.
constexpr std::array kSections = std::to_array<TSection>({
    // code, tree caption and image, progress name, header caption, image and root, scanner
    {1, u"Registry Integrity", 0, u"Registry Integrity", u"Registry Integrity", 0, kHkeyCurrentUser,
     &ScanShellFolders},
    {21, u"HKEY_LOCAL_MACHINE", 2, u"Files and Folders - HKEY_LOCAL_MACHINE",
     u"HKEY_LOCAL_MACHINE - Files and Folders", 1, kHkeyLocalMachine, &ScanFilesAndFolders},
    {22, u"HKEY_CURRENT_USER", 3, u"Files and Folders - HKEY_CURRENT_USER",
     u"HKEY_CURRENT_USER - Files and Folders", 1, kHkeyCurrentUser, &ScanFilesAndFolders},
    {23, u"HKEY_USERS", 4, u"Files and Folders - HKEY_USERS", u"HKEY_USERS - Files and Folders", 1,
     kHkeyUsers, &ScanFilesAndFolders},
    {100, u"Adware and Spyware", 22, u"Spyware and Virus", u"Adware and Spyware", 22, kNoRootKey,
     &ScanAdwareAndSpyware},
    {3, u"Obsolete Software", 5, u"Obsolete Software", u"Obsolete software", 5, kNoRootKey,
     &ScanObsoleteSoftware},
    {4, u"Custom Controls", 6, u"Custom Controls", u"Custom Controls", 6, kNoRootKey, &ScanCustomControls},
    {5, u"File Extensions", 7, u"File Extensions", u"File Extensions", 7, kNoRootKey, &ScanFileExtensions},
    {6, u"File Associations", 8, u"File Associations", u"File Associations", 8, kHkeyClassesRoot,
     &ScanFileAssociations},
    {7, u"Start Menu", 9, u"Start Menu", u"Start Menu", 9, kNoRootKey, &ScanStartMenu},
    {8, u"Startup Programs", 10, u"Startup Programs", u"Startup programs", 10, kNoRootKey,
     &ScanStartupPrograms},
    {9, u"Shared Programs", 11, u"Shared Programs", u"Shared Programs", 11, kNoRootKey, &ScanSharedPrograms},
    {10, u"Software Locations", 12, u"Software Locations", u"Software Locations", 12, kNoRootKey,
     &ScanSoftwareLocations},
    {11, u"Add/Remove Programs", 13, u"Add/Remove Programs", u"Add/Remove Programs", 13, kHkeyLocalMachine,
     &ScanAddRemovePrograms},
    {12, u"Windows Fonts", 14, u"Windows Fonts", u"Windows Fonts", 14, kNoRootKey, &ScanWindowsFonts},
    {13, u"Help and Resources", 15, u"Help and Resources", u"Help and Resources", 15, kNoRootKey,
     &ScanHelpAndResources},
    {14, u"Sounds and Appevents", 16, u"Sounds and Appevents", u"Sounds and Appevents", 1, kHkeyCurrentUser,
     &ScanSoundsAndAppevents},
    {15, u"MRU and History Lists", 17, u"MRU and History Lists", u"MRU and History Lists", 17, kNoRootKey,
     &ScanMruLists},
    {16, u"Device Drivers", 18, u"Device Drivers", u"Device Drivers", 18, kNoRootKey, &ScanDeviceDrivers},
    {17, u"Windows Services", 19, u"Windows Services", u"Windows Services", 17, kHkeyLocalMachine,
     &ScanWindowsServices},
    {18, u"Virtual Devices", 20, u"Virtual Devices", u"Virtual Devices", 20, kHkeyLocalMachine,
     &ScanVirtualDevices},
    {19, u"ARP Cache", 25, u"ARP Cache", u"ARP Cache", 22, kNoRootKey, &ScanArpCache},
});

}  // namespace

std::span<const TSection> SectionCatalogue() {
  return kSections;
}

Text SectionToken(TextView code) {
  return u"." + Text(code) + u".";
}

Text ScanningLine(const TLanguageTexts& texts, TextView progressName) {
  return PlainLanguageText(texts, TextId::ScanningSection) + u" " + Text(progressName) + u"...";
}

bool IsFilesAndFolders(const TSection& section) {
  return section.Scanner == &ScanFilesAndFolders;
}

}  // namespace corvalt
