#include "ui/console/arguments.h"

#include <algorithm>

#include "scan/catalogue.h"

namespace corvalt {

namespace {

bool LooksLikeOption(TextView argument) {
  return argument.starts_with(u"--");
}

bool IsOneOf(const Text& option, std::initializer_list<TextView> options) {
  return std::find(options.begin(), options.end(), option) != options.end();
}

void RefuseSecond(const Text& option, bool isFirst) {
  if (!isFirst)
    throw TUsageError(option + u" is given twice.");
}

bool IsSectionCode(std::int32_t code) {
  const auto sections = SectionCatalogue();
  return std::any_of(sections.begin(), sections.end(),
                     [code](const TSection& section) { return section.Code == code; });
}

std::int32_t ParseSectionCode(const Text& text) {
  const std::optional<std::int32_t> code = ParseInteger(text);
  if (!code || !IsSectionCode(*code)) {
    throw TUsageError(u"There is no section \"" + text + u"\"; \"corvaltc sections\" lists them.");
  }
  return *code;
}

}  // namespace

TArguments::TArguments(const std::vector<Text>& arguments, const TKnownOptions& known) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Text& argument = arguments[i];
    if (!LooksLikeOption(argument)) {
      m_plain.push_back(argument);
    } else if (IsOneOf(argument, known.Flags)) {
      RefuseSecond(argument, m_flags.insert(argument).second);
    } else if (IsOneOf(argument, known.WithValue)) {
      if (i + 1 == arguments.size() || arguments[i + 1].empty() || LooksLikeOption(arguments[i + 1]))
        throw TUsageError(argument + u" needs a value after it.");
      RefuseSecond(argument, m_values.emplace(argument, arguments[++i]).second);
    } else {
      throw TUsageError(u"Unknown option: " + argument);
    }
  }
}

std::optional<Text> TArguments::Value(TextView option) const {
  const auto found = m_values.find(Text(option));
  return found == m_values.end() ? std::nullopt : std::optional<Text>(found->second);
}

void TArguments::RefusePlain() const {
  if (!m_plain.empty())
    throw TUsageError(u"Unexpected argument: " + m_plain.front());
}

std::vector<std::int32_t> ParseSectionCodes(TextView list) {
  std::vector<std::int32_t> codes;
  for (;;) {
    const std::size_t comma = list.find(u',');
    codes.push_back(ParseSectionCode(Text(list.substr(0, comma))));
    if (comma == TextView::npos)
      return codes;
    list.remove_prefix(comma + 1);
  }
}

}  // namespace corvalt
