// Writes small Exodus II files: dimensions and variables as a table, in any of netCDF's storage kinds.
#pragma once

#include <gtest/gtest.h>
#include <netcdf.h>

#include <map>
#include <string>
#include <vector>

namespace nrutest {

struct ExodusVariable {
    std::string name;
    nc_type type;
    std::vector<std::string> dimensions;
    std::vector<double> values; ///< where there are none, none are written
    std::string text = {}, elementType = {};
};

struct ExodusWriter {
    std::map<std::string, std::size_t> dimensions; ///< time_step grows, whatever its length
    std::vector<ExodusVariable> variables;

    void real(const std::string& name, std::vector<std::string> dims, std::vector<double> values) {
        variables.push_back({name, NC_DOUBLE, std::move(dims), std::move(values)});
    }
    void whole(const std::string& name, std::vector<std::string> dims, std::vector<double> values) {
        variables.push_back({name, NC_INT, std::move(dims), std::move(values)});
    }
    void texts(const std::string& name, const std::vector<std::string>& rows) {
        dimensions["rows_" + name] = rows.size();
        dimensions["len_name"] = 33;
        variables.push_back({name, NC_CHAR, {"rows_" + name, "len_name"}, {}});
        for (const std::string& row : rows)
            variables.back().text += row + std::string(33 - row.size(), '\0');
    }
    /// Elements of one type, each with as many nodes.
    void block(const std::string& type, std::size_t nodes, const std::vector<double>& connectivity) {
        const std::string number = std::to_string(++dimensions["num_el_blk"]);
        dimensions["num_elem"] += connectivity.size() / nodes;
        dimensions["num_el_in_blk" + number] = connectivity.size() / nodes;
        dimensions["num_nod_per_el" + number] = nodes;
        whole("connect" + number, {"num_el_in_blk" + number, "num_nod_per_el" + number}, connectivity);
        variables.back().elementType = type;
    }
    void points(const std::vector<std::vector<double>>& axes) {
        dimensions["num_dim"] = axes.size();
        dimensions["num_nodes"] = axes[0].size();
        for (std::size_t i = 0; i < axes.size(); ++i)
            real(i == 0 ? "coordx" : i == 1 ? "coordy" : "coordz", {"num_nodes"}, axes[i]);
    }

    void write(const std::string& path, int mode = NC_CLOBBER) const {
        int file = -1, id = -1;
        ASSERT_EQ(nc_create(path.c_str(), NC_CLOBBER | mode, &file), NC_NOERR);
        std::map<std::string, int> ids;
        for (const auto& [name, length] : dimensions)
            nc_def_dim(file, name.c_str(), name == "time_step" ? NC_UNLIMITED : length, &ids[name]);
        for (const ExodusVariable& variable : variables) {
            std::vector<int> dims;
            for (const std::string& name : variable.dimensions)
                dims.push_back(ids.at(name));
            ASSERT_EQ(nc_def_var(file, variable.name.c_str(), variable.type, static_cast<int>(dims.size()),
                                 dims.data(), &id),
                      NC_NOERR)
                << variable.name;
            if (const std::string& type = variable.elementType; !type.empty())
                nc_put_att_text(file, id, "elem_type", type.size(), type.c_str());
        }
        ASSERT_EQ(nc_enddef(file), NC_NOERR);
        for (id = 0; const ExodusVariable& variable : variables) {
            std::vector<std::size_t> first(variable.dimensions.size()), counts;
            for (const std::string& name : variable.dimensions)
                counts.push_back(dimensions.at(name));
            const int result =
                variable.type == NC_CHAR ? nc_put_var_text(file, id, variable.text.data())
                : variable.values.empty()
                    ? NC_NOERR
                    : nc_put_vara_double(file, id, first.data(), counts.data(), variable.values.data());
            EXPECT_EQ(result, NC_NOERR) << variable.name;
            ++id;
        }
        ASSERT_EQ(nc_close(file), NC_NOERR);
    }
};

} // namespace nrutest
