// The arguments of a command, taken apart.
#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "base/text.h"
#include "core/languageids.h"

namespace corvalt {

// Wrong usage; the text, with its argument, is the line that the user is told.
struct TUsageError : std::exception {
  explicit TUsageError(TextId id, Text argument = {}) : Id(id), Argument(std::move(argument)) {
  }

  TextId Id;
  Text Argument;
};

// Options that a command knows, by name with the leading "--".
struct TKnownOptions {
  std::initializer_list<TextView> Flags;
  std::initializer_list<TextView> WithValue;  // "--name VALUE" or "--name=VALUE"
};

class TArguments {
 public:
  // Throws TUsageError for an unknown or repeated option and for a missing value. A value after its option
  // never begins with "--"; behind "=" it may.
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
  void AddValue(const Text& option, const Text& value);

  std::set<Text> m_flags;
  std::map<Text, Text> m_values;
  std::vector<Text> m_plain;
};

// The codes of "1,21,100". Throws TUsageError for what is no section's code.
std::vector<std::int32_t> ParseSectionCodes(TextView list);

}  // namespace corvalt
