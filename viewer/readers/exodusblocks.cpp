// Blocks of elements: a part of the model for each.
#include <algorithm>
#include <limits>
#include <map>

#include "viewer/model/celltypes.h"
#include "viewer/readers/exoduselements.h"
#include "viewer/readers/exodusparts.h"

namespace nruview::readers {

namespace {

constexpr std::size_t kMostEntries = std::numeric_limits<std::uint32_t>::max() - 1;

class BlockReader {
public:
    BlockReader(const ExodusFile& file, Model& model)
        : m_file(file), m_model(model), m_dimensions(spaceOf(file)) {}

    std::vector<ExodusBlock> read() {
        const std::size_t count = m_file.dimension("num_el_blk");
        const auto names = m_file.texts("eb_names");
        const auto ids = idsOf(m_file, "eb_prop1", count);
        for (std::size_t i = 0; i < count; ++i)
            readBlock(i + 1, nameOf(names, ids, i, "block"));
        addNotes();
        if (m_model.cellCount() == 0)
            throw Refusal(m_skipped.empty() ? "has no elements"
                                            : "has no elements of a supported type; " + m_model.notes.back());
        return std::move(m_blocks);
    }

private:
    void readBlock(std::size_t number, const std::string& name) {
        const std::string connect = numbered("connect", number);
        ExodusBlock block{number, m_nextElement, m_file.dimension(numbered("num_el_in_blk", number)),
                          m_model.cellCount(), false};
        m_nextElement += block.elementCount;
        if (block.elementCount == 0)
            return;
        if (!m_file.has(connect)) {
            m_skipped["without nodes"] += block.elementCount;
            return;
        }
        const std::string type = m_file.attribute(connect, "elem_type");
        if (lowerLetters(type) == "nsided" ? addPolygons(block) : addElements(block, type)) {
            m_blocks.push_back(block);
            m_model.parts.push_back({name,
                                     static_cast<std::uint32_t>(block.firstCell),
                                     static_cast<std::uint32_t>(block.elementCount),
                                     {},
                                     1.0});
        } else
            m_skipped[type.empty() ? "without a type" : "of type " + type] += block.elementCount;
    }

    static std::string lowerLetters(const std::string& type) {
        std::string letters;
        for (const unsigned char c : type)
            if (std::isalpha(c))
                letters += static_cast<char>(std::tolower(c));
        return letters;
    }

    bool addElements(ExodusBlock& block, const std::string& type) {
        const std::string connect = numbered("connect", block.number);
        const std::vector<std::size_t> shape = m_file.shape(connect);
        const std::size_t nodes = shape.size() == 2 ? shape[1] : 0;
        const auto form = elementForm(type, nodes, m_dimensions);
        if (!form)
            return false;
        block.isShell = form->isShell;
        const auto all = valuesOf(connect, block.elementCount * nodes);
        std::vector<std::uint32_t> cell(form->order.size());
        for (std::size_t first = 0; first < all.size(); first += nodes) {
            for (std::size_t i = 0; i < cell.size(); ++i)
                cell[i] = all[first + form->order[i]];
            m_model.addCell(form->type, cell);
        }
        if (form->order.size() < nodes)
            m_reduced["of type " + type + " (" + std::to_string(nodes) + " nodes) are read as " +
                      std::string(cellTypeName(form->type))] += block.elementCount;
        return true;
    }

    /// Polygons stand one behind the other; another variable counts their nodes.
    bool addPolygons(const ExodusBlock& block) {
        const auto counts =
            m_file.values<std::uint32_t>(numbered("ebepecnt", block.number), block.elementCount);
        const std::string connect = numbered("connect", block.number);
        const std::vector<std::size_t> shape = m_file.shape(connect);
        const auto all = valuesOf(connect, shape.size() == 1 ? shape[0] : 0);
        std::size_t first = 0;
        for (const std::uint32_t count : counts) {
            if (count < 3 || count > all.size() - first)
                throw Refusal("has a polygon of " + std::to_string(count) + " nodes in " + connect);
            m_model.addCell(CellType::Polygon, std::span(all).subspan(first, count));
            first += count;
        }
        return true;
    }

    /// Nodes from 0.
    std::vector<std::uint32_t> valuesOf(const std::string& connect, std::size_t count) const {
        auto nodes = m_file.values<std::uint32_t>(connect, count);
        if (m_model.connectivity.size() + nodes.size() > kMostEntries)
            throw Refusal("has more elements than the viewer can hold");
        for (std::uint32_t& node : nodes) {
            if (node < 1 || node > m_model.nodes.size())
                throw Refusal("has an element with node " + std::to_string(node) + " of " +
                              std::to_string(m_model.nodes.size()) + " in " + connect);
            --node;
        }
        return nodes;
    }

    void addNotes() {
        for (const auto& [type, count] : m_reduced)
            m_model.notes.push_back(std::to_string(count) + " elements " + type);
        for (const auto& [type, count] : m_skipped)
            m_model.notes.push_back("skipped " + std::to_string(count) + " elements " + type);
    }

    const ExodusFile& m_file;
    Model& m_model;
    std::size_t m_dimensions;
    std::size_t m_nextElement = 0;
    std::vector<ExodusBlock> m_blocks;
    std::map<std::string, std::size_t> m_reduced, m_skipped;
};

} // namespace

std::vector<ExodusBlock> readBlocks(const ExodusFile& file, Model& model) {
    return BlockReader(file, model).read();
}

} // namespace nruview::readers
