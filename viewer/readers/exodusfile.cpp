// Exodus II lies in netCDF's classic formats or in HDF5; libnetcdf reads them all.
#include "viewer/readers/exodusfile.h"

#include <netcdf.h>

#include "viewer/readers/apart.h"

namespace nruview::readers {

namespace {

void check(int status, const std::string& what) {
    if (status != NC_NOERR)
        throw Refusal("cannot be read: " + what + ": " + nc_strerror(status));
}

int load(int file, int variable, double* values) {
    return nc_get_var_double(file, variable, values);
}
int load(int file, int variable, long long* values) {
    return nc_get_var_longlong(file, variable, values);
}
int load(int file, int variable, std::uint32_t* values) {
    return nc_get_var_uint(file, variable, values);
}

std::string counted(const std::vector<std::size_t>& shape) {
    std::string text;
    for (const std::size_t length : shape)
        text += (text.empty() ? "" : " x ") + std::to_string(length);
    return text.empty() ? "one" : text;
}

/// The product, or nothing where it is no size of anything that could be in memory.
std::optional<std::size_t> product(const std::vector<std::size_t>& shape) {
    std::size_t result = 1;
    for (const std::size_t length : shape)
        if (__builtin_mul_overflow(result, length, &result))
            return {};
    return result < std::size_t{1} << 48 ? std::optional(result) : std::nullopt;
}

std::string trimmed(const std::string& text) {
    const std::string line = text.substr(0, text.find('\0'));
    const std::size_t first = line.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : oneLine(line.substr(first, line.find_last_not_of(' ') + 1 - first));
}

} // namespace

ExodusFile::ExodusFile(const std::filesystem::path& path)
    : m_fileSize(static_cast<std::size_t>(std::filesystem::file_size(path))) {
    // An absolute path cannot be taken for an address to download from.
    check(nc_open(std::filesystem::absolute(path).c_str(), NC_NOWRITE, &m_id), "netCDF");
    try {
        compareSizes();
    } catch (...) {
        nc_close(m_id);
        throw;
    }
}

ExodusFile::~ExodusFile() {
    nc_close(m_id);
}

/// In the classic formats libnetcdf reads zeros behind the end of a file that is cut short.
void ExodusFile::compareSizes() const {
    int format = 0, variables = 0;
    check(nc_inq_format(m_id, &format), "its format");
    check(nc_inq_nvars(m_id, &variables), "its variables");
    if (format == NC_FORMAT_NETCDF4 || format == NC_FORMAT_NETCDF4_CLASSIC)
        return;
    std::size_t left = m_fileSize;
    for (int id = 0; id < variables; ++id) {
        nc_type type = NC_NAT;
        std::size_t size = 0;
        check(nc_inq_vartype(m_id, id, &type), "its variables");
        check(nc_inq_type(m_id, type, nullptr, &size), "its types");
        const auto count = product(shapeOf(id));
        if (!count || *count > left / size)
            throw Refusal("is cut short: it cannot hold the variables that it announces");
        left -= *count * size;
    }
}

int ExodusFile::variable(const std::string& name) const {
    int id = -1;
    if (nc_inq_varid(m_id, name.c_str(), &id) != NC_NOERR)
        throw Refusal("has no " + name);
    return id;
}

bool ExodusFile::has(const std::string& variable) const {
    int id = -1;
    return nc_inq_varid(m_id, variable.c_str(), &id) == NC_NOERR;
}

std::size_t ExodusFile::dimension(const std::string& name) const {
    int id = -1;
    std::size_t length = 0;
    if (nc_inq_dimid(m_id, name.c_str(), &id) != NC_NOERR || nc_inq_dimlen(m_id, id, &length) != NC_NOERR)
        return 0;
    return length;
}

std::vector<std::size_t> ExodusFile::shapeOf(int variable) const {
    int count = 0;
    check(nc_inq_varndims(m_id, variable, &count), "its variables");
    std::vector<int> dimensions(static_cast<std::size_t>(count));
    check(nc_inq_vardimid(m_id, variable, dimensions.data()), "its variables");
    std::vector<std::size_t> lengths(dimensions.size());
    for (std::size_t i = 0; i < lengths.size(); ++i)
        check(nc_inq_dimlen(m_id, dimensions[i], &lengths[i]), "its dimensions");
    return lengths;
}

std::vector<std::size_t> ExodusFile::shape(const std::string& name) const {
    return shapeOf(variable(name));
}

template <typename Value>
std::vector<Value> ExodusFile::values(const std::string& name, std::size_t count) const {
    const int id = variable(name);
    const std::vector<std::size_t> lengths = shapeOf(id);
    if (product(lengths) != count)
        throw Refusal("has " + counted(lengths) + " values of " + name + " instead of " +
                      std::to_string(count));
    if (count > memoryFor(m_fileSize) / sizeof(Value))
        throw Refusal("needs more memory than a file of its size should");
    std::vector<Value> values(count);
    if (count > 0)
        check(load(m_id, id, values.data()), name);
    return values;
}

template std::vector<double> ExodusFile::values(const std::string&, std::size_t) const;
template std::vector<long long> ExodusFile::values(const std::string&, std::size_t) const;
template std::vector<std::uint32_t> ExodusFile::values(const std::string&, std::size_t) const;

void ExodusFile::row(const std::string& name, std::vector<std::size_t> place,
                     std::span<double> values) const {
    const int id = variable(name);
    const std::vector<std::size_t> lengths = shapeOf(id);
    if (lengths.size() != place.size() + 1 || lengths.back() != values.size())
        throw Refusal("has " + counted(lengths) + " values of " + name + " instead of " +
                      std::to_string(values.size()) + " at each step");
    std::vector<std::size_t> counts(lengths.size(), 1);
    counts.back() = values.size();
    place.push_back(0);
    if (!values.empty())
        check(nc_get_vara_double(m_id, id, place.data(), counts.data(), values.data()), name);
}

std::vector<std::string> ExodusFile::texts(const std::string& name) const {
    if (!has(name))
        return {};
    const int id = variable(name);
    nc_type type = NC_NAT;
    check(nc_inq_vartype(m_id, id, &type), name);
    const std::vector<std::size_t> lengths = shapeOf(id);
    const auto size = product(lengths);
    if (type != NC_CHAR || lengths.size() != 2 || !size || *size > memoryFor(m_fileSize))
        throw Refusal("has no rows of characters in " + name);
    std::string all(*size, '\0');
    if (!all.empty())
        check(nc_get_var_text(m_id, id, all.data()), name);
    std::vector<std::string> rows;
    for (std::size_t row = 0; row < lengths[0]; ++row)
        rows.push_back(trimmed(all.substr(row * lengths[1], lengths[1])));
    return rows;
}

std::string ExodusFile::attribute(const std::string& name, const char* attribute) const {
    const int id = variable(name);
    nc_type type = NC_NAT;
    std::size_t length = 0;
    if (nc_inq_att(m_id, id, attribute, &type, &length) != NC_NOERR || type != NC_CHAR)
        return "";
    std::string text(length, '\0');
    check(nc_get_att_text(m_id, id, attribute, text.data()), name);
    return trimmed(text);
}

} // namespace nruview::readers
