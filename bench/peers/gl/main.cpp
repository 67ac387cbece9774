// The benchmarks' work in hand-written OpenGL: just what each picture needs, by small shaders and plain
// arrays.
#include "bench/peers/gl/gl.h"

int main(int count, char** arguments) {
    using namespace nrubench;
    std::vector<Case> cases;
    for (const auto family : {meshCases, bodyCases, dotCases, markerCases, flatCases})
        append(cases, family());
    return runProgram(count, arguments,
                      {"gl", std::move(cases), clearWindow, finishWindow, readWindow, driverOfWindow});
}
