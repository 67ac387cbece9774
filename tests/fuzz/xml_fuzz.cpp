// Any bytes as an XML document, walked as the reader of a table of materials walks it.
#include <cstddef>
#include <cstdint>

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/hostxml.h"

namespace {

// Keeps the optimizer from dropping what was read.
volatile float g_sum;

void readRow(const XmlElement& row) {
    const XmlElement appearance = row.child("Appearance");
    const std::optional<GuString> name = row.attribute("Name");
    if (!appearance || !name || name->IsEmpty())
        return;
    for (const char* value : {"Metalness", "Roughness", "Reflectivity", "AmbientOcclusion"})
        if (const std::optional<GuString> text = appearance.attribute(value))
            g_sum = g_sum + hostWideToFloat(text->c_str());
    // What came from the document is well-formed text: it survives the way out and back.
    if (hostWiden(name->Utf8()) != name->Wide())
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto document = XmlDocument::parse({reinterpret_cast<const char*>(data), size});
    if (!document)
        return 0;
    for (XmlElement row = document->findFirst("Material"); row; row = row.nextSibling())
        readRow(row);
    return 0;
}
