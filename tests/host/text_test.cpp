// Narrow and wide text, file names and files.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostutl.h"

namespace fs = std::filesystem;

namespace {

TEST(Text, IllFormedPartsBecomeReplacements) {
    const std::pair<std::string_view, std::wstring> rows[] = {
        {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\u00E9\u20AC\U0001F600"},
        {"\x80x", L"\uFFFDx"},                             // stray continuation
        {"\xC0\x80", L"\uFFFD\uFFFD"},                     // overlong
        {"\xE0\x9F\xBF", L"\uFFFD\uFFFD\uFFFD"},           // overlong
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},           // surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"}, // past the last code point
        {"\xE2\x82", L"\uFFFD"},                           // cut off at the end
        {"\xE2\x82(", L"\uFFFD("},                         // cut off inside
        {"\xF0\x9F\x98\xC3\xA9", L"\uFFFD\u00E9"},         // cut off before another character
        {"\xF8\xFF", L"\uFFFD\uFFFD"},
        {std::string_view("a\0b", 3), std::wstring(L"a\0b", 3)},
    };
    for (const auto& [utf8, wide] : rows)
        EXPECT_EQ(hostWiden(utf8), wide) << ::testing::PrintToString(std::string(utf8));
    EXPECT_EQ(hostNarrow(std::wstring{L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x7FFFFFFF)}),
              "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Text, EveryCodePointComesBack) {
    std::wstring all;
    for (char32_t c = 1; c <= 0x10FFFF; ++c)
        if (c < 0xD800 || c > 0xDFFF)
            all += static_cast<wchar_t>(c);
    const std::string utf8 = hostNarrow(all);
    EXPECT_EQ(utf8.size(), 0x7Fu + 2 * 0x780u + 3 * (0xF800u - 0x800u) + 4 * 0x100000u);
    EXPECT_TRUE(hostWiden(utf8) == all);
}

TEST(Text, IsOrderedByCodePoint) {
    const std::vector<GuString> ordered = {L"", L"A", L"Ab", L"B", L"a", L"\u00E9", L"\uFFFD", L"\U0001F600"};
    for (std::size_t i = 0; i < ordered.size(); ++i)
        for (std::size_t j = 0; j < ordered.size(); ++j)
            EXPECT_EQ(GuStringPredicate()(ordered[i], ordered[j]), i < j) << i << " " << j;
}

TEST(Text, IsReadAsANumberUpToItsEnd) {
    const std::pair<const wchar_t*, float> rows[] = {
        {L"0.25", 0.25f}, {L" \t+1.5x", 1.5f}, {L"-2e-1", -0.2f},    {L"0,5", 0.0f}, {L"abc", 0.0f},
        {L"", 0.0f},      {L".5e", 0.5f},      {L"1e60", HUGE_VALF}, {nullptr, 0.0f}};
    for (const auto& [text, value] : rows)
        EXPECT_EQ(hostWideToFloat(text), value) << hostNarrow(text != nullptr ? text : L"null");
}

TEST(Text, OfAnErrorIsKeptInBothForms) {
    const NErrorPtr error = hostError("no \xE2\x82\xAC");
    EXPECT_STREQ(error->GetText(), L"no \u20AC");
    EXPECT_STREQ(error->GetTextUtf8(), "no \xE2\x82\xAC");
}

TEST(FileName, IsNormalized) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"a\\b/c.png", L"a/b/c.png"},
        {L"a//b\\\\c", L"a/b/c"},
        {L"./a/./b", L"a/b"},
        {L"a/b/../../c", L"c"},
        {L"../a", L"../a"},
        {L"/../a", L"/a"},
        {L"\\data\\\u00E9\\..\\x", L"/data/x"},
        {L"", L""},
    };
    for (const auto& [name, normal] : rows)
        EXPECT_EQ(GuStringFileName(name).Normalized(), GuString(normal)) << hostNarrow(name);
}

TEST(File, ExistsAndHasADate) {
    const fs::path folder = fs::temp_directory_path() / fs::path(std::to_string(::getpid()) + "-nru-files");
    fs::create_directory(folder);
    const GuString root(folder.string());
    const GuStringFileName file = root + L"/\u00E9\u20AC.txt", missing = root + L"/missing";
    std::ofstream(folder / u8"\u00E9\u20AC.txt") << "x";

    EXPECT_TRUE(file.Exists());
    EXPECT_FALSE(missing.Exists());
    EXPECT_FALSE(GuStringFileName(root).Exists()) << "a folder is no file";
    EXPECT_FALSE(GuStringFileName().Exists());
    EXPECT_FALSE(GuStringFileName(file + std::wstring(L"\0.png", 5)).Exists())
        << "text after a null character";

    const std::optional<std::int64_t> before = hostFileDate(file);
    fs::last_write_time(folder / u8"\u00E9\u20AC.txt",
                        fs::last_write_time(folder / u8"\u00E9\u20AC.txt") + std::chrono::microseconds(1500));
    ASSERT_TRUE(before && hostFileDate(file));
    EXPECT_EQ(*hostFileDate(file) - *before, 1500000);
    EXPECT_FALSE(hostFileDate(missing));
    fs::remove_all(folder);
}

} // namespace
