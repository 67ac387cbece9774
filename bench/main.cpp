// Times the library, family by family, with what it draws and how much memory that takes: one line of JSON
// for each case and size. `nru_bench --help` tells the options; bench/compare runs it beside the peers.
#include "bench/allocations.h"
#include "bench/cases/cases.h"
#include "bench/glcalls.h"

namespace nrubench {

namespace {

std::vector<Case> allCases() {
    std::vector<Case> cases;
    for (const auto family : {startCases, elementCases, bodyCases, batchCases, markerCases, symbolCases,
                              overlayCases, textureCases, pickCases, colorCases, lightingCases})
        append(cases, family());
    return cases;
}

Counts countTurn(const std::function<void()>& turn) {
    const bool hasContext = !driverOfWindow().empty();
    if (hasContext)
        (void)takeGlCalls();
    const long before = libraryAllocations();
    turn();
    Counts counts;
    counts.allocations = libraryAllocations() - before;
    if (hasContext)
        counts.glCalls = takeGlCalls();
    return counts;
}

} // namespace

} // namespace nrubench

int main(int count, char** arguments) {
    using namespace nrubench;
    return runProgram(
        count, arguments,
        {"library", allCases(), clearWindow, finishWindow, readWindow, driverOfWindow, countTurn});
}
