// Surface files through assimp, which sees the file that was loaded and those beside it.
#include <assimp/IOStream.hpp>
#include <assimp/IOSystem.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include <algorithm>
#include <cstring>

#include "viewer/readers/apart.h"
#include "viewer/readers/surfaceformat.h"
#include "viewer/readers/surfacescene.h"

namespace nruview::readers {

namespace {

namespace fs = std::filesystem;

class MemoryFile : public Assimp::IOStream {
public:
    explicit MemoryFile(std::string_view content) : m_content(content) {}
    explicit MemoryFile(std::string&& content) : m_own(std::move(content)), m_content(m_own) {}

    size_t Read(void* buffer, size_t size, size_t count) override {
        const std::size_t whole = size == 0 ? 0 : std::min(count, (m_content.size() - m_place) / size);
        std::memcpy(buffer, m_content.data() + m_place, whole * size);
        m_place += whole * size;
        return whole;
    }
    aiReturn Seek(size_t offset, aiOrigin origin) override {
        const std::size_t from = origin == aiOrigin_SET   ? 0
                                 : origin == aiOrigin_CUR ? m_place
                                                          : m_content.size();
        if (offset > m_content.size() - from)
            return aiReturn_FAILURE;
        m_place = from + offset;
        return aiReturn_SUCCESS;
    }
    size_t Tell() const override { return m_place; }
    size_t FileSize() const override { return m_content.size(); }
    size_t Write(const void*, size_t, size_t) override { return 0; }
    void Flush() override {}

private:
    std::string m_own;
    std::string_view m_content;
    std::size_t m_place = 0;
};

/// The file under a name whose extension tells its format, and files of its folder: materials, buffers.
class FolderFiles : public Assimp::IOSystem {
public:
    FolderFiles(std::string_view content, std::string name, fs::path folder)
        : m_content(content), m_name(std::move(name)), m_folder(std::move(folder)) {}

    bool Exists(const char* name) const override {
        std::error_code error;
        return name == m_name || (isBeside(name) && fs::is_regular_file(m_folder / name, error));
    }
    char getOsSeparator() const override { return '/'; }
    Assimp::IOStream* Open(const char* name, const char*) override {
        if (name == m_name)
            return new MemoryFile(m_content);
        if (!Exists(name))
            return nullptr;
        m_openedOther = true;
        return new MemoryFile(loadFile(m_folder / name));
    }
    void Close(Assimp::IOStream* file) override { delete file; }
    bool openedOther() const { return m_openedOther; }

private:
    /// What a file names lies in its folder or below it.
    static bool isBeside(const fs::path& path) {
        return path.is_relative() && std::find(path.begin(), path.end(), "..") == path.end();
    }

    std::string_view m_content;
    std::string m_name;
    fs::path m_folder;
    bool m_openedOther = false;
};

/// assimp joins lines and adds reasons behind blanks of its own.
std::string reasonOf(const Assimp::Importer& importer) {
    const std::string reason = importer.GetErrorString();
    return reason.empty() ? "cannot be read" : "cannot be read: " + reason;
}

/// assimp knows the keywords in lower case alone.
std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return std::tolower(c); });
    return lower;
}

void compareCounts(std::optional<std::size_t> declared, const aiScene& scene) {
    std::size_t found = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i)
        found += scene.mMeshes[i]->mNumFaces;
    if (declared && *declared != found)
        throw Refusal("has " + std::to_string(found) + " of the " + std::to_string(*declared) +
                      " faces that it announces");
}

/// A part for each run of faces in one colour, as an assembly in one piece has them; not for a surface that
/// is painted face by face.
void colorParts(Model& model, const std::vector<std::uint32_t>& colors) {
    constexpr std::size_t kMostParts = 1000;
    if (model.parts.size() != 1 || colors.size() != model.cellCount())
        return;
    std::vector<ModelPart> parts;
    for (std::uint32_t cell = 0; cell < colors.size() && parts.size() <= kMostParts; ++cell) {
        if (cell == 0 || colors[cell] != colors[cell - 1])
            parts.push_back({model.parts[0].name, cell, 0, colors[cell], 1.0});
        ++parts.back().cellCount;
    }
    if (parts.size() <= kMostParts)
        model.parts = std::move(parts);
    else
        model.notes.push_back("colours of faces are not read");
}

Model import(SurfaceFormat format, std::string_view content, const fs::path& path) {
    const SurfaceFacts facts = checkSurface(format, content);
    if (facts.faces == std::size_t{0})
        throw Refusal("has no faces");
    // A library's faults stay in the child that this runs in.
    std::string lower;
    if (format == SurfaceFormat::AsciiStl && content.find("endfacet") == std::string_view::npos)
        content = lower = lowerCase(content);
    const std::string name = path.stem().string() + "." + extensionOf(format);
    auto* files = new FolderFiles(content, name, path.parent_path());
    Assimp::Importer importer;
    importer.SetIOHandler(files); // and destroys it
    const aiScene* scene = importer.ReadFile(name, 0);
    if (scene == nullptr)
        throw Refusal(reasonOf(importer));
    compareCounts(facts.faces, *scene);
    const bool isObj = format == SurfaceFormat::Obj;
    const bool isStl = format == SurfaceFormat::AsciiStl || format == SurfaceFormat::BinaryStl;
    Model model = modelOf(*scene, {!isStl, isObj ? files->openedOther() : extensionOf(format)[0] == 'g'});
    colorParts(model, facts.faceColors);
    return model;
}

} // namespace

std::optional<Model> readSurface(std::string_view content, const fs::path& path) {
    const auto format = surfaceFormat(content, lowerCase(path.extension().string()));
    if (!format)
        return {};
    return readApart([&] { return import(*format, content, path); }, content.size());
}

} // namespace nruview::readers
