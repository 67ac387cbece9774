// Changes of element meshes: they show where they were made, and upload what they are.
#include <functional>
#include <random>
#include <tuple>

#include "tests/mesh/elementsheet.h"

using namespace nrutest;
using namespace ngl;

namespace {

/// Calls of two entry points that fill buffers, and the bytes of the second.
struct Uploads {
    int made = 0, updates = 0;
    long bytes = 0;
    bool operator==(const Uploads&) const = default;
} uploads;
PFNGLBUFFERDATAPROC bufferData;
PFNGLBUFFERSUBDATAPROC bufferSubData;

void countUploads() {
    // The entry points are looked up by their first call.
    RenderGLBuffer buffer;
    buffer.Create(GL_ARRAY_BUFFER, 4, nullptr, GL_STATIC_DRAW);
    buffer.Update(&uploads);
    bufferData = epoxy_glBufferData;
    bufferSubData = epoxy_glBufferSubData;
    epoxy_glBufferData = [](GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
        ++uploads.made;
        bufferData(target, size, data, usage);
    };
    epoxy_glBufferSubData = [](GLenum target, GLintptr offset, GLsizeiptr size, const void* data) {
        ++uploads.updates;
        uploads.bytes += size;
        bufferSubData(target, offset, size, data);
    };
}

} // namespace

TEST_F(ElementTiles, ChangesShowWhereTheyWereMade) {
    std::mt19937 random(7);
    const auto below = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
    std::vector<std::uint32_t> colors(64, kPlain), selections(64, 0);
    for (int change = 0; change < 28; ++change) {
        // A range, a list or a single one, in turn.
        std::vector<std::uint32_t> list;
        NglElements elements = NglElements::One(below(64));
        if (change % 3 == 1) {
            const std::uint32_t first = below(64);
            elements = NglElements::Range(first, below(65 - first));
        } else if (change % 3 == 2) {
            for (std::uint32_t i = below(30); i > 0; --i)
                list.push_back(below(64));
            elements = NglElements::List(list.data(), static_cast<std::uint32_t>(list.size()));
        }
        const std::uint32_t color = 0xFF000000 | random() >> 8;
        const auto selection = static_cast<NglElementSelection>(below(3));
        const auto forAll = [&](std::vector<std::uint32_t>& values, std::uint32_t value) {
            for (std::uint32_t i = 0; i < elements.count; ++i)
                values[elements.list ? elements.list[i] : elements.first + i] = value;
        };
        switch (below(6)) {
        case 0:
            EXPECT_EQ(mesh.SetVisible(elements, below(3) != 0), 0);
            break;
        case 1:
            EXPECT_EQ(mesh.SetColor(elements, color), 0);
            forAll(colors, color);
            break;
        case 2:
            EXPECT_EQ(mesh.ClearColors(elements), 0);
            forAll(colors, kPlain);
            break;
        case 3:
            EXPECT_EQ(mesh.SetSelection(elements, selection), 0);
            forAll(selections, selection);
            break;
        case 4:
            EXPECT_EQ(mesh.SetClipCode(elements, static_cast<int>(below(4))), 0);
            break;
        default:
            EXPECT_EQ(mesh.SetFailureLevel(elements, static_cast<int>(below(6)) - 1,
                                           static_cast<int>(below(6)) - 1),
                      0);
        }
        if (change == 14)
            std::tie(how.clipFlag, how.failureMode, how.failureLevel) = std::tuple{1, 3, 3};
        how.route = kRoutes[change % 4];
        const Picture picture = draw(how);
        for (std::uint32_t e = 0; e < 64; ++e) {
            const std::uint32_t marks[] = {colors[e], kSelected, kHighlighted};
            EXPECT_EQ(middle(picture, e), mesh.IsElementShown(e) ? marks[selections[e]] : kClear)
                << "element " << e << ", change " << change << ", route " << how.route;
        }
    }
}

TEST_F(ElementTiles, WhatIsLeftOutFollowsTheAttributes) {
    setLevels(mesh);
    mesh.SetVisible(NglElements::Range(10, 20), false);
    for (const auto& [clipFlag, mode, level] :
         {std::tuple{0, 0, 0}, {1, 0, 0}, {3, 0, 0}, {1, 1, 4}, {1, 1, 2}, {0, 3, 3}, {0, 0, 0}}) {
        std::tie(how.clipFlag, how.failureMode, how.failureLevel) = std::tuple{clipFlag, mode, level};
        const Picture picture = draw(how);
        for (std::uint32_t e = 0; e < 64; ++e)
            EXPECT_EQ(middle(picture, e), mesh.IsElementShown(e) ? kPlain : kClear)
                << "element " << e << ", flag " << clipFlag << ", mode " << mode << ", level " << level;
    }
}

TEST_F(ElementTiles, AChangeUploadsItsSpanAlone) {
    how.failureMode = 1;
    how.clipFlag = 1;
    const std::uint32_t scattered[] = {40, 8, 9, 30, 20};
    const NglElements list = NglElements::List(scattered, 5);
    const std::vector<NgColorLong> colors(5, 0x123456);
    const std::vector<int> levels(5, 2);
    const std::vector<float> values(64, 0.5f);
    const auto changeAll = [&] {
        mesh.SetElementValues(values.data());
        mesh.SetVisible(NglElements::Range(0, 64), true);
        for (std::uint32_t e = 0; e < 64; e += 2) // too many runs to be drawn one by one
            mesh.SetVisible(NglElements::One(e), false);
        mesh.SetSelection(NglElements::One(0), NglElementSelected);
        mesh.SetColor(NglElements::One(0), 1);
        mesh.SetClipCode(NglElements::One(0), 1);
        mesh.SetFailureLevel(NglElements::One(0), 9, 9);
    };
    mesh.SetColorScale(&scale);
    changeAll();
    countUploads();
    draw(how);
    EXPECT_GT(uploads.made, 0);
    const std::tuple<const char*, std::function<int()>, int, long> rows[] = {
        {"nothing", [] { return 0; }, 0, 0},
        {"one hidden", [&] { return mesh.SetVisible(NglElements::One(3), false); }, 2,
         1 + 4}, // and its colour
        {"selection", [&] { return mesh.SetSelection(list, NglElementSelected); }, 1, 33},
        {"colours", [&] { return mesh.SetColors(list, colors.data()); }, 1, 33 * 4},
        {"levels", [&] { return mesh.SetFailureLevels(list, levels.data(), levels.data()); }, 1, 33 * 4},
        {"values", [&] { return mesh.SetElementValues(NglElements::Range(5, 3), values.data()); }, 1, 12},
        {"two changes",
         [&] { return mesh.SetClipCode(NglElements::One(1), 1) + mesh.SetClipCode(NglElements::One(50), 1); },
         1, 50}};
    for (const auto& [name, change, updates, bytes] : rows) {
        uploads = {};
        EXPECT_EQ(change(), 0);
        draw(how);
        EXPECT_EQ(uploads.made, 0) << name;
        EXPECT_EQ(uploads.updates, updates) << name;
        EXPECT_EQ(uploads.bytes, bytes) << name;
    }
}

TEST_F(ElementTiles, APartIsHiddenByItsIndicesAlone) {
    mesh.SetVisible(NglElements::Range(0, 8), false);
    draw(how);
    countUploads();
    for (std::uint32_t part = 1; part < 8; ++part) {
        mesh.SetVisible(NglElements::Range(8 * part - 8, 8), true);
        mesh.SetVisible(NglElements::Range(8 * part, 8), false);
        uploads = {};
        const Picture picture = draw(how);
        EXPECT_EQ(uploads, (Uploads{0, 1, 16 * 6 * 4})) << "part " << part;
        for (std::uint32_t e = 0; e < 64; ++e)
            EXPECT_EQ(middle(picture, e), e / 8 == part ? kClear : kPlain) << "element " << e;
    }
}
