// From meshes with numbers and named sets to one model: each mesh is put at its place, sets are resolved in
// the order in which the file gives them.
#include "viewer/readers/inpmesh.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

#include "viewer/readers/cellparts.h"
#include "viewer/readers/fortran.h"
#include "viewer/readers/inplines.h"
#include "viewer/readers/numberindex.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kMost = 50'000'000; ///< nodes and elements of all instances, and members of all sets

using Members = std::vector<std::uint32_t>;

/// A mesh in the model.
struct PlacedMesh {
    const InpMesh* mesh;
    std::string name; ///< of the instance; empty for what stands in no part
    NumberIndex nodes, elements;
    std::uint32_t firstNode, firstCell;
    std::array<std::map<std::string, Members>, 2> sets; ///< of elements and of nodes, by names in capitals
};

/// Rodrigues, 1840.
Point rotated(const Point& point, const std::array<Point, 2>& axis, double angleDeg) {
    Point u, p;
    for (int k = 0; k < 3; ++k) {
        u[k] = axis[1][k] - axis[0][k];
        p[k] = point[k] - axis[0][k];
    }
    const double length = std::hypot(u[0], u[1], u[2]);
    if (angleDeg == 0.0 || length == 0.0)
        return point;
    const double angle = angleDeg * std::numbers::pi / 180.0, c = std::cos(angle), s = std::sin(angle);
    const double along = (u[0] * p[0] + u[1] * p[1] + u[2] * p[2]) / length;
    Point result;
    for (int k = 0; k < 3; ++k) {
        const int i = (k + 1) % 3, j = (k + 2) % 3;
        result[k] = axis[0][k] + c * p[k] + s * (u[i] * p[j] - u[j] * p[i]) / length +
                    (1.0 - c) * along * u[k] / length;
    }
    return result;
}

class InpModelMaker {
public:
    explicit InpModelMaker(InpFile& file) : m_file(file) {}

    Model make() {
        place(m_file.mesh, {});
        for (const InpInstance& instance : m_file.instances)
            place(meshOf(instance), instance);
        finishNumbers(m_model.nodeNumbers, "nodes");
        finishNumbers(m_model.cellNumbers, "elements");
        for (const auto& [type, count] : m_file.skipped)
            m_model.notes.push_back("skipped " + std::to_string(count) + " elements of type " +
                                    (type.empty() ? "(none)" : oneLine(type)));
        for (const auto& [type, count] : m_file.longer)
            if (count > 0)
                m_model.notes.push_back("left out what stands behind the nodes of " + std::to_string(count) +
                                        " elements of type " + type);
        if (m_model.cellCount() == 0)
            throw Refusal(m_model.notes.empty()
                              ? "has no elements"
                              : "has no elements of a supported type; " + m_model.notes.front());
        // The assembly, which comes first, has sets of its instances' sets.
        for (auto placed = m_meshes.rbegin(); placed != m_meshes.rend(); ++placed)
            for (const InpSetPiece& piece : placed->mesh->pieces)
                resolve(*placed, piece);
        addNodeSets();
        addParts();
        m_model.notes.insert(m_model.notes.end(), m_file.notes.begin(), m_file.notes.end());
        return std::move(m_model);
    }

private:
    const InpMesh& meshOf(const InpInstance& instance) const;
    void place(const InpMesh& mesh, const InpInstance& instance);
    void addCells(const InpMesh& mesh, const PlacedMesh& placed);
    void finishNumbers(std::vector<std::int64_t>& numbers, const char* what);

    PlacedMesh* instanceOf(std::string_view name);
    void resolve(PlacedMesh& placed, const InpSetPiece& piece);
    void addNumber(const PlacedMesh& placed, bool ofNodes, std::int64_t number, Members& members);
    void addRange(const PlacedMesh& placed, bool ofNodes, const InpSetPiece::Range& range, Members& members);
    bool addNamed(PlacedMesh& placed, bool ofNodes, const std::string& name, Members& members);
    void count(std::size_t added);

    std::string fullName(const PlacedMesh& placed, const std::string& set) const;
    void addNodeSets();
    void addParts();

    InpFile& m_file;
    Model m_model;
    std::vector<PlacedMesh> m_meshes;
    std::size_t m_members = 0;
};

// --- meshes ------------------------------------------------------------------------------------------------

const InpMesh& InpModelMaker::meshOf(const InpInstance& instance) const {
    if (!instance.own.nodes.empty() || instance.part.empty())
        return instance.own;
    const auto part = m_file.parts.find(instance.part);
    if (part == m_file.parts.end())
        throw Refusal("has an instance of part '" + instance.part + "', which is not there");
    return part->second;
}

void InpModelMaker::place(const InpMesh& mesh, const InpInstance& instance) {
    if (m_model.nodes.size() + mesh.nodes.size() > kMost || m_model.cellCount() + mesh.types.size() > kMost)
        throw Refusal("has more nodes and elements than the viewer can hold");
    m_meshes.push_back({&mesh,
                        instance.name,
                        NumberIndex(mesh.nodeNumbers),
                        NumberIndex(mesh.elementNumbers),
                        static_cast<std::uint32_t>(m_model.nodes.size()),
                        static_cast<std::uint32_t>(m_model.cellCount()),
                        {}});
    for (const Point& node : mesh.nodes) {
        Point point;
        for (int k = 0; k < 3; ++k)
            point[k] = node[k] + instance.shift[k];
        m_model.nodes.push_back(rotated(point, instance.axis, instance.angleDeg));
    }
    m_model.nodeNumbers.insert(m_model.nodeNumbers.end(), mesh.nodeNumbers.begin(), mesh.nodeNumbers.end());
    m_model.cellNumbers.insert(m_model.cellNumbers.end(), mesh.elementNumbers.begin(),
                               mesh.elementNumbers.end());
    addCells(mesh, m_meshes.back());
}

void InpModelMaker::addCells(const InpMesh& mesh, const PlacedMesh& placed) {
    std::size_t at = 0;
    Members nodes;
    for (std::size_t i = 0; i < mesh.types.size(); ++i) {
        nodes.clear();
        for (; at < mesh.ends[i]; ++at) {
            const auto node = placed.nodes.find(mesh.elementNodes[at]);
            if (!node)
                throw Refusal("has element " + std::to_string(mesh.elementNumbers[i]) + " with node " +
                              std::to_string(mesh.elementNodes[at]) + ", which is not there");
            nodes.push_back(placed.firstNode + *node);
        }
        if (mesh.types[i].middleSecond)
            std::swap(nodes[1], nodes[2]);
        m_model.addCell(mesh.types[i].type, nodes);
    }
}

/// Instances number for themselves: what has one number twice is counted.
void InpModelMaker::finishNumbers(std::vector<std::int64_t>& numbers, const char* what) {
    if (m_file.instances.empty())
        return;
    std::vector<std::int64_t> sorted = numbers;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end())
        return;
    numbers.clear();
    m_model.notes.push_back(std::string("numbered the ") + what + " from 0: instances have the same numbers");
}

// --- sets --------------------------------------------------------------------------------------------------

PlacedMesh* InpModelMaker::instanceOf(std::string_view name) {
    const std::string wanted = upperCase(name);
    for (PlacedMesh& placed : m_meshes)
        if (!placed.name.empty() && upperCase(placed.name) == wanted)
            return &placed;
    return nullptr;
}

void InpModelMaker::count(std::size_t added) {
    m_members += added;
    if (m_members > kMost)
        throw Refusal("has sets with more members than the viewer can hold");
}

void InpModelMaker::resolve(PlacedMesh& placed, const InpSetPiece& piece) {
    PlacedMesh* const owner = piece.instance.empty() ? &placed : instanceOf(piece.instance);
    Members members;
    for (const InpSetPiece::Range& range : piece.ranges)
        if (owner)
            addRange(*owner, piece.ofNodes, range, members);
    for (const std::string& name : piece.names)
        if (!owner || !addNamed(*owner, piece.ofNodes, name, members))
            m_model.notes.push_back("left out of set " + oneLine(piece.set) + ": " + oneLine(name) +
                                    ", which is not there");
    Members& set = placed.sets[piece.ofNodes][upperCase(piece.set)];
    set.insert(set.end(), members.begin(), members.end());
}

void InpModelMaker::addRange(const PlacedMesh& placed, bool ofNodes, const InpSetPiece::Range& range,
                             Members& members) {
    if (range.first == range.last)
        return addNumber(placed, ofNodes, range.first, members);
    const Members within = (ofNodes ? placed.nodes : placed.elements).within(range.first, range.last);
    count(within.size());
    const auto& numbers = ofNodes ? placed.mesh->nodeNumbers : placed.mesh->elementNumbers;
    const auto first = static_cast<std::uint64_t>(range.first);
    for (const std::uint32_t member : within)
        if ((static_cast<std::uint64_t>(numbers[member]) - first) % static_cast<std::uint64_t>(range.step) ==
            0)
            members.push_back((ofNodes ? placed.firstNode : placed.firstCell) + member);
}

void InpModelMaker::addNumber(const PlacedMesh& placed, bool ofNodes, std::int64_t number, Members& members) {
    count(1);
    if (const auto member = (ofNodes ? placed.nodes : placed.elements).find(number))
        members.push_back((ofNodes ? placed.firstNode : placed.firstCell) + *member);
}

/// A set of the same mesh, or behind a point a set or a number of an instance.
bool InpModelMaker::addNamed(PlacedMesh& placed, bool ofNodes, const std::string& name, Members& members) {
    const auto& sets = placed.sets[ofNodes];
    if (const auto set = sets.find(upperCase(name)); set != sets.end()) {
        count(set->second.size());
        members.insert(members.end(), set->second.begin(), set->second.end());
        return true;
    }
    const std::size_t point = name.rfind('.');
    PlacedMesh* const instance =
        point == std::string::npos ? nullptr : instanceOf(std::string_view(name).substr(0, point));
    if (!instance || instance == &placed)
        return false;
    const std::string rest = name.substr(point + 1);
    if (const auto number = wholeNumber(rest)) {
        addNumber(*instance, ofNodes, *number, members);
        return true;
    }
    return addNamed(*instance, ofNodes, rest, members);
}

std::string InpModelMaker::fullName(const PlacedMesh& placed, const std::string& set) const {
    return oneLine(placed.name.empty() || m_file.instances.size() < 2 ? set : placed.name + "." + set);
}

/// Sets as the file names them first; what it makes for itself, with a leading underscore, is left out.
void InpModelMaker::addNodeSets() {
    for (PlacedMesh& placed : m_meshes) {
        std::set<std::string> seen;
        for (const InpSetPiece& piece : placed.mesh->pieces) {
            const std::string key = upperCase(piece.set);
            if (!piece.ofNodes || piece.set.starts_with('_') || !seen.insert(key).second)
                continue;
            Members& nodes = placed.sets[1][key];
            std::sort(nodes.begin(), nodes.end());
            nodes.erase(std::unique(nodes.begin(), nodes.end()), nodes.end());
            if (!nodes.empty())
                m_model.nodeSets.push_back({fullName(placed, piece.set), nodes});
        }
    }
}

/// Elements by their sections, or where there are none by the sets they were made in, or by instances.
void InpModelMaker::addParts() {
    std::vector<std::string> names;
    std::vector<std::uint32_t> partOfCell(m_model.cellCount());
    bool hasNames = false;
    for (PlacedMesh& placed : m_meshes) {
        const InpMesh& mesh = *placed.mesh;
        const auto cells = static_cast<std::ptrdiff_t>(mesh.types.size());
        const auto rest = static_cast<std::uint32_t>(names.size());
        names.push_back(placed.name.empty() ? "other elements" : oneLine(placed.name));
        hasNames = hasNames || (!placed.name.empty() && cells > 0);
        const auto begin = partOfCell.begin() + placed.firstCell;
        std::fill(begin, begin + cells, rest);
        std::set<std::string> seen;
        for (const std::string& set : mesh.sections.empty() ? mesh.blocks : mesh.sections) {
            if (!seen.insert(upperCase(set)).second)
                continue;
            hasNames = true;
            for (const std::uint32_t cell : placed.sets[0][upperCase(set)])
                if (partOfCell[cell] == rest)
                    partOfCell[cell] = static_cast<std::uint32_t>(names.size());
            names.push_back(fullName(placed, set));
        }
    }
    if (hasNames)
        sortIntoParts(m_model, partOfCell, names);
}

} // namespace

Model makeInpModel(InpFile& file) {
    return InpModelMaker(file).make();
}

} // namespace nruview::readers
