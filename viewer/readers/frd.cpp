// CalculiX result files, .frd: header, nodes, elements, then blocks of results, each behind a line that
// begins with its name (https://www.dhondt.de, manual of the pre- and postprocessor, "result format").
#include "viewer/readers/frdresults.h"

namespace nruview::readers {

namespace {

bool isNamed(std::string_view line, std::string_view name) {
    return trimmed(line).starts_with(name);
}

void readMaterial(FrdFile& file, std::string_view line) {
    if (const auto number = wholeNumber(column(line, 9, 5)))
        file.materials[*number] = column(line, 14, line.size());
}

/// Nodes and elements; the first line after them that is neither is left.
void readMesh(FrdFile& file) {
    while (!file.cursor.atEnd() && !file.cursor.isNext("    1P") && !file.cursor.isNext("  100C") &&
           !file.cursor.isNext(" 9999")) {
        const std::string_view line = file.cursor.line();
        if (isNamed(line, "1UMAT"))
            readMaterial(file, line);
        else if (isNamed(line, "2C"))
            readFrdNodes(file, line);
        else if (isNamed(line, "3C"))
            readFrdElements(file, line);
        else if (!isNamed(line, "1C") && !isNamed(line, "1U") && !trimmed(line).empty())
            throw Refusal("has a line that begins no block: '" + std::string(line.substr(0, 40)) + "'");
    }
}

void readResults(FrdFile& file) {
    FrdResults results(file);
    while (!file.cursor.atEnd()) {
        const std::string_view line = file.cursor.line();
        if (isNamed(line, "9999"))
            break;
        if (isNamed(line, "1P"))
            results.readParameter(line);
        else if (isNamed(line, "100C"))
            results.readBlock(line);
        else if (!isNamed(line, "1U") && !trimmed(line).empty())
            throw Refusal("has a line that begins no block: '" + std::string(line.substr(0, 40)) + "'");
    }
    results.finish();
}

} // namespace

bool isFrd(std::string_view content) {
    return content.starts_with("    1C") || content.starts_with("    1U") || content.starts_with("    2C");
}

Model readFrd(std::string_view content) {
    FrdFile file{FrdCursor(content), {}, {}};
    readMesh(file);
    if (file.model.cellCount() == 0)
        throw Refusal(file.model.notes.empty()
                          ? "has no elements"
                          : "has no elements of a supported type; " + file.model.notes.front());
    readResults(file);
    return std::move(file.model);
}

} // namespace nruview::readers
