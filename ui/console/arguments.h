// The arguments of a command, taken apart.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "base/text.h"
#include "system/systemerror.h"

namespace corvalt {

// Wrong usage; the message is the line that the user is told.
class TUsageError : public TProgramException {
 public:
  using TProgramException::TProgramException;
};

// Options that a command knows, by name with the leading "--".
struct TKnownOptions {
  std::initializer_list<TextView> Flags;
  std::initializer_list<TextView> WithValue;  // the next argument is the value
};

class TArguments {
 public:
  // Throws TUsageError for an unknown or repeated option and for a missing value. A value never begins with
  // "--".
  TArguments(const std::vector<Text>& arguments, const TKnownOptions& known);

  bool Has(TextView flag) const {
    return m_flags.contains(Text(flag));
  }
  std::optional<Text> Value(TextView option) const;

  // What is no option and no value of one.
  const std::vector<Text>& Plain() const {
    return m_plain;
  }

  // Throws TUsageError when there is any.
  void RefusePlain() const;

 private:
  std::set<Text> m_flags;
  std::map<Text, Text> m_values;
  std::vector<Text> m_plain;
};

// The codes of "1,21,100". Throws TUsageError for what is no section's code.
std::vector<std::int32_t> ParseSectionCodes(TextView list);

}  // namespace corvalt
