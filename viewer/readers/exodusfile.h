// Dimensions and variables of a netCDF file, whose shapes are compared with what is expected before memory is
// laid out.
#pragma once

#include "viewer/readers/readers.h"

namespace nruview::readers {

class ExodusFile {
public:
    explicit ExodusFile(const std::filesystem::path& path);
    ~ExodusFile();
    ExodusFile(const ExodusFile&) = delete;
    ExodusFile& operator=(const ExodusFile&) = delete;

    /// Length of a dimension, 0 where there is none of this name.
    std::size_t dimension(const std::string& name) const;
    bool has(const std::string& variable) const;
    /// Lengths of a variable's dimensions.
    std::vector<std::size_t> shape(const std::string& variable) const;

    /// All values of a variable; refuses another number of them. Value: double, long long or std::uint32_t.
    template <typename Value>
    std::vector<Value> values(const std::string& variable, std::size_t count) const;

    /// As many values from a place of a variable on: an index for each but the last of its dimensions.
    void row(const std::string& variable, std::vector<std::size_t> place, std::span<double> values) const;

    /// Rows of characters, each as one line without blanks at its end; empty where there is no such variable.
    std::vector<std::string> texts(const std::string& variable) const;
    std::string attribute(const std::string& variable, const char* name) const;

private:
    int variable(const std::string& name) const;
    std::vector<std::size_t> shapeOf(int variable) const;
    void compareSizes() const;

    int m_id = -1;
    std::size_t m_fileSize = 0;
};

/// "connect3" and the like.
inline std::string numbered(const char* stem, std::size_t number) {
    return stem + std::to_string(number);
}

} // namespace nruview::readers
