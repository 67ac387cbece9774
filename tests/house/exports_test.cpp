// The shared library exports what the public headers mark with NRENDERUTL_API: nothing leaks, nothing is
// missing.
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/subprocess.h"

namespace {

using Names = std::set<std::string>;

/// The names that a header marks: the last word before what ends the mark's declaration of a name.
void readMarks(const std::string& header, Names& marked) {
    std::ifstream file(header);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_FALSE(text.empty()) << header;
    const std::string code = std::regex_replace(text, std::regex("//[^\n]*|\n *#(\\\\\n|[^\n])*"), "\n");
    const std::regex mark(R"(NRENDERUTL_API\b(?:[^(;={:]|::)*?(\w+)\s*(?:\[[^\]]*\]\s*)?(?=[(;={]|:(?!:)))");
    for (auto found = std::sregex_iterator(code.begin(), code.end(), mark); found != std::sregex_iterator();
         ++found)
        marked.insert((*found)[1]);
}

/// Qualified names of the dynamic symbols, without parameters and without the words before a class's own
/// tables.
Names exportedNames() {
    const nrutest::ProcessResult nm =
        nrutest::runProgram({NM_PROGRAM, "-D", "--defined-only", "-C", NRENDERUTL_LIBRARY});
    EXPECT_EQ(nm.exitCode, 0) << nm.output;
    const std::regex line(R"(^[0-9a-f]+ . (?:(?:vtable|VTT|typeinfo|typeinfo name) for )?([^(\[@]+).*)");
    // What the sanitizers and the linker add to any library; among it the types of checked functions.
    const std::regex notOurs(
        ".* (__(odr_)?asan_.*|__(start|stop)_asan_globals|_init|_fini|_edata|_end|__bss_start"
        "|typeinfo (name )?for .* \\(.*\\))");
    Names names;
    std::istringstream lines(nm.output);
    std::smatch match;
    for (std::string text; std::getline(lines, text);)
        if (!std::regex_match(text, notOurs))
            names.insert(std::regex_match(text, match, line) ? match[1].str() : text);
    return names;
}

TEST(Exports, AreWhatTheHeadersMark) {
    Names marked;
    std::istringstream headers(PUBLIC_HEADERS);
    for (std::string header; headers >> header;)
        readMarks(PROJECT_SOURCE_DIR "/" + header, marked);
    ASSERT_TRUE(marked.contains("NglMaxColor") && marked.contains("GuString"));
    Names missing = marked;
    for (const std::string& exported : exportedNames()) {
        const std::string symbol = exported.substr(0, exported.find('<'));
        const std::regex word("\\w+");
        bool isMarked = false; // by itself or with its class
        for (auto name = std::sregex_iterator(symbol.begin(), symbol.end(), word);
             name != std::sregex_iterator(); ++name) {
            isMarked |= marked.contains(name->str());
            missing.erase(name->str());
        }
        EXPECT_TRUE(isMarked) << exported << " leaks";
    }
    EXPECT_EQ(missing, Names()) << "marked and not exported";
}

} // namespace
