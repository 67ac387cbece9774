#include "tests/support/subprocess.h"

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>

#include <gtest/gtest.h>

namespace nrutest {

namespace {

constexpr const char* kChildMark = "NRUTEST_CHILD";

[[noreturn]] void become(const std::vector<std::string>& command, const Environment& environment) {
    for (const auto& [name, value] : environment)
        setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

} // namespace

ProcessResult runProgram(const std::vector<std::string>& command, const Environment& environment) {
    ProcessResult result;
    int ends[2];
    if (pipe(ends) != 0)
        return result;
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        dup2(ends[1], STDERR_FILENO);
        close(ends[0]);
        close(ends[1]);
        become(command, environment);
    }
    close(ends[1]);
    std::array<char, 4096> buffer;
    for (ssize_t got; (got = ::read(ends[0], buffer.data(), buffer.size())) > 0;)
        result.output.append(buffer.data(), static_cast<std::size_t>(got));
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

bool ranInSubprocess(const Environment& environment) {
    if (std::getenv(kChildMark) != nullptr)
        return false;
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    const std::string name = std::string(info->test_suite_name()) + "." + info->name();
    Environment all = environment;
    all.emplace_back(kChildMark, "1");
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const ProcessResult result = runProgram({self, "--gtest_filter=" + name}, all);
    EXPECT_EQ(result.exitCode, 0) << result.output;
    EXPECT_NE(result.output.find("[  PASSED  ] 1 test"), std::string::npos) << result.output;
    return true;
}

} // namespace nrutest
