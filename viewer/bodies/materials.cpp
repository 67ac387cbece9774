// Colours are those of the surface under white light, as a screen shows them. Of metals they are the
// reflectance at right angles.
#include "viewer/bodies/materials.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/error.h"

namespace nruview {

namespace {

constexpr std::uint32_t kGrey = 0xC8C8C8;

struct MaterialColor {
    std::string_view name;
    std::uint32_t rgb; ///< 0xRRGGBB
};

constexpr MaterialColor kColors[] = {
    {"ABS", 0xDAD6C8},
    {"Aluminium Anodized", 0x9EA4AA},
    {"Aluminium Brushed", 0xE6E8E9},
    {"Aluminium Cast", 0xC6C8CA},
    {"Brass", 0xEEC266},
    {"Bronze", 0xC79A5C},
    {"Carbon Fibre Composite", 0x24262A},
    {"Cast Iron", 0x6E6E72},
    {"Chrome", 0xC6C8C9},
    {"Copper", 0xE89A78},
    {"Glass", 0xC4DCD4},
    {"Nylon Glass Filled", 0x38383C},
    {"PTFE", 0xF0F0EE},
    {"Paint Metallic", 0x3C5A8C},
    {"Painted Matt", 0x789682},
    {"Painted Red", 0xB41818},
    {"Polycarbonate", 0xD2DEE6},
    {"Rubber", 0x262628},
    {"Steel", 0xB8BCC0},
    {"Steel Galvanized", 0xB4BABE},
    {"Steel Polished", 0xC4C6C8},
    {"Steel Stainless", 0xC2C2C0},
    {"Titanium", 0xB4AEA6},
};

std::uint32_t packed(std::uint32_t rgb) {
    return 0xFF000000 | (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

std::map<GuString, _RenderMaterialApperance, GuStringPredicate> wholeTable() {
    NRenderMaterialApperanceHandler::InitDefaultMaterials();
    std::map<GuString, _RenderMaterialApperance, GuStringPredicate> table;
    NRenderMaterialApperanceHandler::GetAllData(table);
    return table;
}

} // namespace

std::vector<std::string> materialNames() {
    std::vector<std::string> names;
    for (const auto& [name, appearance] : wholeTable())
        names.push_back(name.Utf8());
    return names;
}

void printMaterials(std::ostream& out) {
    const auto table = wholeTable();
    std::size_t width = 8;
    for (const auto& [name, appearance] : table)
        width = std::max(width, name.GetLength());
    const auto pad = [&](const GuString& name) { return std::string(width - name.GetLength() + 2, ' '); };
    out << "material" << pad("material") << "metalness  roughness  reflectivity  ambient occlusion\n";
    for (const auto& [name, appearance] : table) {
        char numbers[120];
        std::snprintf(numbers, sizeof numbers, "%-9.3g  %-9.3g  %-12.3g  %.3g\n", appearance.metalness,
                      appearance.roughness, appearance.reflectivity, appearance.ambientOcclusion);
        out << name.Utf8() << pad(name) << numbers;
    }
}

std::string checkedMaterial(const std::string& name) {
    NRenderMaterialApperanceHandler::InitDefaultMaterials();
    const std::string material = name.empty() ? kDefaultMaterial : name;
    _RenderMaterialApperance appearance;
    if (NRenderMaterialApperanceHandler::Get(GuString(material), appearance))
        return material;
    if (!name.empty())
        throw ViewerError("--material", "there is no '" + name + "'; --materials prints the table");
    return {};
}

std::uint32_t materialColor(const std::string& name) {
    const auto found = std::find_if(std::begin(kColors), std::end(kColors),
                                    [&](const MaterialColor& color) { return color.name == name; });
    return packed(found != std::end(kColors) ? found->rgb : kGrey);
}

} // namespace nruview
