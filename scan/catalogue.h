// The scan sections: one table that the driver, the scanners and the Sections tree read. Captions, progress
// names and pictures of one section differ between the places that show it.
#pragma once

#include <cstdint>
#include <span>

#include "base/keypaths.h"
#include "base/text.h"
#include "core/languagetexts.h"

namespace corvalt {

class TScan;

// Examines what its section is about and reports the problems through the scan, which has added the section's
// header before and ends the section afterwards. A scanner skips what cannot be read, throws only for a
// damaged adware catalogue, and stops between two items once the scan is told to terminate, unless its file
// gives another rule. Called on the scan's thread.
using TScanner = void (*)(TScan& scan);

// One source file each, named like the scanner; the two of filesandfolders.cpp share one.
void ScanShellFolders(TScan& scan);
void ScanFilesAndFolders(TScan& scan);
void ScanAdwareAndSpyware(TScan& scan);
void ScanObsoleteSoftware(TScan& scan);
void ScanCustomControls(TScan& scan);
void ScanFileExtensions(TScan& scan);
void ScanFileAssociations(TScan& scan);
void ScanStartMenu(TScan& scan);
void ScanStartupPrograms(TScan& scan);
void ScanSharedPrograms(TScan& scan);
void ScanSoftwareLocations(TScan& scan);
void ScanAddRemovePrograms(TScan& scan);
void ScanWindowsFonts(TScan& scan);
void ScanHelpAndResources(TScan& scan);
void ScanSoundsAndAppevents(TScan& scan);
void ScanMruLists(TScan& scan);
void ScanDeviceDrivers(TScan& scan);
void ScanWindowsServices(TScan& scan);
void ScanVirtualDevices(TScan& scan);
void ScanArpCache(TScan& scan);

struct TSection {
  std::int32_t Code;     // persisted by the main window and named by corvaltc
  TextView TreeCaption;  // in the Sections tree
  std::int32_t TreeImage;
  TextView ProgressName;   // in the progress dialog
  TextView HeaderCaption;  // in the results tree and the report
  std::int32_t HeaderImage;
  TRootKey HeaderRoot;  // of the header node; 0 where the section spans several roots
  TScanner Scanner;
};

// All sections in the order in which they run, which is also the order of the Sections tree's leaves.
std::span<const TSection> SectionCatalogue();

// The section's code as it stands in a list of ticked sections, between marks that keep "1" from being found
// in "12".
Text SectionToken(TextView code);

// What the progress dialog shows while the section of this name is scanned.
Text ScanningLine(const TLanguageTexts& texts, TextView progressName);

// The Sections tree's two inner nodes, which are no sections.
struct TSectionGroup {
  std::int32_t Code;
  TextView Caption;
  std::int32_t Image;
};
inline constexpr TSectionGroup kMyComputer = {0, u"My Computer", 23};
inline constexpr TSectionGroup kFilesAndFolders = {2, u"Files and Folders", 1};

// Whether the section stands below "Files and Folders" in the Sections tree.
bool IsFilesAndFolders(const TSection& section);

}  // namespace corvalt
