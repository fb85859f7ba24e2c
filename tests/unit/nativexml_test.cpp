#include "formats/nativexml.h"

#include <gtest/gtest.h>

namespace corvalt {

namespace {

std::optional<TNativeXml> Parse(std::string_view xml) {
  return TNativeXml::Parse(std::span(reinterpret_cast<const std::uint8_t*>(xml.data()), xml.size()));
}

// The names of an element's children in their order.
std::vector<Text> ChildNames(const TXmlElement& element) {
  std::vector<Text> names;
  for (TXmlElement child = element.FirstChild(); child; child = child.NextSibling())
    names.push_back(child.Name());
  return names;
}

// The text of the root of a document that must parse.
Text RootText(std::string_view xml) {
  const std::optional<TNativeXml> document = Parse(xml);
  EXPECT_TRUE(document) << xml;
  return document ? document->Root().ElementText() : u"not parsed";
}

// A document in UTF-16 with a byte order mark.
std::string InUtf16(TextView xml, bool bigEndian) {
  std::string bytes;
  for (const char16_t unit : u'\uFEFF' + Text(xml)) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes += bigEndian ? std::string{high, low} : std::string{low, high};
  }
  return bytes;
}

}  // namespace

TEST(NativeXml, ElementsComeInDocumentOrder) {
  const std::optional<TNativeXml> document = Parse("<r><b/><a>1</a><b>2</b></r>");
  ASSERT_TRUE(document);

  EXPECT_EQ(document->Root().Name(), u"r");
  EXPECT_EQ(ChildNames(document->Root()), (std::vector<Text>{u"b", u"a", u"b"}));
  EXPECT_FALSE(document->Root().FirstChild().FirstChild());
  EXPECT_FALSE(document->Root().NextSibling());
  EXPECT_FALSE(TXmlElement());
}

TEST(NativeXml, CommentsTextsAndInstructionsAreNoChildren) {
  const std::optional<TNativeXml> document = Parse(
      "<?xml version=\"1.0\"?><!DOCTYPE r><!-- c --><r>t<!-- c --><a/>t<?p i?><![CDATA[t]]><b/>t</r><!-- c "
      "-->");
  ASSERT_TRUE(document);

  EXPECT_EQ(document->Root().Name(), u"r");
  EXPECT_EQ(ChildNames(document->Root()), (std::vector<Text>{u"a", u"b"}));
}

TEST(NativeXml, AnElementsTextKeepsItsBlanks) {
  EXPECT_EQ(RootText("<r> a  b </r>"), u" a  b ");
  EXPECT_EQ(RootText("<r>  </r>"), u"  ");
  EXPECT_EQ(RootText("<r>\t\n</r>"), u"\t\n");
  EXPECT_EQ(RootText("<r></r>"), u"");
  EXPECT_EQ(RootText("<r/>"), u"");
}

TEST(NativeXml, AnElementsTextKeepsTheBlanksBetweenComments) {
  EXPECT_EQ(RootText("<r>a<!-- c --> <!-- d -->b</r>"), u"a b");
}

TEST(NativeXml, AnElementsTextIsWithoutThatOfItsChildren) {
  EXPECT_EQ(RootText("<r>a<c>no</c>b</r>"), u"ab");
}

TEST(NativeXml, MarkedSectionsAndReferencesArePartOfTheText) {
  EXPECT_EQ(RootText("<r>a<![CDATA[<&>]]>b</r>"), u"a<&>b");
  EXPECT_EQ(RootText("<r>&lt;&gt;&amp;&quot;&apos;&#65;&#x42;</r>"), u"<>&\"'AB");
}

TEST(NativeXml, LineEndsAreLineFeeds) {
  EXPECT_EQ(RootText("<r>a\r\nb\rc</r>"), u"a\nb\nc");
}

TEST(NativeXml, DocumentsMayBeInUtf8OrUtf16) {
  EXPECT_EQ(RootText("<r>\xC3\xBC\xF0\x9F\x98\x80</r>"), u"\u00FC\U0001F600");
  EXPECT_EQ(RootText("\xEF\xBB\xBF<r>\xC3\xBC</r>"), u"\u00FC");
  EXPECT_EQ(RootText(InUtf16(u"<r>\u00FC\U0001F600</r>", false)), u"\u00FC\U0001F600");
  EXPECT_EQ(RootText(InUtf16(u"<r>\u00FC\U0001F600</r>", true)), u"\u00FC\U0001F600");
  EXPECT_EQ(RootText("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?><r>\xFC</r>"), u"\u00FC");
}

TEST(NativeXml, WhatIsNotWellFormedDoesNotParse) {
  for (const char* xml : {"", " ", "text", "<", "<r>", "<r", "<r></s>", "</r>", "<r><a></r></a>",
                          "<!-- c -->", "<r><!-- c </r>", "<r><![CDATA[x</r>", "<?xml version=\"1.0\"?>"}) {
    EXPECT_FALSE(Parse(xml)) << xml;
  }
}

TEST(NativeXml, ADocumentHasOneRoot) {
  EXPECT_FALSE(Parse("<r/><s/>"));
  EXPECT_FALSE(Parse("<r></r><r></r>"));
}

// A text that became empty in place of one that can't be read would name something else.
TEST(NativeXml, ATextThatIsNoUnicodeDoesNotParse) {
  EXPECT_FALSE(Parse("<r>\xFC</r>"));
  EXPECT_FALSE(Parse("<r><a><b>x\xC3</b></a></r>"));
  EXPECT_FALSE(Parse("<r><![CDATA[\xED\xA0\x80]]></r>"));
  EXPECT_FALSE(Parse("<r>&#xD800;</r>"));
  EXPECT_FALSE(Parse("<r><\xFC/></r>"));
}

TEST(NativeXml, ADeepDocumentParses) {
  constexpr int kDepth = 100000;
  std::string xml;
  for (int i = 0; i < kDepth; ++i)
    xml += "<a>";
  for (int i = 0; i < kDepth; ++i)
    xml += "</a>";
  const std::optional<TNativeXml> document = Parse(xml);
  ASSERT_TRUE(document);

  int depth = 0;
  for (TXmlElement element = document->Root(); element; element = element.FirstChild())
    ++depth;
  EXPECT_EQ(depth, kDepth);
}

TEST(NativeXml, TheDocumentMayBeMoved) {
  std::optional<TNativeXml> document = Parse("<r>text</r>");
  ASSERT_TRUE(document);
  const TXmlElement root = document->Root();

  const TNativeXml moved = std::move(*document);

  EXPECT_EQ(root.ElementText(), u"text");
  EXPECT_EQ(moved.Root().Name(), u"r");
}

}  // namespace corvalt
