// Programs made of the catalogue's stages in other ways.
#include "NRenderUtl/shaders/meshprograms.h"

#include <map>

#include "NRenderUtl/shaders/shadercatalogue.h"

void defineLights(std::vector<std::string>& defines, const LightKinds& lights) {
    if (lights.count > 0)
        defines.push_back("LIGHTS " + std::to_string(lights.count));
    if (!lights.attenuated)
        defines.push_back("NO_ATTENUATION");
    if (lights.plain)
        defines.push_back("PLAIN_LIGHTS");
}

NShaderProgram& elementMeshProgram(const MeshProgramVariant& variant) {
    struct Entry {
        bool tried = false;
        ComposedProgram program;
    };
    static std::map<MeshProgramVariant, Entry> entries;
    Entry& entry = entries[variant];
    if (!entry.tried && IsFastRendererEnabled()) {
        entry.tried = true;
        SourceChanges changes{{"ELEMENT_ATTRIBUTE"}, variant.switches, variant.block};
        if (!variant.highlights)
            changes.defines.push_back("NO_HIGHLIGHTS");
        defineLights(changes.defines, variant.lights);
        if (variant.cells)
            changes.defines.push_back("BAND_CELLS");
        if (variant.flatShade && variant.lights.plain && !variant.highlights)
            changes.defines.push_back("FLAT_SHADE");
        if (variant.windingNormals)
            changes.defines.push_back("WINDING_NORMALS");
        entry.program.build(RenderShaderMesh, changes);
    }
    return entry.program;
}
