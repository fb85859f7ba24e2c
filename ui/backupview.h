// The viewer of a backup's file: its text as a text box takes it.
#pragma once

#include <cstdint>
#include <span>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

struct TBackupView {
  Text Caption;
  Text Content;
};

// The whole file, read in its code page (see CodePageOfFile): every line ends with CR LF, the only one that
// breaks a line in a text box, and a NUL, which would end the text there, is shown as U+2400.
Text BackupViewText(std::span<const std::uint8_t> bytes, TLocale& locale);

// Where the Close button stands in a window of this width; pixels.
int CenteredLeft(int windowWidth, int buttonWidth);

}  // namespace corvalt
