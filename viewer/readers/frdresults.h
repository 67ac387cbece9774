// Results of a CalculiX result file: blocks 100C with what stands before them.
#pragma once

#include <set>
#include <tuple>

#include "viewer/readers/frdcursor.h"
#include "viewer/readers/numberindex.h"

namespace nruview::readers {

class FrdResults {
public:
    /// The nodes must be there.
    explicit FrdResults(FrdFile& file);

    /// A record 1P...: of these those that number a mode count.
    void readParameter(std::string_view line);
    /// A block 100C, its first line given.
    void readBlock(std::string_view header);
    /// Names the steps, which is possible when all is known.
    void finish();

private:
    enum Kind { Static, Time, Frequency, LoadStep, Named };
    struct Step {
        std::int64_t kind = 0, number = 0;
        double value = 0.0;
        std::int64_t mode = 0, diameter = -1;
        std::string text = {};
    };
    using StepKey = std::tuple<std::int64_t, std::int64_t, double, std::int64_t, std::int64_t>;
    /// One of the values that a node has.
    struct Entity {
        std::string name;
        std::int64_t type = 0;
    };
    /// A field that a block becomes: places of its components in a node's values.
    struct Piece {
        std::string name;
        std::vector<std::size_t> components;
    };

    Step stepOf(std::string_view header) const;
    std::uint32_t indexOf(const Step& step);
    std::vector<Entity> readEntities(std::string_view header, FrdFormat format);
    std::vector<double> readValues(std::size_t perNode, FrdFormat format, std::size_t count);
    void readTextValues(std::size_t perNode, std::size_t width, std::vector<double>& values);
    void readBinaryValues(std::size_t perNode, FrdFormat format, std::size_t count,
                          std::vector<double>& values);
    double* valuesOf(std::int64_t node, std::size_t perNode, std::vector<double>& values);
    static std::vector<Piece> piecesOf(const std::string& block, const std::vector<Entity>& entities);
    void addField(const Piece& piece, std::size_t perNode, const std::vector<double>& values,
                  std::uint32_t step);
    bool isComplex(std::uint32_t step) const;
    std::string labelOf(std::uint32_t step, std::int64_t buckling) const;

    FrdFile& m_file;
    NumberIndex m_nodes;
    std::vector<Step> m_steps;
    std::map<StepKey, std::uint32_t> m_stepIndices;
    Step m_parameters;    ///< mode and diameter of the block that follows
    std::size_t m_memory; ///< values that may still be laid out
    std::size_t m_strangeNodes = 0;
    std::set<std::tuple<std::string, std::uint32_t>> m_names;
};

} // namespace nruview::readers
