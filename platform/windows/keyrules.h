// How paths of keys and names of values are handed to the system, and what its error codes mean here.
#pragma once

#include <optional>
#include <vector>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/rawregistry.h"

namespace corvalt {

// Whether a path is from the root and written as the system takes it, which makes taking it apart
// superfluous: no doubled or trailing separator, no NUL, no name that is too long.
bool IsPlainPath(TextView path);

// A path from the root as the system takes it, without the leading "\\". nullopt for a path that opens no
// key.
std::optional<Text> SystemPath(TextView keyPath);

// Joins names with "\". nullopt when a name holds a NUL, which no routine can pass on, or is too long for a
// key.
std::optional<Text> JoinNames(const std::vector<Text>& names);

// A value name as the routines take it: a name of one NUL is the default value. nullopt for a name that holds
// a NUL otherwise: the system would cut it and take another value.
std::optional<TextView> SystemValueName(TextView name);

// A value's key path and name as the system takes them.
struct TSystemValue {
  Text KeyPath;  // as SystemPath
  Text Name;     // as SystemValueName
};

// Done with the value; else Failed for a path that opens no key, or Missing for a name that no value can
// have.
TRawResult SystemValueOf(TextView keyPath, TextView name, TSystemValue& value);

TRawResult RawResultOf(LSTATUS status);

// Whether the error means that the key behind a handle was deleted, or the handle closed.
bool IsGone(LSTATUS status);

}  // namespace corvalt
