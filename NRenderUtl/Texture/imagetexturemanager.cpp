// The cache of textures of image files.
#include <algorithm>
#include <memory>

#include "NRenderUtl/Texture/ntexture.h"
#include "NRenderUtl/host/hostutl.h"

NuImageTextureManager NuImageTextureManager::m_Instance;

NuImageTextureManager::NuImageTextureManager() = default;
NuImageTextureManager::NuImageTextureManager(const NuImageTextureManager&) = default;
NuImageTextureManager::NuImageTextureManager(NuImageTextureManager&&) noexcept = default;
NuImageTextureManager& NuImageTextureManager::operator=(const NuImageTextureManager&) = default;
NuImageTextureManager& NuImageTextureManager::operator=(NuImageTextureManager&&) noexcept = default;
NuImageTextureManager::~NuImageTextureManager() = default;

NuImageTextureManager* NuImageTextureManager::GetInstance() {
    return &m_Instance;
}

GuStringFileName NuImageTextureManager::BuildFullPath(const GuStringFileName& name) {
    if (name.Exists())
        return name;
    if (const GuStringFileName file = name.Normalized(); file.Exists())
        return file;
    const GuString resources = hostStringSetting("NU_RESOURCES_PATH", GuString());
    if (resources.IsEmpty())
        return {};
    const GuStringFileName file = GuStringFileName(resources + L"\\Images\\" + name).Normalized();
    return file.Exists() ? file : GuStringFileName();
}

NuTexture* NuImageTextureManager::GetNuTexture(const GuStringFileName& name) {
    const GuStringFileName path = BuildFullPath(name);
    if (path.IsEmpty())
        return nullptr;
    const std::optional<std::int64_t> date = hostFileDate(path);
    const auto found = m_entries.find(path);
    if (found == m_entries.end())
        return Insert(path, date);
    Entry& entry = found->second;
    if (entry.date == date)
        return entry.texture.get();
    if (entry.texture->CreateFromImage(path)) {
        m_entries.erase(found);
        return nullptr;
    }
    entry.date = date; // deliberate: variants keep the picture that they were made of
    return entry.texture.get();
}

NuTexture* NuImageTextureManager::Insert(const GuStringFileName& path, std::optional<std::int64_t> date) {
    auto texture = std::make_shared<NuTexture>();
    if (texture->CreateFromImage(path))
        return nullptr;
    return m_entries.emplace(path, Entry{texture, date, {}}).first->second.texture.get();
}

NuTexture* NuImageTextureManager::CreateFromTextureWithReplacedColor(NuTexture* base, unsigned int newColour,
                                                                     unsigned int keepColour) {
    const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                    [=](const auto& entry) { return entry.second.texture.get() == base; });
    if (found == m_entries.end())
        return nullptr;
    auto& variants = found->second.variants;
    // Deliberate: the kept colour does not count. Hosts keep one colour of an image.
    const auto known = std::find_if(variants.begin(), variants.end(),
                                    [=](const auto& variant) { return variant.second == newColour; });
    if (known != variants.end())
        return known->first.get();
    auto texture = std::make_shared<NuTexture>();
    if (texture->CreateWithReplacedColor(*base, newColour, keepColour))
        return nullptr;
    return variants.emplace_back(texture, newColour).first.get();
}
