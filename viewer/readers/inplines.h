// Lines of an Abaqus or CalculiX input file: keywords with their parameters, data in fields, included files.
#pragma once

#include <list>

#include "viewer/readers/readers.h"

namespace nruview::readers {

struct InpKeyword {
    std::string name; ///< in capitals and without blanks: "SOLIDSECTION"
    std::vector<std::array<std::string, 2>>
        parameters; ///< names in capitals and without blanks, values as given

    bool has(std::string_view parameter) const;
    /// Empty where there is none.
    std::string value(std::string_view parameter) const;
};

class InpLines {
public:
    InpLines(std::string_view content, std::filesystem::path folder);

    /// The next line that is neither blank nor a comment, valid until the next call; false at the end of all.
    bool next(std::string_view& line);
    /// The keyword of a line that begins with a star; takes the lines that continue it.
    InpKeyword keyword(std::string_view line);
    /// Goes on with another file, then with this one. Refuses what lies outside the first file's folder.
    void include(const std::string& name);

private:
    struct Source {
        std::string content; ///< empty for the first file
        std::string_view rest;
    };

    std::filesystem::path m_folder;
    std::list<Source> m_sources;
    std::string_view m_again; ///< a line that was looked at and comes next
    std::size_t m_includes = 0, m_bytes = 0;
};

bool isInpKeyword(std::string_view line);

/// The text in capitals: names mean the same in any case.
std::string upperCase(std::string_view text);

/// The fields between commas, without blanks and quotes; a comma at the end of the line begins none.
void splitFields(std::string_view line, std::vector<std::string_view>& fields);

} // namespace nruview::readers
