// The name of a backup: its creation time as a number, its section in the index and its file at once.
#pragma once

#include <optional>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

// The time with at most 15 significant digits and the user's decimal sign; with "." where a file or an index
// can't bear the sign.
Text BackupNameOf(TDateTime time, TextView decimalSign);

// The time that a name says with ".", "," or the user's sign, so that a change of locale loses no backup.
// Nothing for a name that is a number under none of them.
std::optional<TDateTime> TimeOfBackupName(TextView name, TextView decimalSign);

// Whether the name can only mean a file directly in the backup folder, other than the index: no separator,
// drive, stream or wildcard in it, and no blank or dot at its end, which Windows drops.
bool IsPlainFileName(TextView name);

}  // namespace corvalt
