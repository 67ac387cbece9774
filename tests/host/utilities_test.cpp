// What the library needs of its host: messages, memory, settings, text and files.
#include <chrono>
#include <cstring>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostutl.h"
#include "tests/host/testfiles.h"

namespace {

// A host that writes down what it is asked.
struct Recorder {
    NHostServices services{};
    std::string log;

    ~Recorder() { NHostSetServices(nullptr); }
    static void write(void* self, int number, std::string_view text) {
        static_cast<Recorder*>(self)->log += std::to_string(number) + " " + std::string(text) + "\n";
    }
    static void* allocate(void* self, std::size_t bytes, const char* file, int line) {
        write(self, line, std::to_string(bytes) + file);
        return bytes < 1000 ? std::malloc(bytes) : nullptr;
    }
    static void release(void* self, void* block) {
        write(self, 0, "release");
        std::free(block);
    }
    explicit Recorder(bool withMemory) {
        services.context = this;
        services.message = [](void* self, int kind, const char* text) { write(self, kind, text); };
        services.diagnostic = [](void* self, int level, const char* text) { write(self, -level, text); };
        services.setting = [](void*, const char* name) {
            return std::string_view(name) == "NRU_A" ? "host" : nullptr;
        };
        services.allocate = withMemory ? allocate : nullptr;
        services.release = withMemory ? release : nullptr;
    }
};

TEST(Services, ReceiveMessagesUntilTheDefaultsReturn) {
    Recorder host(false);
    ASSERT_EQ(NHostSetServices(&host.services), 0);
    host.services = {}; // the record was copied
    NHostServices parts[2] = {};
    parts[0].allocate = Recorder::allocate;
    parts[1].freeImage = [](void*, void*) {};
    for (const NHostServices& part : parts)
        EXPECT_EQ(NHostSetServices(&part), -1) << &part - parts;
    hostMessage(NHostMessageStatus, "compiled");
    hostDiagnostic(NHostDiagnosticMisuse, hostFormat("%d of %s", 3, "five").c_str());
    EXPECT_EQ(host.log, "2 compiled\n-1 3 of five\n");

    ASSERT_EQ(NHostSetServices(nullptr), 0);
    ::testing::internal::CaptureStderr();
    hostMessage(NHostMessageNote, "to the console");
    hostDiagnostic(NHostDiagnosticCount, "100 % with its own end\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "to the console\n100 % with its own end\n");
}

TEST(Memory, OfTheLibraryIsAlignedAndReported) {
    Recorder host(false);
    ASSERT_EQ(NHostSetServices(&host.services), 0);
    std::vector<void*> blocks;
    for (const std::size_t bytes : {0, 1, 15, 16, 1000}) {
        blocks.push_back(NHostAllocate(bytes, "room.cpp", static_cast<int>(bytes) + 1));
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) % 16, 0u) << bytes;
        std::memset(blocks.back(), 0xAB, bytes);
    }
    EXPECT_EQ(NHostAllocate(SIZE_MAX - 8, "room.cpp", 1), nullptr);
    for (const int freed : {2, 4, 0}) // middle, newest, oldest
        NHostFree(blocks[freed]);
    NHostFree(nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 2u);
    EXPECT_EQ(NHostReportLiveBlocks(), 2u);
    EXPECT_EQ(host.log, "-2 16 bytes allocated at room.cpp:17 are still alive\n"
                        "-2 1 bytes allocated at room.cpp:2 are still alive\n");
    NHostFree(blocks[1]);
    NHostFree(blocks[3]);
    EXPECT_EQ(NHostReportLiveBlocks(), 0u);
}

TEST(Memory, OfTheHostIsPassedThroughAndStaysWhileBlocksLive) {
    Recorder host(true), other(true), none(false);
    ASSERT_EQ(NHostSetServices(&host.services), 0);
    void* block = NHostAllocate(24, "b.cpp", 7);
    EXPECT_EQ(NHostAllocate(1000, "b.cpp", 9), nullptr) << "more than this host has";
    EXPECT_EQ(NHostLiveBlocks(), 1u);
    for (const Recorder* change : {&none, &other}) // another context is another allocator
        EXPECT_EQ(NHostSetServices(&change->services), -1);
    NHostFree(block);
    EXPECT_EQ(host.log, "7 24b.cpp\n9 1000b.cpp\n0 release\n");
    EXPECT_EQ(NHostLiveBlocks(), 0u);
    EXPECT_EQ(NHostSetServices(&other.services), 0);
}

TEST(Settings, AreReadFromTheirTextTheHostsFirst) {
    constexpr int kDefault = 77;
    const std::tuple<const char*, int, int> rows[] = {
        // as an integer, and as a boolean: 2 is the default
        {"1", 1, 1}, {"  -12\t", -12, 2},  {"+5", 5, 2}, {" Off ", kDefault, 0}, {"TRUE", kDefault, 1},
        {"0", 0, 0}, {"+-5", kDefault, 2}, {"", 77, 2},  {"5x", kDefault, 2},    {"2147483648", kDefault, 2}};
    for (const auto& [text, asInt, asBool] : rows) {
        setenv("NRU_TEST", text, 1);
        EXPECT_EQ(hostIntSetting("NRU_TEST", kDefault), asInt) << '"' << text << '"';
        for (const bool byDefault : {false, true})
            EXPECT_EQ(hostBoolSetting("NRU_TEST", byDefault), asBool == 2 ? byDefault : asBool == 1) << text;
    }
    Recorder host(false);
    ASSERT_EQ(NHostSetServices(&host.services), 0);
    setenv("NRU_A", "7", 1);
    setenv("NRU_B", "\xC3\xA9", 1);
    EXPECT_EQ(hostSetting("NRU_A"), "host");
    EXPECT_EQ(hostEnvironmentInt("NRU_A"), 7) << "read past the host";
    EXPECT_EQ(hostStringSetting("NRU_B", L"none"), GuString(L"\u00E9"));
}

TEST(Text, IllFormedPartsBecomeReplacements) {
    const std::pair<std::string_view, std::wstring> rows[] = {
        {"a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", L"a\u00E9\u20AC\U0001F600"},
        {"\x80x", L"\uFFFDx"},                             // stray continuation
        {"\xC0\x80", L"\uFFFD\uFFFD"},                     // overlong
        {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},           // surrogate
        {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"}, // past the last code point
        {"\xE2\x82", L"\uFFFD"},                           // cut off at the end
        {"\xE2\x82(", L"\uFFFD("},                         // cut off inside
        {"\xF0\x9F\x98\xC3\xA9", L"\uFFFD\u00E9"},         // cut off before another character
    };
    for (const auto& [utf8, wide] : rows)
        EXPECT_EQ(GuString(utf8).Wide(), wide) << ::testing::PrintToString(std::string(utf8));
    EXPECT_EQ(hostNarrow(std::wstring{L'a', static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x7FFFFFFF)}),
              "a\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(FileName, IsNormalizedAndDated) {
    EXPECT_EQ(GuStringFileName(L"./a\\b//..\\c.png").Normalized(), GuString(L"a/c.png"));
    const nrutest::TestFolder folder;
    const GuStringFileName file = folder.write("a", "x");
    EXPECT_TRUE(file.Exists());
    for (const GuString& none : std::initializer_list<GuString>{folder.name(""), folder.name("b"),
                                                                file + std::wstring(L"\0.png", 5)})
        EXPECT_FALSE(GuStringFileName(none).Exists()) << none.Utf8();
    EXPECT_FALSE(hostFileDate(folder.name("b")));
    std::filesystem::last_write_time(folder.path / "a",
                                     std::filesystem::file_time_type(std::chrono::microseconds(1500)));
    EXPECT_EQ(hostFileDate(file), 1500000);
}

} // namespace
