// The scan sections: one table that the driver, the scanners and the Sections tree read. Captions, progress
// names and pictures of one section differ between the places that show it.
#pragma once

#include <cstdint>
#include <span>

#include "base/keypaths.h"
#include "core/languagetexts.h"

namespace corvalt {

class TScan;
struct TSection;

using TScanner = void (TScan::*)(const TSection& section);

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

// What the progress dialog says while the section of this name is scanned.
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
