// Walks the scene's tree; every mesh that hangs on it becomes a part.
#include "viewer/readers/surfacescene.h"

#include <assimp/GltfMaterial.h>
#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "viewer/model/vectors.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kMostCorners = std::size_t{1} << 27; ///< a file can name one mesh over and over

Point toPoint(const aiVector3D& v) {
    return {v.x, v.y, v.z};
}

// --- places ------------------------------------------------------------------------------------------------

/// An affine map in double precision, so that long chains of nodes add no rounding of their own.
struct Placement {
    std::array<Point, 3> columns = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    Point origin{};

    Point vector(const Point& v) const { return v[0] * columns[0] + v[1] * columns[1] + v[2] * columns[2]; }
    Point position(const Point& p) const { return vector(p) + origin; }
    double determinant() const { return dot(columns[0], cross(columns[1], columns[2])); }
    bool isMirrored() const { return determinant() < 0.0; }
    /// Normals go with the inverse transpose: here the cofactors, which a flattening map has too.
    Point normal(const Point& n) const {
        const Point turned = n[0] * cross(columns[1], columns[2]) + n[1] * cross(columns[2], columns[0]) +
                             n[2] * cross(columns[0], columns[1]);
        return unit(isMirrored() ? -1.0 * turned : turned);
    }
};

Placement operator*(const Placement& outer, const aiMatrix4x4& m) {
    Placement placed;
    placed.columns = {outer.vector({m.a1, m.b1, m.c1}), outer.vector({m.a2, m.b2, m.c2}),
                      outer.vector({m.a3, m.b3, m.c3})};
    placed.origin = outer.position({m.a4, m.b4, m.c4});
    return placed;
}

// --- nodes -------------------------------------------------------------------------------------------------

struct PointHash {
    std::size_t operator()(const Point& p) const {
        std::size_t hash = 0;
        for (const double x : p)
            hash = (hash ^ std::hash<double>{}(x)) * 0x9E3779B97F4A7C15; // Knuth's golden ratio
        return hash ^ hash >> 32;
    }
};

/// Numbers positions in the order in which they come; equal ones have one number.
class Welder {
public:
    explicit Welder(std::vector<Point>& nodes) : m_nodes(nodes) {}
    std::uint32_t node(const Point& position) {
        const auto [found, isNew] =
            m_numbers.try_emplace(position, static_cast<std::uint32_t>(m_nodes.size()));
        if (isNew)
            m_nodes.push_back(position);
        return found->second;
    }

private:
    std::vector<Point>& m_nodes;
    std::unordered_map<Point, std::uint32_t, PointHash> m_numbers;
};

// --- looks -------------------------------------------------------------------------------------------------

std::uint32_t packed(const aiColor4D& color) {
    const auto byte = [](float value) {
        return static_cast<std::uint32_t>(
            std::lround(255.0f * (value > 0.0f ? std::min(value, 1.0f) : 0.0f)));
    };
    return 0xFF000000 | byte(color.b) << 16 | byte(color.g) << 8 | byte(color.r);
}

/// Colours stay as the file has them. An opaque glTF material's alpha means nothing.
void addLook(const aiMaterial& material, ModelPart& part) {
    aiColor4D color;
    if (material.Get(AI_MATKEY_BASE_COLOR, color) == aiReturn_SUCCESS ||
        material.Get(AI_MATKEY_COLOR_DIFFUSE, color) == aiReturn_SUCCESS)
        part.color = packed(color);
    float opacity = 1.0f;
    aiString alphaMode("BLEND");
    material.Get(AI_MATKEY_OPACITY, opacity);
    material.Get(AI_MATKEY_GLTF_ALPHAMODE, alphaMode);
    if (alphaMode == aiString("BLEND") && std::isfinite(opacity))
        part.opacity = std::clamp(opacity, 0.0f, 1.0f);
}

bool hasTexture(const aiMaterial& material) {
    for (unsigned type = aiTextureType_DIFFUSE; type <= AI_TEXTURE_TYPE_MAX; ++type)
        if (material.GetTextureCount(static_cast<aiTextureType>(type)) != 0)
            return true;
    return false;
}

// --- cells -------------------------------------------------------------------------------------------------

CellType typeOf(unsigned corners) {
    constexpr CellType kTypes[] = {CellType::Line, CellType::Triangle, CellType::Quad};
    return corners <= 4 ? kTypes[corners - 2] : CellType::Polygon;
}

class ModelBuilder {
public:
    ModelBuilder(const aiScene& scene, SceneUse use) : m_scene(scene), m_use(use) {}

    void addTree(const aiNode& node, const Placement& outer);
    Model finish();

private:
    void addMesh(const aiNode& node, const aiMesh& mesh, const Placement& placement);
    void addFace(const aiMesh& mesh, const aiFace& face, const Placement& placement);
    void addCorner(const aiMesh& mesh, unsigned vertex, const Placement& placement);
    void addNote(bool skipped, const char* what);

    const aiScene& m_scene;
    SceneUse m_use;
    Model m_model;
    Welder m_welder{m_model.nodes};
    std::vector<std::uint32_t> m_corners; ///< of the cell being made
    std::size_t m_points = 0;             ///< cells left out
    bool m_hasColors = false, m_hasTextures = false, m_hasFaces = false;
};

void ModelBuilder::addTree(const aiNode& node, const Placement& outer) {
    const Placement placement = outer * node.mTransformation;
    for (unsigned i = 0; i < node.mNumMeshes; ++i)
        if (node.mMeshes[i] < m_scene.mNumMeshes)
            addMesh(node, *m_scene.mMeshes[node.mMeshes[i]], placement);
    for (unsigned i = 0; i < node.mNumChildren; ++i)
        addTree(*node.mChildren[i], placement);
}

void ModelBuilder::addMesh(const aiNode& node, const aiMesh& mesh, const Placement& placement) {
    ModelPart part;
    part.name = oneLine((node.mName.length != 0 ? node.mName : mesh.mName).C_Str());
    part.firstCell = static_cast<std::uint32_t>(m_model.cellCount());
    for (unsigned i = 0; i < mesh.mNumFaces; ++i)
        addFace(mesh, mesh.mFaces[i], placement);
    part.cellCount = static_cast<std::uint32_t>(m_model.cellCount()) - part.firstCell;
    if (part.cellCount == 0)
        return;
    m_hasColors = m_hasColors || mesh.HasVertexColors(0);
    if (m_use.colors && mesh.mMaterialIndex < m_scene.mNumMaterials) {
        const aiMaterial& material = *m_scene.mMaterials[mesh.mMaterialIndex];
        addLook(material, part);
        m_hasTextures = m_hasTextures || hasTexture(material);
    }
    m_model.isSurface = true;
    m_model.parts.push_back(std::move(part));
}

void ModelBuilder::addFace(const aiMesh& mesh, const aiFace& face, const Placement& placement) {
    if (face.mNumIndices < 2) {
        ++m_points;
        return;
    }
    if (m_model.connectivity.size() + face.mNumIndices > kMostCorners)
        throw Refusal("has more than " + std::to_string(kMostCorners) + " corners of faces");
    m_hasFaces = m_hasFaces || face.mNumIndices > 2;
    m_corners.clear();
    for (unsigned i = 0; i < face.mNumIndices; ++i)
        addCorner(mesh, face.mIndices[placement.isMirrored() ? face.mNumIndices - 1 - i : i], placement);
    m_model.addCell(typeOf(face.mNumIndices), m_corners);
}

void ModelBuilder::addCorner(const aiMesh& mesh, unsigned vertex, const Placement& placement) {
    if (vertex >= mesh.mNumVertices || mesh.mVertices == nullptr)
        throw Refusal("face " + std::to_string(m_model.cellCount()) + " uses vertex " +
                      std::to_string(vertex) + " of " + std::to_string(mesh.mNumVertices));
    m_corners.push_back(m_welder.node(placement.position(toPoint(mesh.mVertices[vertex]))));
    if (!m_use.normals)
        return;
    const Point normal =
        mesh.mNormals != nullptr ? placement.normal(toPoint(mesh.mNormals[vertex])) : Point{};
    const bool isOne = std::abs(length(normal) - 1.0) < 1e-3; // neither zero nor NaN
    auto& normals = m_model.cornerNormals;
    normals.push_back(isOne ? std::array{static_cast<float>(normal[0]), static_cast<float>(normal[1]),
                                         static_cast<float>(normal[2])}
                            : std::array<float, 3>{});
}

void ModelBuilder::addNote(bool skipped, const char* what) {
    if (skipped)
        m_model.notes.push_back(std::string(what) + " are not read");
}

Model ModelBuilder::finish() {
    if (m_model.cellCount() == 0)
        throw Refusal("has no faces");
    const auto& normals = m_model.cornerNormals;
    if (std::all_of(normals.begin(), normals.end(),
                    [](const auto& normal) { return normal == std::array<float, 3>{}; }))
        m_model.cornerNormals.clear();
    if (m_points != 0)
        m_model.notes.push_back(std::to_string(m_points) + " single points are left out");
    addNote(m_hasColors, "colours of vertices");
    addNote(m_hasTextures, "textures");
    return std::move(m_model);
}

} // namespace

Model modelOf(const aiScene& scene, SceneUse use) {
    ModelBuilder builder(scene, use);
    if (scene.mRootNode != nullptr)
        builder.addTree(*scene.mRootNode, {});
    return builder.finish();
}

} // namespace nruview::readers
