#include "viewer/contract/contractreport.h"

#include <iomanip>

#include "viewer/app/offscreen.h"
#include "viewer/contract/contract.h"
#include "viewer/error.h"
#include "viewer/scene/frame.h"

namespace nruview {

namespace {

constexpr int kNameWidth = 36;

char mark(const Cell& cell) {
    switch (cell.outcome) {
    case Outcome::Same:
        return '.';
    case Outcome::Taken:
        return 'h';
    case Outcome::Fault:
        return 'F';
    case Outcome::NotThere:
        break;
    }
    return '-';
}

using Matrix = std::vector<std::vector<Cell>>; ///< by family

void printHeads(std::ostream& out, std::size_t count) {
    for (const std::size_t digit : {std::size_t{10}, std::size_t{1}}) {
        out << std::string(kNameWidth, ' ');
        for (std::size_t i = 1; i <= count; ++i)
            out << i / digit % 10;
        out << "\n";
    }
}

void printMatrix(std::ostream& out, const std::vector<Family>& families, const Matrix& matrix) {
    for (std::size_t i = 0; i < families.size(); ++i)
        out << std::setw(2) << i + 1 << " " << families[i].name << "\n";
    out << "\n";
    printHeads(out, families.size());
    for (std::size_t i = 0; i < hostStates().size(); ++i) {
        out << std::left << std::setw(kNameWidth) << hostStates()[i].name << std::right;
        for (const std::vector<Cell>& cells : matrix)
            out << mark(cells[i]);
        out << "\n";
    }
}

} // namespace

void checkContract(std::ostream& out) {
    OffscreenContext context;
    if (const std::string reason = context.create(Frames::kSize, Frames::kSize); !reason.empty())
        throw ViewerError("off-screen drawing", reason);
    const LibrarySession session;
    Contract contract;
    const std::vector<Family> all = families();
    Matrix matrix;
    std::array<int, 4> counts{};
    for (const Family& family : all)
        matrix.push_back(contract.check(family));
    printMatrix(out, all, matrix);
    for (std::size_t f = 0; f < all.size(); ++f)
        for (std::size_t s = 0; s < matrix[f].size(); ++s) {
            ++counts[static_cast<std::size_t>(matrix[f][s].outcome)];
            if (matrix[f][s].outcome == Outcome::Fault)
                out << "FAULT: " << all[f].name << ", " << hostStates()[s].name << ": " << matrix[f][s].fault
                    << "\n";
        }
    out << "\n"
        << all.size() << " families under " << hostStates().size() << " states: " << counts[0]
        << " pictures the same, " << counts[1] << " as the host wants it, " << counts[2] << " faults";
    if (counts[3] != 0)
        out << ", " << counts[3] << " not on this driver";
    out << "\n";
    if (counts[2] > 0)
        throw ViewerError("contract with the host's OpenGL", std::to_string(counts[2]) + " faults");
}

} // namespace nruview
