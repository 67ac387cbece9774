// XML reader over pugixml. It expands no entities but the predefined ones and loads nothing that a document
// refers to.
#include "NRenderUtl/host/hostxml.h"

#include <cstdint>
#include <system_error>
#include <utility>

#include <pugixml.hpp>

#include "NRenderUtl/host/paths.h"

namespace {

constexpr std::uintmax_t kMaxXmlBytes = std::uintmax_t{64} << 20;

pugi::xml_node nodeOf(void* handle) {
    return pugi::xml_node(static_cast<pugi::xml_node_struct*>(handle));
}

// Next node in document order; null after the last. A loop, because a document may nest deeper than the
// stack.
pugi::xml_node following(pugi::xml_node node) {
    if (node.first_child())
        return node.first_child();
    while (node && !node.next_sibling())
        node = node.parent();
    return node.next_sibling();
}

bool isReadable(const std::filesystem::path& file) {
    std::error_code error; // which makes the size the largest number
    return std::filesystem::is_regular_file(file, error) &&
           std::filesystem::file_size(file, error) <= kMaxXmlBytes;
}

} // namespace

struct XmlDocument::Impl {
    pugi::xml_document document;
};

XmlElement XmlElement::child(const char* name) const {
    return XmlElement(nodeOf(m_node).child(name).internal_object());
}

XmlElement XmlElement::nextSibling() const {
    pugi::xml_node next = nodeOf(m_node).next_sibling();
    while (next && next.type() != pugi::node_element)
        next = next.next_sibling();
    return XmlElement(next.internal_object());
}

std::optional<GuString> XmlElement::attribute(const char* name) const {
    const pugi::xml_attribute found = nodeOf(m_node).attribute(name);
    return found ? std::optional<GuString>(found.value()) : std::nullopt;
}

XmlDocument::XmlDocument(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
XmlDocument::XmlDocument(XmlDocument&&) noexcept = default;
XmlDocument& XmlDocument::operator=(XmlDocument&&) noexcept = default;
XmlDocument::~XmlDocument() = default;

std::optional<XmlDocument> XmlDocument::load(const GuStringFileName& path) {
    const std::filesystem::path file = hostPath(path);
    auto impl = std::make_unique<Impl>();
    if (!isReadable(file) || !impl->document.load_file(file.c_str()))
        return std::nullopt;
    return XmlDocument(std::move(impl));
}

std::optional<XmlDocument> XmlDocument::parse(std::string_view text) {
    if (text.size() > kMaxXmlBytes)
        return std::nullopt;
    auto impl = std::make_unique<Impl>();
    if (!impl->document.load_buffer(text.data(), text.size()))
        return std::nullopt;
    return XmlDocument(std::move(impl));
}

XmlElement XmlDocument::findFirst(const char* name) const {
    const std::string_view wanted(name);
    for (pugi::xml_node node = m_impl->document.first_child(); node; node = following(node))
        if (node.type() == pugi::node_element && wanted == node.name())
            return XmlElement(node.internal_object());
    return {};
}
