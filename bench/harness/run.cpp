// Runs a program's cases and writes one line of JSON for each.
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <optional>

#include "bench/harness/case.h"
#include "bench/harness/models.h"
#include "bench/harness/timing.h"

namespace nrubench {

namespace {

constexpr const char* kHelp = R"(usage: %s [options]
  --case PATTERN   cases whose name contains PATTERN, or =NAME for one
  --size N         those of one size
  --min-time S     seconds of samples for each (0.5), at least five unless they take 10 s
  --list           names and sizes
  --calls          the OpenGL calls of one turn too, by name, on standard error
  --picture FILE   the last frame as PPM
Several cases run in a process each.
)";

constexpr double kPatience = 10000; ///< ms after which fewer than five samples are enough

struct Options {
    std::string pattern, picture;
    std::optional<unsigned> size;
    double minTime = 0.5;
    bool list = false, calls = false;
};

Options parse(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string name = arguments[i];
        const auto value = [&] {
            check(i + 1 < count, (name + " needs a value").c_str());
            return std::string(arguments[++i]);
        };
        if (name == "--case")
            options.pattern = value();
        else if (name == "--size")
            options.size = static_cast<unsigned>(std::stoul(value()));
        else if (name == "--min-time")
            options.minTime = std::stod(value());
        else if (name == "--picture")
            options.picture = value();
        else if (name == "--list")
            options.list = true;
        else if (name == "--calls")
            options.calls = true;
        else
            throw std::runtime_error("no option " + name + "; see --help");
    }
    return options;
}

bool matches(const std::string& name, const std::string& pattern) {
    return pattern.starts_with('=') ? name == pattern.substr(1) : name.find(pattern) != std::string::npos;
}

// --- samples -----------------------------------------------------------------------------------------------

struct Samples {
    std::vector<double> wall, cpu;
    Times start = now();
    double resident = 0, peak = 0;

    void add(const Times& times) {
        wall.push_back(times.wall);
        cpu.push_back(times.cpu);
    }
    bool areEnough(const Options& options) const {
        const double spent = since(start).wall;
        return spent >= options.minTime * 1000 && (wall.size() >= 5 || spent >= kPatience);
    }
    void takeMemory() {
        resident = statusMegabytes("VmRSS");
        peak = statusMegabytes("VmHWM");
    }
};

class Runner {
public:
    Runner(const Program& program, const Options& options) : m_program(program), m_options(options) {}

    void run(const Case& test, unsigned size) const {
        std::string driver;
        Counts counts;
        const Samples samples =
            test.once ? takeInProcesses(test, size) : takeHere(test, size, driver, counts);
        write(test, size, samples, driver, counts);
    }

private:
    Times turn(const Work& work, unsigned number) const {
        const Times start = now();
        if (work.isFrame)
            m_program.clear();
        work.run(number);
        if (work.isFrame)
            m_program.finish();
        return since(start);
    }

    /// Two turns come before those that count.
    Samples takeHere(const Case& test, unsigned size, std::string& driver, Counts& counts) const {
        const Work work = test.make(size);
        unsigned number = 0;
        for (; number < 2; ++number)
            turn(work, number);
        Samples samples;
        for (; !samples.areEnough(m_options); ++number)
            samples.add(turn(work, number));
        samples.takeMemory();
        checkPicture(work);
        driver = m_program.driver();
        if (m_program.count)
            counts = countTurn(work, number);
        return samples;
    }

    /// The first counted turn also puts the counters in their places.
    Counts countTurn(const Work& work, unsigned number) const {
        Counts counts;
        for (unsigned last = number + 3; number < last; ++number) {
            if (work.isFrame)
                m_program.clear();
            counts = m_program.count([&] { work.run(number); });
        }
        return counts;
    }

    Samples takeInProcesses(const Case& test, unsigned size) const {
        Samples samples;
        while (!samples.areEnough(m_options)) {
            const std::vector<double> sample = inProcess([&] {
                const Work work = test.make(size);
                const Times times = turn(work, 0);
                Samples memory;
                memory.takeMemory();
                checkPicture(work);
                return std::vector{times.wall, times.cpu, memory.resident, memory.peak};
            });
            samples.add({sample[0], sample[1]});
            samples.resident = sample[2];
            samples.peak = sample[3];
        }
        return samples;
    }

    /// Four figures that a function gives in a child process.
    template <class Function>
    static std::vector<double> inProcess(const Function& function) {
        int ends[2];
        check(pipe(ends) == 0, "no pipe");
        const pid_t child = fork();
        check(child >= 0, "no process");
        if (child == 0) {
            try {
                const std::vector<double> figures = function();
                std::_Exit(::write(ends[1], figures.data(), 4 * sizeof(double)) != 4 * sizeof(double));
            } catch (const std::exception& error) {
                std::fprintf(stderr, "%s\n", error.what());
                std::_Exit(1);
            }
        }
        close(ends[1]);
        std::vector<double> figures(4);
        const bool came = ::read(ends[0], figures.data(), 4 * sizeof(double)) == 4 * sizeof(double);
        close(ends[0]);
        waitpid(child, nullptr, 0);
        check(came, "a process gave no figures");
        return figures;
    }

    void checkPicture(const Work& work) const {
        if (!work.isFrame)
            return;
        const std::vector<std::uint32_t> pixels = m_program.readPixels();
        if (!m_options.picture.empty())
            writePicture(pixels);
        const auto drawn =
            std::count_if(pixels.begin(), pixels.end(), [](auto pixel) { return (pixel & 0xFFFFFF) != 0; });
        check(static_cast<double>(drawn) >= work.covered * static_cast<double>(pixels.size()),
              "the picture is empty");
    }

    void writePicture(const std::vector<std::uint32_t>& pixels) const {
        std::ofstream file(m_options.picture, std::ios::binary);
        file << "P6 " << kWidth << " " << kHeight << " 255\n";
        for (int y = kHeight - 1; y >= 0; --y)
            for (int x = 0; x < kWidth; ++x)
                file.write(reinterpret_cast<const char*>(&pixels[static_cast<std::size_t>(y) * kWidth + x]),
                           3);
    }

    void write(const Case& test, unsigned size, const Samples& samples, const std::string& driver,
               const Counts& counts) const {
        const auto wall = quartiles(samples.wall), cpu = quartiles(samples.cpu);
        std::printf("{\"program\":\"%s\",\"case\":\"%s\",\"size\":%u,\"samples\":%zu,"
                    "\"wall_ms\":[%.6g,%.6g,%.6g],\"cpu_ms\":[%.6g,%.6g,%.6g],",
                    m_program.name, test.name.c_str(), size, samples.wall.size(), wall[0], wall[1], wall[2],
                    cpu[0], cpu[1], cpu[2]);
        if (m_program.count && !test.once) {
            int calls = 0;
            for (const auto& [name, number] : counts.glCalls)
                calls += number;
            std::printf("\"gl_calls\":%d,\"allocations\":%ld,", calls, counts.allocations);
        }
        std::printf("\"rss_mb\":%.1f,\"peak_mb\":%.1f,\"driver\":\"%s\",\"note\":\"%s\"}\n", samples.resident,
                    samples.peak, driver.c_str(), test.note.c_str());
        std::fflush(stdout);
        if (m_options.calls)
            for (const auto& [name, number] : counts.glCalls)
                std::fprintf(stderr, "%6d %s\n", number, name.c_str());
    }

    const Program& m_program;
    const Options& m_options;
};

// --- cases -------------------------------------------------------------------------------------------------

using Choice = std::vector<std::pair<const Case*, unsigned>>;

Choice choose(const Program& program, const Options& options) {
    Choice choice;
    for (const Case& test : program.cases)
        for (const unsigned size : test.sizes)
            if (matches(test.name, options.pattern) && (!options.size || *options.size == size))
                choice.emplace_back(&test, size);
    return choice;
}

/// The status of a function in a child process.
template <class Function>
int statusInProcess(const Function& function) {
    const pid_t child = fork();
    check(child >= 0, "no process");
    if (child == 0)
        std::_Exit(function());
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

int runCase(const Runner& runner, const Case& test, unsigned size) {
    try {
        runner.run(test, size);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s %u: %s\n", test.name.c_str(), size, error.what());
        return 1;
    }
}

int runChoice(const Program& program, const Options& options) {
    const Choice choice = choose(program, options);
    check(!choice.empty(), "no such case");
    const Runner runner(program, options);
    int status = 0;
    for (const auto& [test, size] : choice) {
        if (options.list)
            std::printf("%s %u\n", test->name.c_str(), size);
        else if (choice.size() == 1)
            status = runCase(runner, *test, size);
        else
            status |= statusInProcess([&, test = test, size = size] { return runCase(runner, *test, size); });
    }
    return status;
}

} // namespace

int runProgram(int count, char** arguments, const Program& program) {
    if (count > 1 && std::string(arguments[1]) == "--help") {
        std::printf(kHelp, arguments[0]);
        return 0;
    }
    // GL drivers in software free and take tens of megabytes in each frame: the process keeps what it had.
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    try {
        return runChoice(program, parse(count, arguments));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", arguments[0], error.what());
        return 1;
    }
}

} // namespace nrubench
