// TNativeXml: a document in memory, read element by element.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include "base/text.h"

namespace corvalt {

// One element, valid as long as its document. An element that does not exist converts to false.
class TXmlElement {
 public:
  TXmlElement() = default;

  explicit operator bool() const {
    return m_node != nullptr;
  }

  Text Name() const;

  // The element's own character data, blanks included, without that of its children.
  Text ElementText() const;

  // Only elements: comments and processing instructions are no children.
  TXmlElement FirstChild() const;
  TXmlElement NextSibling() const;

 private:
  friend class TNativeXml;
  explicit TXmlElement(void* node) : m_node(node) {
  }

  void* m_node = nullptr;
};

class TNativeXml {
 public:
  // nullopt when the bytes are no document with one root element, or when a name or a text of it is no
  // Unicode text.
  static std::optional<TNativeXml> Parse(std::span<const std::uint8_t> bytes);

  TNativeXml(TNativeXml&&) noexcept;
  TNativeXml& operator=(TNativeXml&&) noexcept;
  ~TNativeXml();

  TXmlElement Root() const;

 private:
  struct TDocument;
  explicit TNativeXml(std::unique_ptr<TDocument> document);

  std::unique_ptr<TDocument> m_document;
};

}  // namespace corvalt
