// The shared library exports what the public headers mark with NRENDERUTL_API: nothing leaks, nothing is
// missing.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/subprocess.h"

namespace {

using Names = std::set<std::string>;

constexpr const char* kMark = "NRENDERUTL_API";

std::vector<std::string> tokensOf(const std::string& header) {
    std::ifstream file(header);
    std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_FALSE(text.empty()) << header;
    text =
        std::regex_replace(text, std::regex(R"(/\*[^]*?\*/|//[^\n]*|\n\s*#(\\\n|[^\n])*|"[^"\n]*")"), "\n");
    const std::regex token(R"(\w+|[{}();:=])");
    std::vector<std::string> tokens(std::sregex_token_iterator(text.begin(), text.end(), token), {});
    tokens.push_back(";"); // every token has one after it
    return tokens;
}

/// Collects the qualified names that a header marks. It follows the scopes around them: one entry for each
/// open brace, empty for those without a name.
void readMarks(const std::string& header, Names& marked) {
    const std::vector<std::string> tokens = tokensOf(header);
    std::vector<std::string> scopes;
    std::string pending; // name of the namespace or class whose brace comes next
    const auto qualified = [&](std::string name) {
        for (auto scope = scopes.rbegin(); scope != scopes.rend(); ++scope)
            name = scope->empty() ? name : *scope + "::" + name;
        return name;
    };
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i) {
        const std::string& t = tokens[i];
        if (t == "namespace" || t == "class" || t == "struct") {
            const bool isMarked = tokens[i + 1] == kMark;
            pending = tokens[i + 1 + isMarked];
            if (isMarked)
                marked.insert(qualified(pending));
            i += 1 + isMarked;
        } else if (t == kMark) {
            const auto end = std::find_if(tokens.begin() + i, tokens.end(),
                                          [](const auto& s) { return s == "(" || s == ";" || s == "="; });
            marked.insert(qualified(*std::prev(end)));
        } else if (t == "{") {
            scopes.push_back(pending);
            pending.clear();
        } else if (t == "}") {
            scopes.pop_back();
        } else if (t == ";" || t == "(") {
            pending.clear();
        }
    }
    EXPECT_TRUE(scopes.empty()) << header << ": braces were misread";
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
    for (const std::string& symbol : exportedNames()) {
        const auto owner = std::find_if(marked.begin(), marked.end(), [&](const std::string& name) {
            return symbol == name || symbol.starts_with(name + "::");
        });
        EXPECT_NE(owner, marked.end()) << symbol << " leaks";
        if (owner != marked.end())
            missing.erase(*owner);
    }
    EXPECT_EQ(missing, Names()) << "marked and not exported";
}

} // namespace
