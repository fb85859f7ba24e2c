#include "suitecontrols/nativexml.h"

#include <pugixml.hpp>
#include <utility>

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

// The parser hands over UTF-8 whatever the document is in, and lets ill-formed sequences pass.
Text Decoded(const char* utf8) {
  return DecodeUtf8(utf8).value_or(Text());
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
  // White space that is all of an element's text belongs to it.
  constexpr unsigned int kOptions = pugi::parse_default | pugi::parse_ws_pcdata_single;
  if (!document->Xml.load_buffer(bytes.data(), bytes.size(), kOptions))
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
