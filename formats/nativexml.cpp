#include "formats/nativexml.h"

#include <pugixml.hpp>
#include <utility>

namespace corvalt {

namespace {

pugi::xml_node NodeOf(void* node) {
  return pugi::xml_node(static_cast<pugi::xml_node_struct*>(node));
}

void* FirstElementFrom(pugi::xml_node node) {
  while (node && node.type() != pugi::node_element) {
    node = node.next_sibling();
  }
  return node.internal_object();
}

// The parser hands over UTF-8 whatever the document is in, but lets ill-formed sequences and references to
// surrogates pass. A text that can't be read must not become another one, so that such a document is refused.
class TUnicodeCheck final : public pugi::xml_tree_walker {
  bool for_each(pugi::xml_node& node) override {
    return DecodeUtf8(node.name()).has_value() && DecodeUtf8(node.value()).has_value();
  }
};

// For the texts of a document that passed the check.
Text Decoded(const char* utf8) {
  return DecodeUtf8(utf8).value();
}

// The parser accepts one root after another.
bool HasOneRoot(const pugi::xml_document& document) {
  return FirstElementFrom(document.document_element().next_sibling()) == nullptr;
}

}  // namespace

struct TNativeXml::TDocument {
  pugi::xml_document Xml;
};

Text TXmlElement::Name() const {
  return Decoded(NodeOf(m_node).name());
}

Text TXmlElement::ElementText() const {
  Text text;
  for (const pugi::xml_node child : NodeOf(m_node).children()) {
    const bool isText = child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata;
    if (isText)
      text += Decoded(child.value());
  }
  return text;
}

TXmlElement TXmlElement::FirstChild() const {
  return TXmlElement(FirstElementFrom(NodeOf(m_node).first_child()));
}

TXmlElement TXmlElement::NextSibling() const {
  return TXmlElement(FirstElementFrom(NodeOf(m_node).next_sibling()));
}

std::optional<TNativeXml> TNativeXml::Parse(std::span<const std::uint8_t> bytes) {
  auto document = std::make_unique<TDocument>();
  // Blanks belong to an element's text, also where they are all of it or stand between two comments.
  constexpr unsigned int kOptions = pugi::parse_default | pugi::parse_ws_pcdata;
  if (!document->Xml.load_buffer(bytes.data(), bytes.size(), kOptions) || !HasOneRoot(document->Xml))
    return std::nullopt;
  TUnicodeCheck unicodeCheck;
  if (!document->Xml.traverse(unicodeCheck))
    return std::nullopt;
  return TNativeXml(std::move(document));
}

TNativeXml::TNativeXml(std::unique_ptr<TDocument> document) : m_document(std::move(document)) {
}
TNativeXml::TNativeXml(TNativeXml&&) noexcept = default;
TNativeXml& TNativeXml::operator=(TNativeXml&&) noexcept = default;
TNativeXml::~TNativeXml() = default;

TXmlElement TNativeXml::Root() const {
  return TXmlElement(m_document->Xml.document_element().internal_object());
}

}  // namespace corvalt
