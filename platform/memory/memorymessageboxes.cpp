#include "platform/memory/memorymessageboxes.h"

namespace corvalt {

namespace {

std::string NameOf(TMessageKind kind) {
  switch (kind) {
    case TMessageKind::Question:
      return "question";
    case TMessageKind::Failure:
      return "failure";
    default:
      return "information";
  }
}

}  // namespace

TAnswer TMemoryMessageBoxes::ShowMessage(TextView text, TextView title, TMessageKind kind) {
  m_calls.push_back(NameOf(kind) + " " + EncodeUtf8(title) + " | " + EncodeUtf8(text));
  if (OnMessage)
    OnMessage();
  if (kind != TMessageKind::Question)
    return TAnswer::Ok;
  if (Answers.empty())
    return TAnswer::No;
  const TAnswer answer = Answers.front();
  Answers.pop_front();
  return answer;
}

}  // namespace corvalt
