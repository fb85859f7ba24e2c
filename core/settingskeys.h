// Where the suite and this module keep their settings: keys and value names below HKEY_CURRENT_USER.
#pragma once

#include "base/text.h"

namespace corvalt {

// The suite's, which its other modules read and write too.
inline constexpr TextView kSuiteKey = u"\\SOFTWARE\\TessalySoft\\Tessaly Utilities";
inline constexpr TextView kLanguageValue = u"Language";
inline constexpr TextView kSkinValue = u"Skin";
inline constexpr TextView kSuiteSettingsKey = u"\\Software\\TessalySoft\\Tessaly Utilities\\Settings";
inline constexpr TextView kAvailableModulesKey =
    u"\\Software\\TessalySoft\\Tessaly Utilities\\Settings\\AvailableModules";

// This module's own: everything that it stores lies below the first.
inline constexpr TextView kCleanerKey = u"\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt";
inline constexpr TextView kCleanerSettingsKey =
    u"\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Settings";
inline constexpr TextView kIgnoreListKey = u"\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\IgnoreList";
inline constexpr TextView kSectionsKey = u"\\Software\\TessalySoft\\Tessaly Utilities\\Corvalt\\Sections";

}  // namespace corvalt
