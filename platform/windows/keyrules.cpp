#include "platform/windows/keyrules.h"

#include "base/limits.h"

namespace corvalt {

bool IsPlainPath(TextView path) {
  if (path.size() < 2 || path.front() != u'\\')
    return false;
  std::size_t nameLength = 0;
  for (const char16_t unit : path.substr(1)) {
    const bool isSeparator = unit == u'\\';
    if (unit == u'\0' || (isSeparator && nameLength == 0) || nameLength > kLongestKeyName)
      return false;
    nameLength = isSeparator ? 0 : nameLength + 1;
  }
  return nameLength != 0 && nameLength <= kLongestKeyName;
}

std::optional<Text> SystemPath(TextView keyPath) {
  if (IsPlainPath(keyPath))
    return Text(keyPath.substr(1));
  const std::optional<TParsedKeyPath> parsed = ParseKeyPath(keyPath);
  return parsed ? JoinNames(parsed->Names) : std::nullopt;
}

std::optional<Text> JoinNames(const std::vector<Text>& names) {
  Text path;
  for (const Text& name : names) {
    if (HoldsNul(name) || name.size() > kLongestKeyName)
      return std::nullopt;
    if (!path.empty())
      path += u'\\';
    path += name;
  }
  return path;
}

std::optional<TextView> SystemValueName(TextView name) {
  const TextView stored = StoredValueName(name);
  if (HoldsNul(stored))
    return std::nullopt;
  return stored;
}

TRawResult SystemValueOf(TextView keyPath, TextView name, TSystemValue& value) {
  std::optional<Text> path = SystemPath(keyPath);
  if (!path)
    return TRawResult::Failed;
  const std::optional<TextView> systemName = SystemValueName(name);
  if (!systemName)
    return TRawResult::Missing;
  value = {*std::move(path), Text(*systemName)};
  return TRawResult::Done;
}

bool IsGone(LSTATUS status) {
  return status == ERROR_KEY_DELETED || status == ERROR_INVALID_HANDLE;
}

TRawResult RawResultOf(LSTATUS status) {
  switch (status) {
    case ERROR_SUCCESS:
      return TRawResult::Done;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_KEY_DELETED:
      return TRawResult::Missing;
    case ERROR_ACCESS_DENIED:
      return TRawResult::Denied;
    case ERROR_CHILD_MUST_BE_VOLATILE:
      return TRawResult::MustBeVolatile;
    default:
      return TRawResult::Failed;
  }
}

}  // namespace corvalt
