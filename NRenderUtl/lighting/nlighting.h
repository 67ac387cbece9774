// Physically based lighting: the table of named material appearances.
#pragma once

#include <map>

#include "NRenderUtl/host/nhost.h"

// --- material table ----------------------------------------------------------------------------------------

/// How a material looks under physically based shading; its colour is the mesh's own. All from 0 to 1.
struct _RenderMaterialApperance {
    float metalness;        ///< 1 for bare metal, 0 for everything else
    float roughness;        ///< 0 mirror to 1 matt
    float ambientOcclusion; ///< share of the surroundings' light that reaches the surface
    float reflectivity;     ///< at right angles to a surface that is not metal
};

/// The process-wide table of material appearances by name. The spelling is the interface's own.
class NRENDERUTL_API NRenderMaterialApperanceHandler {
public:
    NRenderMaterialApperanceHandler();
    NRenderMaterialApperanceHandler(const NRenderMaterialApperanceHandler&);
    NRenderMaterialApperanceHandler& operator=(const NRenderMaterialApperanceHandler&);
    virtual ~NRenderMaterialApperanceHandler();

    /// Reads Resources/NuStudio/Rendering/RenderMaterialApperance.xml under the setting "NU_COMMON_PATH", at
    /// the first call alone: the start-up's. Whatever is missing or malformed leaves the table as it was.
    static void InitDefaultMaterials();
    /// Inserts or overwrites; false for an empty name. Values are not checked.
    static bool Add(const GuString& name, const _RenderMaterialApperance& appearance);
    /// False, with the appearance unchanged, for an empty or unknown name.
    static bool Get(const GuString& name, _RenderMaterialApperance& appearance);
    /// Whether there was such an entry.
    static bool Remove(const GuString& name);
    /// Replaces the map by a copy of the table.
    static void GetAllData(std::map<GuString, _RenderMaterialApperance, GuStringPredicate>& table);

private:
    static std::map<GuString, _RenderMaterialApperance, GuStringPredicate> m_mapApperanceMat;
    static bool m_bDefMatInitialised;
};
