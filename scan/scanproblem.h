// The data of one results-tree node: a section header or a problem.
#pragma once

#include <cstdint>

#include "base/keypaths.h"
#include "base/text.h"

namespace corvalt {

// The numbers stand in the console's JSON.
enum class TProblemKind : std::int32_t {
  Key = 1,    // the whole key is the problem
  Value = 2,  // one value of the key is; section headers carry it too
  File = 3,   // the file whose path is in KeyPath is
};

// The numbers stand in the console's JSON, and are the choices of a row's drop-down list plus one.
enum class TCheckMark : std::int32_t { Repair = 1, Skip = 2 };

inline constexpr std::int32_t kNoImage = -1;

struct ScanProblem {
  Text KeyPath;    // below the root, beginning with "\"; the file path of kind 3; empty on headers
  Text ValueName;  // empty for the default value, and where no value is meant
  Text ValueData;  // what was found bad
  TRootKey RootKey = kNoRootKey;
  Text Description;  // what is wrong, for the user
  TProblemKind Kind = TProblemKind::Value;
  Text SectionCaption;  // on headers; empty on problems
  std::uint32_t ChildCount = 0;
  std::int32_t ImageIndex = kNoImage;
  TCheckMark CheckMark = TCheckMark::Repair;
  Text Extra;  // a second text of a scanner; none sets it today, but it is required, and written to the JSON
  bool StateFlag1 = false;  // the selected row, shown on three lines
  bool StateFlag2 = false;  // removed by the repair
};

// The root's name and the key path after it, exactly as the problem holds them.
Text KeyText(const ScanProblem& problem);

// Where the problem is, for the user: the path of a file, else KeyText.
Text PlaceText(const ScanProblem& problem);

// The full text of the problem's key, root name first. Key paths from the adware catalogue have no leading
// "\" and get their separator here.
Text FullKeyText(const ScanProblem& problem);

}  // namespace corvalt
