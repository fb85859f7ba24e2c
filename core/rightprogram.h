// Which of the two programs, the 32-bit or the 64-bit one, belongs to the running Windows.
#pragma once

#include <optional>

#include "base/text.h"
#include "core/languagetexts.h"
#include "system/filesystemprobe.h"

namespace corvalt {

// What to tell the user where this is the 32-bit program on a 64-bit Windows, which sees one half of the
// registered components and takes those of the other half for missing. nullopt where the program is the right
// one.
[[nodiscard]] std::optional<Text> WrongProgramHint(FileSystemProbe& probe, const TLanguageTexts& texts);

}  // namespace corvalt
