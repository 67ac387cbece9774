// What a benchmark program is made of: cases by name and size, each of which makes the work that is timed.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nrubench {

/// What is run again and again. Its state lives in `run`.
struct Work {
    std::function<void(unsigned turn)> run;
    bool isFrame = true; ///< the program clears the picture before and finishes it after, timed with it
    double covered = 0;  ///< least share of the picture that is drawn, so that no figure is of an empty one
};

struct Case {
    std::string name; ///< family.thing, the same in every program that does this work
    std::vector<unsigned> sizes;
    std::function<Work(unsigned size)> make;
    std::string note = {}; ///< what is not as in the library's own case
    bool once = false;     ///< what is timed happens once in a process: each sample has one of its own
};

/// What a turn of the work does besides taking time.
struct Counts {
    std::map<std::string, int> glCalls;
    long allocations = 0;
};

struct Program {
    const char* name;
    std::vector<Case> cases;
    std::function<void()> clear, finish;
    std::function<std::vector<std::uint32_t>()> readPixels; ///< rows from bottom to top
    std::function<std::string()> driver;                    ///< of the current context; empty without one
    std::function<Counts(const std::function<void()>&)> count = {}; ///< none: not counted
};

/// The command line of a benchmark program; its exit status.
int runProgram(int count, char** arguments, const Program& program);

inline void append(std::vector<Case>& cases, std::vector<Case> more) {
    for (Case& test : more)
        cases.push_back(std::move(test));
}

} // namespace nrubench
