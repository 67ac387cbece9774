// Variables of nodes and elements at each time: fields of the model's steps.
#include <cmath>
#include <cstdio>
#include <limits>

#include "viewer/readers/exoduscomponents.h"
#include "viewer/readers/exodusparts.h"

namespace nruview::readers {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

ResultStep stepAt(double time) {
    char text[40];
    std::snprintf(text, sizeof text, "time %g", time);
    return {text, time, false};
}

void readSteps(const ExodusFile& file, Model& model) {
    const std::size_t count = file.dimension("time_step");
    if (count > 0 && file.has("time_whole"))
        for (const double time : file.values<double>("time_whole", count))
            model.steps.push_back(stepAt(time));
    else
        for (std::size_t i = 0; i < count; ++i)
            model.steps.push_back({"step " + std::to_string(i + 1), static_cast<double>(i), false});
}

/// Reads fields, whose components are variables of their own.
class FieldReader {
public:
    FieldReader(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, Model& model)
        : m_file(file), m_blocks(blocks), m_model(model) {}

    void read(FieldLocation location) {
        const bool atNodes = location == FieldLocation::Node;
        const auto names = m_file.texts(atNodes ? "name_nod_var" : "name_elem_var");
        if (!atNodes)
            readTable(names.size());
        for (const Quantity& quantity : findQuantities(names, spaceOf(m_file)))
            for (std::uint32_t step = 0; step < m_model.steps.size(); ++step)
                m_model.fields.push_back(fieldOf(quantity, location, step));
    }

private:
    /// Which blocks have which variables.
    void readTable(std::size_t variables) {
        const std::size_t blocks = m_file.dimension("num_el_blk");
        m_variables = variables;
        if (variables > 0 && m_file.has("elem_var_tab"))
            m_table = m_file.values<long long>("elem_var_tab", blocks * variables);
    }

    Field fieldOf(const Quantity& quantity, FieldLocation location, std::uint32_t step) {
        const std::size_t components = quantity.variables.size();
        const bool atNodes = location == FieldLocation::Node;
        const std::size_t tuples = atNodes ? m_model.nodes.size() : m_model.cellCount();
        Field field{quantity.name, location, static_cast<int>(components), {}, step};
        field.values.assign(tuples * components, components == 1 ? kNone : 0.0);
        std::vector<double> column(components == 1 ? 0 : tuples);
        for (std::size_t c = 0; c < components; ++c) {
            if (!quantity.variables[c])
                continue;
            const std::span<double> values = components == 1 ? field.values : column;
            std::fill(values.begin(), values.end(), kNone);
            atNodes ? readNodes(*quantity.variables[c], step, values)
                    : readCells(*quantity.variables[c], step, values);
            for (std::size_t i = 0; i < column.size(); ++i)
                field.values[i * components + c] = column[i];
        }
        return field;
    }

    /// Older files keep all variables in one.
    void readNodes(std::size_t variable, std::size_t step, std::span<double> values) const {
        const std::string own = numbered("vals_nod_var", variable + 1);
        if (m_file.has(own))
            m_file.row(own, {step}, values);
        else if (m_file.has("vals_nod_var"))
            m_file.row("vals_nod_var", {step, variable}, values);
    }

    void readCells(std::size_t variable, std::size_t step, std::span<double> values) const {
        for (const ExodusBlock& block : m_blocks) {
            const std::string own = numbered("vals_elem_var", variable + 1) + numbered("eb", block.number);
            if (!m_table.empty() && m_table[(block.number - 1) * m_variables + variable] == 0)
                continue;
            if (m_file.has(own))
                m_file.row(own, {step}, values.subspan(block.firstCell, block.elementCount));
        }
    }

    const ExodusFile& m_file;
    const std::vector<ExodusBlock>& m_blocks;
    Model& m_model;
    std::vector<long long> m_table;
    std::size_t m_variables = 0;
};

} // namespace

void readResults(const ExodusFile& file, const std::vector<ExodusBlock>& blocks, Model& model) {
    readSteps(file, model);
    FieldReader reader(file, blocks, model);
    reader.read(FieldLocation::Node);
    reader.read(FieldLocation::Cell);
}

} // namespace nruview::readers
