#include "tests/support/names.h"

namespace corvalt {

namespace {

std::string Box(const std::string& kind, TextId title, TextView text) {
  return kind + " " + EncodeUtf8(Says(title)) + " | " + EncodeUtf8(text);
}

}  // namespace

Text Says(TextId id) {
  return DecimalText(static_cast<std::int32_t>(id));
}

Text Says(TextId id, TextView argument) {
  return Says(id) + u"(" + Text(argument) + u")";
}

Text Says(TextId id, TextView first, TextView second) {
  return Says(id) + u"(" + Text(first) + u"|" + Text(second) + u")";
}

std::string InformationBox(TextView text) {
  return Box("information", TextId::TitleInformation, text);
}

std::string FailureBox(TextView text) {
  return Box("failure", TextId::TitleError, text);
}

std::string QuestionBox(TextView text) {
  return Box("question", TextId::TitleConfirm, text);
}

}  // namespace corvalt
