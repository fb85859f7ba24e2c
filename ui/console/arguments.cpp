#include "ui/console/arguments.h"

#include <algorithm>

#include "scan/catalogue.h"

namespace corvalt {

namespace {

bool LooksLikeOption(TextView argument) {
  return argument.starts_with(u"--");
}

bool IsOneOf(TextView option, std::initializer_list<TextView> options) {
  return std::find(options.begin(), options.end(), option) != options.end();
}

void RefuseSecond(const Text& option, bool isFirst) {
  if (!isFirst)
    throw TUsageError(TextId::OptionGivenTwice, option);
}

bool IsSectionCode(std::int32_t code) {
  const auto sections = SectionCatalogue();
  return std::any_of(sections.begin(), sections.end(),
                     [code](const TSection& section) { return section.Code == code; });
}

std::int32_t ParseSectionCode(const Text& text) {
  const std::optional<std::int32_t> code = ParseInteger(text);
  if (!code || !IsSectionCode(*code))
    throw TUsageError(TextId::NoSuchSection, text);
  return *code;
}

}  // namespace

TArguments::TArguments(const std::vector<Text>& arguments, const TKnownOptions& known) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Text& argument = arguments[i];
    const std::size_t equals = argument.find(u'=');
    const Text option = argument.substr(0, equals);
    if (!LooksLikeOption(argument)) {
      m_plain.push_back(argument);
    } else if (IsOneOf(argument, known.Flags)) {
      RefuseSecond(argument, m_flags.insert(argument).second);
    } else if (!IsOneOf(option, known.WithValue)) {
      throw TUsageError(TextId::UnknownOption, argument);
    } else if (equals != Text::npos) {
      AddValue(option, argument.substr(equals + 1));
    } else {
      const bool hasValue = i + 1 < arguments.size() && !LooksLikeOption(arguments[i + 1]);
      AddValue(option, hasValue ? arguments[++i] : Text());
    }
  }
}

void TArguments::AddValue(const Text& option, const Text& value) {
  if (value.empty())
    throw TUsageError(TextId::OptionNeedsValue, option);
  RefuseSecond(option, m_values.emplace(option, value).second);
}

std::optional<Text> TArguments::Value(TextView option) const {
  const auto found = m_values.find(Text(option));
  return found == m_values.end() ? std::nullopt : std::optional<Text>(found->second);
}

void TArguments::RefusePlain() const {
  if (!m_plain.empty())
    throw TUsageError(TextId::UnexpectedArgument, m_plain.front());
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
