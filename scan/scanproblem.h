// The data of one results-tree node: a section header or a problem.
#pragma once

#include <cstdint>

#include "base/keypaths.h"
#include "base/text.h"

inline constexpr std::int32_t kKindKey = 1;    // the whole key is the problem
inline constexpr std::int32_t kKindValue = 2;  // one value of the key is; section headers carry it too
inline constexpr std::int32_t kKindFile = 3;   // the file whose path stands in KeyPath is

inline constexpr std::int32_t kCheckMarkRepair = 1;
inline constexpr std::int32_t kCheckMarkSkip = 2;

inline constexpr std::int32_t kNoImage = -1;

struct ScanProblem {
  Text KeyPath;    // below the root, beginning with "\"; the file path of kind 3; empty on headers
  Text ValueName;  // empty for the default value, and where no value is meant
  Text ValueData;  // what was found bad
  TRootKey RootKey = kNoRootKey;
  Text Description;  // what is wrong, for the user
  std::int32_t Kind = kKindValue;
  Text SectionCaption;  // on headers; empty on problems
  std::uint32_t ChildCount = 0;
  std::int32_t ImageIndex = kNoImage;
  std::int32_t CheckMark = kCheckMarkRepair;
  Text Extra;
  bool StateFlag1 = false;  // the selected row, shown on three lines
  bool StateFlag2 = false;  // removed by the repair
};

// The full text of the problem's key, root name first. Key paths from the adware catalogue have no leading
// "\" and get their separator here.
Text FullKeyText(const ScanProblem& problem);

// Whether a value name means the key's default value: the empty name, and one NUL, which the MRU scanner
// reads it by.
bool IsDefaultValueName(TextView valueName);
