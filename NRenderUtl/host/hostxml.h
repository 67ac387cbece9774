// XML reader of the host utility library: a read-only document with the few queries that the library needs.
#pragma once

#include <memory>
#include <optional>

#include "NRenderUtl/host/nhost.h"

/// One element of an XmlDocument, valid while the document lives. A default-made element is null.
class XmlElement {
public:
    XmlElement() = default;
    explicit operator bool() const { return m_node != nullptr; }

    /// First child element of that name; null when there is none.
    XmlElement child(const char* name) const;
    /// Next sibling element, whatever its name; null when there is none.
    XmlElement nextSibling() const;
    /// Attribute's text; nothing when it is absent.
    std::optional<GuString> attribute(const char* name) const;

private:
    friend class XmlDocument;
    explicit XmlElement(void* node) : m_node(node) {}
    void* m_node = nullptr; // the parser's own node handle
};

/// A parsed document. Files over 64 MiB and documents that do not parse are refused.
class XmlDocument {
public:
    static std::optional<XmlDocument> load(const GuStringFileName& path);
    static std::optional<XmlDocument> parse(std::string_view text);

    XmlDocument(XmlDocument&&) noexcept;
    XmlDocument& operator=(XmlDocument&&) noexcept;
    ~XmlDocument();

    /// First element of that name in document order, at any depth; null when there is none.
    XmlElement findFirst(const char* name) const;

private:
    struct Impl;
    explicit XmlDocument(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};
