#include "ui/console/progressline.h"

namespace corvalt {

void TProgressLine::SetSectionLabel(TextView text) {
  m_section = text;
  Show();
}

void TProgressLine::SetItemLabel(TextView text) {
  m_item = text;
  Show();
}

void TProgressLine::SetOverallPosition(std::int32_t position) {
  m_position = position;
  Show();
}

void TProgressLine::Clear() {
  if (!m_quiet)
    m_console.ShowProgress({});
}

void TProgressLine::Show() {
  if (!m_quiet)
    m_console.ShowProgress(DecimalText(m_position) + u"%  " + m_section + u"  " + m_item);
}

}  // namespace corvalt
