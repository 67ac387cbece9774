// The services that a host may replace: messages, diagnostics, settings and memory.
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/host/hostutl.h"

namespace {

// A host that writes down what it is asked.
struct Recorder {
    std::vector<std::string> log;
    bool outOfMemory = false;

    ~Recorder() { NHostSetServices(nullptr); }

    static Recorder& of(void* context) { return *static_cast<Recorder*>(context); }
    static void message(void* context, int kind, const char* text) {
        of(context).log.push_back("message " + std::to_string(kind) + " " + text);
    }
    static void diagnostic(void* context, int level, const char* text) {
        of(context).log.push_back("diagnostic " + std::to_string(level) + " " + text);
    }
    static const char* setting(void*, const char* name) {
        return std::strcmp(name, "NRU_TEST_HOST") == 0 ? "host" : nullptr;
    }
    static void* allocate(void* context, std::size_t bytes, const char* file, int line) {
        of(context).log.push_back(std::to_string(bytes) + " " + file + ":" + std::to_string(line));
        return of(context).outOfMemory ? nullptr : std::malloc(bytes);
    }
    static void release(void* context, void* block) {
        of(context).log.push_back("release");
        std::free(block);
    }
    static unsigned char* loadImage(void*, const char*, int, int*, int*) { return nullptr; }
    static float* loadFloatImage(void*, const char*, int, int*, int*) { return nullptr; }
    static void freeImage(void*, void*) {}

    NHostServices services() {
        NHostServices s{};
        s.context = this;
        s.message = message;
        s.diagnostic = diagnostic;
        return s;
    }
};

TEST(Services, ReceiveMessagesUntilTheDefaultsReturn) {
    Recorder host;
    NHostServices services = host.services();
    ASSERT_EQ(NHostSetServices(&services), 0);
    services = {}; // the record was copied
    hostMessage(NHostMessageStatus, "compiled");
    hostDiagnostic(NHostDiagnosticMisuse, hostFormat("%d of %s", 3, "five").c_str());
    EXPECT_EQ(host.log, (std::vector<std::string>{"message 2 compiled", "diagnostic 1 3 of five"}));

    ASSERT_EQ(NHostSetServices(nullptr), 0);
    ::testing::internal::CaptureStderr();
    hostMessage(NHostMessageNote, "to the console");
    hostDiagnostic(NHostDiagnosticCount, "100 % with its own end\n");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "to the console\n100 % with its own end\n");
    EXPECT_EQ(host.log.size(), 2u);
}

TEST(Services, InPartsAreRefused) {
    Recorder host;
    const NHostServices whole = host.services();
    ASSERT_EQ(NHostSetServices(&whole), 0);
    NHostServices rows[6] = {};
    rows[0].allocate = Recorder::allocate;
    rows[1].release = Recorder::release;
    rows[2].loadImage = Recorder::loadImage;
    rows[3].loadFloatImage = Recorder::loadFloatImage;
    rows[4].freeImage = Recorder::freeImage;
    rows[5].loadImage = Recorder::loadImage;
    rows[5].freeImage = Recorder::freeImage;
    for (const NHostServices& row : rows) {
        EXPECT_EQ(NHostSetServices(&row), -1) << &row - rows;
        hostMessage(0, "x");
        EXPECT_EQ(host.log.size(), static_cast<std::size_t>(&row - rows) + 1) << "the old record is in force";
    }
}

TEST(Memory, OfTheLibraryIsAlignedAndReported) {
    Recorder host;
    const NHostServices services = host.services();
    ASSERT_EQ(NHostSetServices(&services), 0);
    std::vector<void*> blocks;
    for (std::size_t bytes : {0, 1, 15, 16, 1000}) {
        blocks.push_back(NHostAllocate(bytes, "room.cpp", static_cast<int>(bytes) + 1));
        ASSERT_NE(blocks.back(), nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) % 16, 0u) << bytes;
        std::memset(blocks.back(), 0xAB, bytes);
    }
    EXPECT_EQ(NHostAllocate(std::numeric_limits<std::size_t>::max() - 8, "room.cpp", 1), nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 5u);
    for (int freed : {2, 4, 0}) // middle, newest, oldest
        NHostFree(blocks[freed]);
    NHostFree(nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 2u);
    EXPECT_EQ(NHostReportLiveBlocks(), 2u);
    EXPECT_EQ(host.log,
              (std::vector<std::string>{"diagnostic 2 16 bytes allocated at room.cpp:17 are still alive",
                                        "diagnostic 2 1 bytes allocated at room.cpp:2 are still alive"}));
    NHostFree(blocks[3]);
    NHostFree(blocks[1]);
    EXPECT_EQ(NHostReportLiveBlocks(), 0u);
}

TEST(Memory, OfTheHostIsPassedThrough) {
    Recorder host;
    NHostServices services = host.services();
    services.allocate = Recorder::allocate;
    services.release = Recorder::release;
    ASSERT_EQ(NHostSetServices(&services), 0);
    void* block = NHostAllocate(24, "mesh.cpp", 7);
    host.outOfMemory = true;
    EXPECT_EQ(NHostAllocate(8, "mesh.cpp", 9), nullptr);
    EXPECT_EQ(NHostLiveBlocks(), 1u);
    EXPECT_EQ(NHostReportLiveBlocks(), 0u) << "only blocks of the default allocator are known one by one";
    NHostFree(block);
    EXPECT_EQ(NHostLiveBlocks(), 0u);
    EXPECT_EQ(host.log, (std::vector<std::string>{"24 mesh.cpp:7", "8 mesh.cpp:9", "release"}));
}

TEST(Memory, KeepsItsFunctionsWhileBlocksLive) {
    Recorder first, second;
    NHostServices memory = first.services(), other = second.services();
    memory.allocate = other.allocate = Recorder::allocate;
    memory.release = other.release = Recorder::release;
    const NHostServices messagesOnly = first.services();

    void* ofTheLibrary = NHostAllocate(8, "a.cpp", 1);
    EXPECT_EQ(NHostSetServices(&memory), -1);
    EXPECT_EQ(NHostSetServices(&messagesOnly), 0) << "the memory functions stay the same";
    NHostFree(ofTheLibrary);

    ASSERT_EQ(NHostSetServices(&memory), 0);
    void* ofTheHost = NHostAllocate(8, "a.cpp", 2);
    EXPECT_EQ(NHostSetServices(nullptr), -1);
    EXPECT_EQ(NHostSetServices(&messagesOnly), -1);
    EXPECT_EQ(NHostSetServices(&other), -1) << "another context is another allocator";
    NHostFree(ofTheHost);
    EXPECT_EQ(first.log.back(), "release");
    EXPECT_EQ(NHostSetServices(nullptr), 0);
}

TEST(Settings, AreReadFromTheirText) {
    constexpr int kDefault = 77;
    struct Row {
        const char* text;
        int asInt;
        int asBool; // 2: the default
    };
    const Row rows[] = {{"1", 1, 1},          {"0", 0, 0},           {"TRUE", kDefault, 1},
                        {"No", kDefault, 0},  {"on", kDefault, 1},   {" Off ", kDefault, 0},
                        {"  -12\t", -12, 2},  {"+5", 5, 2},          {"", kDefault, 2},
                        {"5x", kDefault, 2},  {"1.5", kDefault, 2},  {"2147483648", kDefault, 2},
                        {"+-5", kDefault, 2}, {"0x10", kDefault, 2}, {"yes please", kDefault, 2}};
    for (const Row& row : rows) {
        setenv("NRU_TEST_SETTING", row.text, 1);
        EXPECT_EQ(hostIntSetting("NRU_TEST_SETTING", kDefault), row.asInt) << '"' << row.text << '"';
        EXPECT_EQ(hostEnvironmentInt("NRU_TEST_SETTING").value_or(kDefault), row.asInt) << row.text;
        for (bool byDefault : {false, true})
            EXPECT_EQ(hostBoolSetting("NRU_TEST_SETTING", byDefault),
                      row.asBool == 2 ? byDefault : row.asBool == 1)
                << '"' << row.text << '"';
    }
    unsetenv("NRU_TEST_SETTING");
    EXPECT_EQ(hostIntSetting("NRU_TEST_SETTING", kDefault), kDefault);
    EXPECT_TRUE(hostBoolSetting("NRU_TEST_SETTING", true));
    EXPECT_FALSE(hostSetting("NRU_TEST_SETTING"));
}

TEST(Settings, OfTheHostComeBeforeTheEnvironment) {
    Recorder host;
    NHostServices services = host.services();
    services.setting = Recorder::setting;
    ASSERT_EQ(NHostSetServices(&services), 0);
    setenv("NRU_TEST_HOST", "7", 1);
    setenv("NRU_TEST_OTHER", "\xC3\xA9", 1);
    EXPECT_EQ(hostSetting("NRU_TEST_HOST"), "host");
    EXPECT_EQ(hostEnvironmentInt("NRU_TEST_HOST"), 7) << "read past the host";
    EXPECT_EQ(hostStringSetting("NRU_TEST_OTHER", L"none"), GuString(L"\u00E9"));
    EXPECT_EQ(hostStringSetting("NRU_TEST_ABSENT", L"none"), GuString(L"none"));
}

TEST(Tolerance, GrowsWithTheValue) {
    EXPECT_DOUBLE_EQ(hostTolerance(0), 1e-30);
    EXPECT_DOUBLE_EQ(hostTolerance(1e-25), 1e-30);
    EXPECT_DOUBLE_EQ(hostTolerance(-5), 5e-10);
    EXPECT_TRUE(hostEqual(1e6, 1e6 + 9e-5));
    EXPECT_FALSE(hostEqual(1e6, 1e6 + 2e-4));
    EXPECT_FALSE(hostEqual(0, 1e-20));
    EXPECT_FALSE(hostEqual(-3, 3));
    const double infinity = std::numeric_limits<double>::infinity(),
                 nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(hostEqual(infinity, infinity));
    EXPECT_FALSE(hostEqual(infinity, -infinity));
    EXPECT_FALSE(hostEqual(infinity, 1));
    EXPECT_FALSE(hostEqual(nan, nan));
}

} // namespace
