// The quick way to measure a text against the system's own.
#include <gtest/gtest.h>

#include "ui/windows/gdi.h"

namespace corvalt {

namespace {

class TextMeter : public testing::TestWithParam<bool> {
 protected:
  // As the system measures it in the same font.
  int SystemWidth(TextView text) const {
    const TWindowDc dc(nullptr);
    const TSelected font(dc.Get(), m_meter.Font());
    return static_cast<int>(MeasureTextIn(dc.Get(), text).cx);
  }

  const TTextMeter m_meter{TScale(), GetParam()};
};

INSTANTIATE_TEST_SUITE_P(RegularAndBold, TextMeter, testing::Bool());

}  // namespace

TEST_P(TextMeter, EveryPairOfAsciiCharactersIsAsWideAsTheSystemSays) {
  for (char16_t first = u' '; first < 0x7F; ++first) {
    for (char16_t second = u' '; second < 0x7F; ++second) {
      const Text pair = {first, second};
      ASSERT_EQ(m_meter.Width(pair), SystemWidth(pair)) << EncodeUtf8(pair);
    }
  }
}

TEST_P(TextMeter, TextsOfEveryKindAreAsWideAsTheSystemSays) {
  for (const Text& text : {Text(), Text(u"\\Software\\Vendor\\Program Files (x86)\\module.dll"),
                           Text(u"Pr\u00FCfung \u0429\u0416"), Text(u"a\u6F22b"), Text(u"\U0001F600"),
                           Text(1, char16_t{0xD800}), Text(5000, u'W')})
    EXPECT_EQ(m_meter.Width(text), SystemWidth(text));
}

TEST_P(TextMeter, EveryUnitOfTheUsualScriptsIsAsWideAsTheSystemSays) {
  for (char16_t unit = 0xA0; unit < 0x2430; ++unit) {
    const Text text = {u'W', unit, unit, u'i'};
    ASSERT_EQ(m_meter.Width(text), SystemWidth(text)) << static_cast<int>(unit);
  }
}

TEST_P(TextMeter, ALineIsAsHighAsTheFont) {
  const TWindowDc dc(nullptr);
  const TSelected font(dc.Get(), m_meter.Font());
  EXPECT_EQ(m_meter.Height(), MeasureTextIn(dc.Get(), u"...").cy);
}

}  // namespace corvalt
