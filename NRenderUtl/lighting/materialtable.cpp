// The table of named material appearances and the file that seeds it.
#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/hostxml.h"
#include "NRenderUtl/lighting/nlighting.h"
#include "NRenderUtl/shaders/startuphook.h"

namespace {

constexpr const char* kMaterialFile = "/Resources/NuStudio/Rendering/RenderMaterialApperance.xml";

[[maybe_unused]] const bool kRegistered =
    registerStartUp(NRenderMaterialApperanceHandler::InitDefaultMaterials);

/// The decimal number of an attribute, as far as its text is one; nothing when it is absent.
std::optional<float> number(const XmlElement& element, const char* attribute) {
    const std::optional<GuString> text = element.attribute(attribute);
    return text ? std::optional(hostWideToFloat(text->c_str())) : std::nullopt;
}

void addMaterial(const XmlElement& material) {
    const XmlElement appearance = material.child("Appearance");
    if (!appearance)
        return;
    const std::optional<GuString> name = material.attribute("Name");
    const std::optional<float> metalness = number(appearance, "Metalness");
    const std::optional<float> roughness = number(appearance, "Roughness");
    const std::optional<float> reflectivity = number(appearance, "Reflectivity");
    const std::optional<float> occlusion = number(appearance, "AmbientOcclusion");
    if (name && metalness && roughness && reflectivity && occlusion)
        NRenderMaterialApperanceHandler::Add(*name, {*metalness, *roughness, *occlusion, *reflectivity});
}

} // namespace

std::map<GuString, _RenderMaterialApperance, GuStringPredicate>
    NRenderMaterialApperanceHandler::m_mapApperanceMat;
bool NRenderMaterialApperanceHandler::m_bDefMatInitialised = false;

NRenderMaterialApperanceHandler::NRenderMaterialApperanceHandler() = default;
NRenderMaterialApperanceHandler::NRenderMaterialApperanceHandler(const NRenderMaterialApperanceHandler&) =
    default;
NRenderMaterialApperanceHandler&
NRenderMaterialApperanceHandler::operator=(const NRenderMaterialApperanceHandler&) = default;
NRenderMaterialApperanceHandler::~NRenderMaterialApperanceHandler() = default;

void NRenderMaterialApperanceHandler::InitDefaultMaterials() {
    if (m_bDefMatInitialised)
        return;
    m_bDefMatInitialised = true; // whatever follows: the file is tried once
    const std::optional<std::string> common = hostSetting("NU_COMMON_PATH");
    if (!common)
        return;
    const GuStringFileName file(GuString(*common) + GuString(kMaterialFile));
    const std::optional<XmlDocument> document = XmlDocument::load(file.Normalized());
    if (!document)
        return;
    // Siblings count whatever they are called.
    for (XmlElement material = document->findFirst("Material"); material; material = material.nextSibling())
        addMaterial(material);
}

bool NRenderMaterialApperanceHandler::Add(const GuString& name, const _RenderMaterialApperance& appearance) {
    if (name.IsEmpty())
        return false;
    m_mapApperanceMat.insert_or_assign(name, appearance);
    return true;
}

bool NRenderMaterialApperanceHandler::Get(const GuString& name, _RenderMaterialApperance& appearance) {
    if (name.IsEmpty())
        return false;
    const auto found = m_mapApperanceMat.find(name);
    if (found == m_mapApperanceMat.end())
        return false;
    appearance = found->second;
    return true;
}

bool NRenderMaterialApperanceHandler::Remove(const GuString& name) {
    return m_mapApperanceMat.erase(name) != 0;
}

void NRenderMaterialApperanceHandler::GetAllData(
    std::map<GuString, _RenderMaterialApperance, GuStringPredicate>& table) {
    if (&table != &m_mapApperanceMat)
        table = m_mapApperanceMat;
}
