// Glyphs after superquadrics (Barr, "Superquadrics and Angle-Preserving Transformations", 1981): the closed
// surface |x/a|^n + |y/b|^n + |z/c|^n = 1, and the planar mesh inside |x/a|^n + |y/b|^n = 1.
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "NRenderUtl/host/hostmath.h"
#include "NRenderUtl/mesh/hostarray.h"
#include "NRenderUtl/mesh/nmesh.h"

namespace {

constexpr double kHalfPi = 1.57079632679489661923;
constexpr double kThinnest = 1e-12; ///< of the longest semi-axis, for normals: a flat glyph has finite ones

/// Powers |cos p|^(2/n) at the angles p of a quadrant, and those that the normals take, ^(n - 1). The ends
/// are exact, so that quadrants meet on the axes; sines are the cosines backwards.
class Quadrant {
public:
    static std::optional<Quadrant> make(int n, int steps) {
        Quadrant made(steps);
        made.m_powers = hostArray<Powers>(static_cast<std::size_t>(steps) + 1);
        if (!made.m_powers)
            return std::nullopt;
        for (int i = 0; i <= steps; ++i) {
            const double cosine = i == 0 ? 1.0 : i == steps ? 0.0 : std::cos(i * kHalfPi / steps);
            made.m_powers[i] = {std::pow(cosine, 2.0 / n), std::pow(cosine, 2.0 * (n - 1) / n)};
        }
        return made;
    }

    int steps() const { return m_steps; }
    int ringSize() const { return 4 * m_steps; }

    /// A point of the unit shape's section, or the gradient there (not normalised).
    struct Section {
        double x, y;
    };
    Section pointAt(int j) const { return around(j, &Powers::coordinate); }
    Section gradientAt(int j) const { return around(j, &Powers::gradient); }

private:
    struct Powers {
        double coordinate, gradient;
    };
    explicit Quadrant(int steps) : m_steps(steps) {}

    /// Vertex j of the whole turn, counter-clockwise from +x.
    Section around(int j, double Powers::*power) const {
        const int i = j % m_steps;
        const double c = m_powers[i].*power, s = m_powers[m_steps - i].*power;
        switch (j / m_steps) {
        case 0:
            return {c, s};
        case 1:
            return {-s, c};
        case 2:
            return {-c, -s};
        default:
            return {s, -c};
        }
    }

    int m_steps;
    HostArray<Powers> m_powers;
};

int quadrantSteps(int resolution) {
    return std::max(resolution / 4, 2);
}

bool isMeshSize(std::uint64_t vertices) {
    return vertices <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max());
}

// --- connectivity ------------------------------------------------------------------------------------------

/// Calls use(j, k) for neighbours of a closed ring.
template <class Use>
void forEachSide(std::uint32_t ringSize, const Use& use) {
    for (std::uint32_t j = 0; j < ringSize; ++j)
        use(j, j + 1 < ringSize ? j + 1 : 0);
}

/// Appends a block whose indices fill(out) writes one after another. False when there is no memory.
template <class Fill>
bool addBlock(_NgMeshStr* mesh, std::uint32_t elements, int size, const Fill& fill) {
    const HostArray<std::uint32_t> indices =
        hostArray<std::uint32_t>(std::size_t{elements} * static_cast<std::size_t>(size));
    if (!indices)
        return false;
    fill(indices.get());
    const auto blocks = [mesh] {
        int count = 0;
        for (const _NgConnectStr* block = mesh->blocks; block; block = block->next)
            ++count;
        return count;
    };
    const int before = blocks();
    ngl_add_connect(mesh, elements, size, indices.get(), 1);
    return blocks() > before;
}

/// Triangles between a ring and a vertex: {tip, j, j + 1}, under the ring {j, tip, j + 1}.
bool addFan(_NgMeshStr* mesh, std::uint32_t ringSize, std::uint32_t ring, std::uint32_t tip, bool under) {
    return addBlock(mesh, ringSize, 3, [=](std::uint32_t* out) {
        forEachSide(ringSize, [&](std::uint32_t j, std::uint32_t k) {
            for (const std::uint32_t index : {under ? ring + j : tip, under ? tip : ring + j, ring + k})
                *out++ = index;
        });
    });
}

/// Quads between so many rings that follow each other, the first one at `first`.
bool addBands(_NgMeshStr* mesh, std::uint32_t ringSize, std::uint32_t first, std::uint32_t rings) {
    return addBlock(mesh, (rings - 1) * ringSize, 4, [=](std::uint32_t* out) {
        for (std::uint32_t r = first; r < first + (rings - 1) * ringSize; r += ringSize)
            forEachSide(ringSize, [&](std::uint32_t j, std::uint32_t k) {
                for (const std::uint32_t index : {r + j, r + j + ringSize, r + k + ringSize, r + k})
                    *out++ = index;
            });
    });
}

/// A mesh that takes over the arrays, still without elements.
_NgMeshStr* meshOf(std::uint32_t count, HostArray<_NgPoint3Str> coords, HostArray<_NgPoint3Str> normals) {
    _NgMeshStr* mesh =
        coords && normals ? ngl_create_mesh(count, coords.get(), normals.get(), 0, 0, 0) : nullptr;
    if (mesh) {
        coords.release();
        normals.release();
    }
    return mesh;
}

void destroy(_NgMeshStr* mesh) {
    NglDestroyMesh(mesh);
    NHostFree(mesh);
}

// --- closed surface ----------------------------------------------------------------------------------------

/// Magnitudes of the semi-axes, and their inverses for the normals.
struct SemiAxes {
    _NgPoint3Str length, inverse;
};

SemiAxes semiAxes(double a, double b, double c) {
    const _NgPoint3Str length{std::abs(a), std::abs(b), std::abs(c)};
    const double longest = std::max({length.x, length.y, length.z});
    const double thinnest = longest > 0.0 ? kThinnest : 1.0;
    const double unit = longest > 0.0 ? longest : 1.0;
    const auto inverse = [=](double l) { return 1.0 / std::max(l / unit, thinnest); };
    return {length, {inverse(length.x), inverse(length.y), inverse(length.z)}};
}

/// Rings from north to south between the two poles.
void fillSurface(const Quadrant& quadrant, const SemiAxes& axes, _NgPoint3Str* coords,
                 _NgPoint3Str* normals) {
    const int q = quadrant.steps(), m = quadrant.ringSize();
    *coords++ = {0.0, 0.0, axes.length.z};
    *normals++ = {0.0, 0.0, 1.0};
    for (int ring = 1; ring < 2 * q; ++ring) {
        // The section through the poles gives a ring's height as x and its width as y.
        const Quadrant::Section meridian = quadrant.pointAt(ring), slope = quadrant.gradientAt(ring);
        for (int j = 0; j < m; ++j) {
            const Quadrant::Section p = quadrant.pointAt(j), g = quadrant.gradientAt(j);
            *coords++ = {axes.length.x * p.x * meridian.y, axes.length.y * p.y * meridian.y,
                         axes.length.z * meridian.x};
            *normals = {g.x * slope.y * axes.inverse.x, g.y * slope.y * axes.inverse.y,
                        slope.x * axes.inverse.z};
            MathNormalise(*normals++);
        }
    }
    *coords = {0.0, 0.0, -axes.length.z};
    *normals = {0.0, 0.0, -1.0};
}

_NgMeshStr* surfaceMesh(const Quadrant& quadrant, const SemiAxes& axes) {
    const auto m = static_cast<std::uint32_t>(quadrant.ringSize());
    const auto rings = static_cast<std::uint32_t>(2 * quadrant.steps() - 1);
    const std::uint32_t south = rings * m + 1, count = south + 1;
    HostArray<_NgPoint3Str> coords = hostArray<_NgPoint3Str>(count), normals = hostArray<_NgPoint3Str>(count);
    if (!coords || !normals)
        return nullptr;
    fillSurface(quadrant, axes, coords.get(), normals.get());
    _NgMeshStr* mesh = meshOf(count, std::move(coords), std::move(normals));
    if (mesh && addFan(mesh, m, 1, 0, false) && addBands(mesh, m, 1, rings) &&
        addFan(mesh, m, south - m, south, true))
        return mesh;
    if (mesh)
        destroy(mesh);
    return nullptr;
}

// --- planar mesh -------------------------------------------------------------------------------------------

/// Rings from the inner to the outer one, the centre behind them.
_NgMeshStr* planarMesh(const Quadrant& quadrant, std::uint32_t rings, double a, double b) {
    const auto m = static_cast<std::uint32_t>(quadrant.ringSize());
    const std::uint32_t centre = rings * m;
    HostArray<_NgPoint3Str> coords = hostArray<_NgPoint3Str>(std::size_t{centre} + 1),
                            normals = hostArray<_NgPoint3Str>(std::size_t{centre} + 1);
    if (!coords || !normals)
        return nullptr;
    for (std::uint32_t i = 0; i < centre; ++i) {
        const Quadrant::Section p = quadrant.pointAt(static_cast<int>(i % m));
        const double radius = static_cast<double>(i / m + 1) / rings;
        coords[i] = {a * radius * p.x, b * radius * p.y, 0.0};
    }
    coords[centre] = {};
    std::fill_n(normals.get(), centre + 1, _NgPoint3Str{0.0, 0.0, 1.0});
    _NgMeshStr* mesh = meshOf(centre + 1, std::move(coords), std::move(normals));
    if (mesh && addFan(mesh, m, 0, centre, false) && (rings == 1 || addBands(mesh, m, 0, rings)))
        return mesh;
    if (mesh)
        destroy(mesh);
    return nullptr;
}

// --- drawing of the planar mesh ----------------------------------------------------------------------------

/// Points of the glyph that is being drawn; kept from call to call and never freed.
struct Scratch {
    _NgPoint3Str* points = nullptr;
    std::size_t capacity = 0;
};

Scratch& scratch() {
    static Scratch state;
    return state;
}

/// The scratch array with room for count points; null when there is no memory.
_NgPoint3Str* scratchPoints(std::size_t count) {
    Scratch& s = scratch();
    if (count > s.capacity) {
        HostArray<_NgPoint3Str> grown = hostArray<_NgPoint3Str>(s.capacity + count);
        if (!grown)
            return nullptr;
        NHostFree(s.points);
        s.points = grown.release();
        s.capacity += count;
    }
    return s.points;
}

void drawFaces(_NgMeshStr* mesh, _NgPoint3Str* points, int drawArg) {
    double* const own = std::exchange(mesh->coords, &points->x);
    ngl_mesh(mesh, static_cast<unsigned int>(drawArg));
    mesh->coords = own;
}

void drawOutline(const _NgMeshStr& mesh, const _NgPoint3Str* points) {
    const std::uint32_t m = mesh.blocks ? mesh.blocks->elementCount : 0;
    const std::uint32_t rings = m > 0 ? (static_cast<std::uint32_t>(mesh.vertexCount) - 1) / m : 0;
    if (rings == 0)
        return;
    // Deliberate: no offset for a centre vertex, which these meshes have behind their rings.
    const _NgPoint3Str* outer = points + std::size_t{rings - 1} * m;
    forEachSide(m, [=](std::uint32_t j, std::uint32_t k) { ngl_line_3d_s(outer + j, outer + k); });
}

} // namespace

_NgMeshStr* ngl_hyper_ellipsoid(double a, double b, double c, int n, int resolution) {
    const std::uint64_t q = static_cast<std::uint64_t>(quadrantSteps(resolution));
    if (n < 2 || !std::isfinite(a) || !std::isfinite(b) || !std::isfinite(c) ||
        !isMeshSize((2 * q - 1) * 4 * q + 2))
        return nullptr;
    const std::optional<Quadrant> quadrant = Quadrant::make(n, quadrantSteps(resolution));
    return quadrant ? surfaceMesh(*quadrant, semiAxes(a, b, c)) : nullptr;
}

int Ngl_Shape_Hyper_Ellipsoid(double a, double b, double c, int n, int resolution) {
    _NgMeshStr* mesh = ngl_hyper_ellipsoid(a, b, c, n, resolution);
    if (!mesh)
        return -1;
    ngl_mesh(mesh, NglMeshFaces);
    destroy(mesh);
    return 0;
}

int ngl_create_elliptic_mesh(int n, int resolution, int rings, double* semiAxes, _NgMeshStr** mesh) {
    const double a = semiAxes ? semiAxes[0] : 1.0, b = semiAxes ? semiAxes[1] : 1.0;
    const std::uint64_t ringSize = 4 * static_cast<std::uint64_t>(quadrantSteps(resolution));
    if (!mesh || n < 2 || rings < 1 || !std::isfinite(a) || !std::isfinite(b) ||
        !isMeshSize(ringSize * static_cast<std::uint64_t>(rings) + 1))
        return -1;
    const std::optional<Quadrant> quadrant = Quadrant::make(n, quadrantSteps(resolution));
    _NgMeshStr* made =
        quadrant ? planarMesh(*quadrant, static_cast<std::uint32_t>(rings), std::abs(a), std::abs(b))
                 : nullptr;
    if (!made)
        return -1;
    *mesh = made;
    return 0;
}

int ngl_draw_ellip_ngmesh(_NgMeshStr* mesh, double sx, double sy, _NgPoint3Str* centre,
                          double (*matrix)[4][4], int mode, int drawArg) {
    if (!mesh || mesh->vertexCount <= 0 || !mesh->coords || !centre || !matrix)
        return 0;
    _NgPoint3Str* points = scratchPoints(static_cast<std::size_t>(mesh->vertexCount));
    if (!points)
        return 0;
    _NgPoint3Str at;
    NglTransform33p(*centre, *matrix, at);
    for (std::int32_t i = 0; i < mesh->vertexCount; ++i) {
        const double* own = mesh->coords + std::size_t{3} * static_cast<std::size_t>(i);
        points[i] = {sx * own[0] + at.x, sy * own[1] + at.y, at.z};
    }
    if (mode == 0 || mode == 1)
        drawFaces(mesh, points, drawArg);
    if (mode == 1)
        ngl_set_color_no_complement(0);
    if (mode == 1 || mode == 2)
        drawOutline(*mesh, points);
    return 0;
}
