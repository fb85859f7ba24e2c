// The name of a backup: its creation time as a number, its section in the index and its file at once.
#pragma once

#include <optional>
#include <utility>

#include "base/text.h"
#include "system/systemlocale.h"

namespace corvalt {

inline constexpr TextView kBackupIndexName = u"index.ini";

// How the name of a backup's log ends; the backup's name stands before it.
inline constexpr TextView kBackupLogEnd = u".log";

// The module id that this program's backups carry in the index: the number of its own title.
inline constexpr TextView kCleanerModuleId = u"11001";

// A name that was checked: it can only mean a file directly in the backup folder, other than the index, and a
// section of the index.
class TBackupName {
 public:
  // The time with at most 15 significant digits and the user's decimal sign; with "." where a file or an
  // index can't bear the sign.
  static TBackupName OfTime(TDateTime time, TextView decimalSign);

  // nullopt for a text that is no such name, for example one that would leave the folder.
  static std::optional<TBackupName> FromText(TextView text);

  const Text& Value() const {
    return m_value;
  }

  // The file beside the backup that lists the changes of its repair and of its restores.
  Text LogName() const {
    return m_value + Text(kBackupLogEnd);
  }

  bool operator==(const TBackupName&) const = default;

 private:
  explicit TBackupName(Text value) : m_value(std::move(value)) {
  }

  Text m_value;
};

// The time that a section's name gives with ".", "," or the user's sign, so that a change of locale loses no
// backup. nullopt for a name that is a number under none of them.
std::optional<TDateTime> TimeOfBackupName(TextView name, TextView decimalSign);

}  // namespace corvalt
