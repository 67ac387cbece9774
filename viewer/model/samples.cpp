// The sample models: structured meshes whose fields come from closed forms.
#include "viewer/model/samples.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>

#include "viewer/error.h"
#include "viewer/model/elasticity.h"
#include "viewer/model/fields.h"
#include "viewer/model/flange.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

using Index = std::uint32_t;

constexpr std::uint64_t kMaxCells = 4'000'000;
constexpr double kPlateHalf = 5.0 * PlateWithHole::kRadius; ///< half the side of the plate

/// Node fields U and S and the cell field S_cell (von Mises at the centre) from a closed form.
template <typename Solution>
void addFields(Model& model) {
    Field displacement{"U", FieldLocation::Node, 3, {}};
    Field stress{"S", FieldLocation::Node, 6, {}};
    for (const Point& node : model.nodes) {
        const ElasticState state = Solution::at(node);
        displacement.values.insert(displacement.values.end(), state.displacement.begin(),
                                   state.displacement.end());
        stress.values.insert(stress.values.end(), state.stress.begin(), state.stress.end());
    }
    Field mises{"S_cell", FieldLocation::Cell, 1, {}};
    for (std::size_t cell = 0; cell < model.cellCount(); ++cell) {
        Point sum{};
        for (Index node : model.cellNodes(cell))
            sum = sum + model.nodes[node];
        const Point centre = (1.0 / static_cast<double>(model.cellNodes(cell).size())) * sum;
        mises.values.push_back(vonMises(Solution::at(centre).stress));
    }
    model.fields = {std::move(displacement), std::move(stress), std::move(mises)};
}

/// Throws when a mesh would have too many cells.
void checkSize(const std::string& selector, std::uint64_t cells) {
    if (cells > kMaxCells)
        throw ViewerError("sample " + selector, "would have " + std::to_string(cells) +
                                                    " elements; at most " + std::to_string(kMaxCells) +
                                                    " are made");
}

/// The part of a parabolic load over the height, 1 in all, that the node j of n + 1 takes: integral of its
/// hat function times 3/2 (1 - t^2) / 2 over t in [-1, 1], by Simpson's rule, which is exact for cubics.
double parabolicShare(Index j, Index n) {
    const double size = 2.0 / n, at = -1.0 + size * j;
    const auto load = [](double t) { return 0.75 * (1.0 - t * t); };
    const auto beside = [&](double way) { // hat 1, 1/2, 0 at the node, the middle and the far end
        return size / 6.0 * (load(at) + 4.0 * 0.5 * load(at + 0.5 * way * size));
    };
    return (j > 0 ? beside(-1.0) : 0.0) + (j < n ? beside(1.0) : 0.0);
}

/// The node field F, the force at the free end as the shear stress there spreads it over the nodes, and the
/// node sets of both ends.
void addLoadAndSupports(Model& model, Index nx, Index ny, Index nz) {
    Field force{"F", FieldLocation::Node, 3, std::vector<double>(3 * model.nodes.size())};
    NodeSet fixed{"fixed", {}}, loaded{"loaded", {}};
    for (Index k = 0; k <= nz; ++k)
        for (Index j = 0; j <= ny; ++j) {
            const Index first = (k * (ny + 1) + j) * (nx + 1), last = first + nx;
            const double acrossWidth = (k == 0 || k == nz ? 0.5 : 1.0) / nz;
            force.values[3 * std::size_t{last} + 1] =
                -Cantilever::kForce * acrossWidth * parabolicShare(j, ny);
            fixed.nodes.push_back(first);
            loaded.nodes.push_back(last);
        }
    model.fields.push_back(std::move(force));
    model.nodeSets = {std::move(fixed), std::move(loaded)};
}

Model makeCantilever(const std::string& selector, Index n) {
    const Index nx = n, ny = std::max<Index>(1, (n + 2) / 5), nz = std::max<Index>(1, (n + 5) / 10);
    checkSize(selector, std::uint64_t{nx} * ny * nz);
    Model model;
    for (Index k = 0; k <= nz; ++k)
        for (Index j = 0; j <= ny; ++j)
            for (Index i = 0; i <= nx; ++i)
                model.nodes.push_back({Cantilever::kLength * i / nx,
                                       Cantilever::kHeight * (1.0 * j / ny - 0.5),
                                       Cantilever::kWidth * (1.0 * k / nz - 0.5)});
    const auto node = [=](Index i, Index j, Index k) { return (k * (ny + 1) + j) * (nx + 1) + i; };
    for (Index k = 0; k < nz; ++k)
        for (Index j = 0; j < ny; ++j)
            for (Index i = 0; i < nx; ++i)
                model.addCell(CellType::Hexa,
                              std::array{node(i, j, k), node(i + 1, j, k), node(i + 1, j + 1, k),
                                         node(i, j + 1, k), node(i, j, k + 1), node(i + 1, j, k + 1),
                                         node(i + 1, j + 1, k + 1), node(i, j + 1, k + 1)});
    addFields<Cantilever>(model);
    addLoadAndSupports(model, nx, ny, nz);
    return model;
}

/// Rays at equal angles from the rim to the square's outline; along each the element size grows with the
/// radius.
Model makePlate(const std::string& selector, Index n) {
    checkSize(selector, std::uint64_t{4} * n * n);
    const Index around = 4 * n;
    Model model;
    for (Index ring = 0; ring <= n; ++ring)
        for (Index ray = 0; ray < around; ++ray) {
            const double angle = 2.0 * std::numbers::pi * (ray + 0.5 * (n % 2)) / around;
            const Point direction = {std::cos(angle), std::sin(angle), 0.0};
            const double outer = kPlateHalf / std::max(std::abs(direction[0]), std::abs(direction[1]));
            const double growth = outer / PlateWithHole::kRadius;
            model.nodes.push_back((PlateWithHole::kRadius * std::pow(growth, 1.0 * ring / n)) * direction);
        }
    for (Index ring = 0; ring < n; ++ring)
        for (Index ray = 0; ray < around; ++ray) {
            const Index next = (ray + 1) % around;
            model.addCell(CellType::Quad, std::array{ring * around + ray, (ring + 1) * around + ray,
                                                     (ring + 1) * around + next, ring * around + next});
        }
    addFields<PlateWithHole>(model);
    return model;
}

Model makePart(const std::string& selector, Index n) {
    if (n < 3)
        throw ViewerError("sample " + selector, "the size is a number from 3 to 2000");
    checkSize(selector, flangeCells(n));
    Model model = makeFlange(n);
    model.isSurface = true;
    model.parts = {{"flange", 0, static_cast<Index>(model.cellCount()), {}, 1.0}};
    return model;
}

struct Sample {
    const char* name;
    const char* description;
    Index defaultSize;
    Model (*make)(const std::string& selector, Index n);
};

constexpr std::array kSamples = {
    Sample{"cantilever", "beam of hexahedra bent by a force at its end (Timoshenko & Goodier)", 40,
           makeCantilever},
    Sample{"hole", "plate with a round hole under tension (Kirsch 1898), stress concentration 3", 24,
           makePlate},
    Sample{"flange", "machined part without results: hub, bolt holes, rounded edges; N along a sector's side",
           16, makePart},
};

Index parseSize(const std::string& selector, std::size_t colon) {
    Index size = 0;
    const char* end = selector.data() + selector.size();
    const auto [stop, error] = std::from_chars(selector.data() + colon + 1, end, size);
    if (error != std::errc() || stop != end || size < 1 || size > 2000)
        throw ViewerError("sample " + selector, "the size is a number from 1 to 2000");
    return size;
}

} // namespace

Model makeSample(const std::string& selector) {
    const std::size_t colon = selector.find(':');
    const std::string name = selector.substr(0, colon);
    for (const Sample& sample : kSamples)
        if (name == sample.name)
            return sample.make(selector,
                               colon == std::string::npos ? sample.defaultSize : parseSize(selector, colon));
    std::string names;
    for (const Sample& sample : kSamples)
        names += std::string(names.empty() ? "" : ", ") + sample.name;
    throw ViewerError("sample " + selector, "there is no such sample; there are " + names);
}

std::vector<std::array<std::string, 2>> sampleList() {
    std::vector<std::array<std::string, 2>> list;
    for (const Sample& sample : kSamples)
        list.push_back({sample.name, sample.description});
    return list;
}

} // namespace nruview
