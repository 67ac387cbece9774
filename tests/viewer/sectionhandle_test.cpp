// The section's handle: what a ray takes of it, and where dragging puts the plane.
#include <gtest/gtest.h>

#include "viewer/section/handle.h"

namespace {

using namespace nruview;

/// The plane x = 0.5 with an arrow of length 1.
const SectionHandle kHandle = {{0.5, 0, 0}, {1, 0, 0}, {0, 2, 0}, {0, 0, 1}, {1.5, 0, 0}};

Ray along(const Point& through, const Point& direction) {
    return {through - 10.0 * unit(direction), unit(direction)};
}

TEST(SectionHandle, ARayTakesTheTipTheShaftOrTheFrame) {
    using Part = std::optional<HandlePart>;
    const std::tuple<const char*, Point, Point, Part> rows[] = {
        {"the tip", {1.45, 0.01, 0}, {0, 0, -1}, HandlePart::Tip},
        {"the shaft", {0.8, 0.01, 0}, {0, 0, -1}, HandlePart::Shaft},
        {"a side of the frame", {0.5, 2.01, 0.3}, {-1, 0, 0.1}, HandlePart::Frame},
        {"a corner of the frame", {0.5, -2, -1}, {-1, 0.2, 0}, HandlePart::Frame},
        {"within the frame", {0.5, 1, 0.5}, {-1, 0, 0}, Part{}},
        {"beside all", {0.8, 0.5, 0}, {0, 0, -1}, Part{}},
    };
    for (const auto& [name, through, direction, part] : rows)
        EXPECT_EQ(handlePartAt(kHandle, along(through, direction), 0.05), part) << name;
}

TEST(SectionHandle, MovesThePlaneWithWhatWasTaken) {
    const Point eye = {4, 3, 8};
    const auto seen = [&](const Point& p) { return Ray{eye, unit(p - eye)}; };
    const std::tuple<const char*, HandlePart, Ray, Ray, double> rows[] = {
        // name, part, ray on press, ray now, where the plane is along x
        {"a parallel view", HandlePart::Shaft, along({0.8, 0, 0}, {0, 0, -1}),
         along({1.1, 0.4, 0}, {0, 0, -1}), 0.8},
        {"a slanted view", HandlePart::Frame, along({0.5, 2, 0}, {-1, 0, -1}),
         along({0.2, 2, 0}, {-1, 0, -1}), 0.2},
        {"perspective, a side", HandlePart::Frame, seen({0.5, 2, 0.5}), seen({0.9, 2, 0.5}), 0.9},
        {"perspective, the shaft", HandlePart::Shaft, seen({0.7, 0, 0}), seen({-0.4, 0, 0}), -0.6},
        {"along the normal", HandlePart::Frame, along({0.5, 2, 0}, {-1, 0, 0}),
         along({0.5, 3, 0}, {-1, 0, 0}), 0.5},
    };
    for (const auto& [name, part, press, now, place] : rows) {
        const Plane plane = draggedPlane({part, kHandle, press}, now);
        EXPECT_EQ(plane.normal, kHandle.normal) << name;
        EXPECT_NEAR(plane.offset, place, 1e-12) << name;
    }
}

TEST(SectionHandle, TurnsThePlaneWithItsTip) {
    const std::tuple<const char*, Point, Ray, Point> rows[] = {
        // name, direction of sight, ray now, the new normal
        {"before the centre", {-1, 0, -1}, along({0.5, 0.6, 0.8}, {-1, 0, -1}), {0, 0.6, 0.8}},
        {"to the rim", {0, 0, -1}, along({0.5, 1, 0}, {0, 0, -1}), {0, 1, 0}},
        {"beyond the rim", {0, 0, -1}, along({0.5, 5, 0}, {0, 0, -1}), {0, 1, 0}},
        {"behind the centre", {1, 0, -1}, along({0.5, 0.6, -0.8}, {1, 0, -1}), {0, 0.6, -0.8}},
    };
    for (const auto& [name, sight, now, normal] : rows) {
        const HandleGrip grip = {HandlePart::Tip, kHandle, along(kHandle.tip, sight)};
        const Plane plane = draggedPlane(grip, now);
        EXPECT_LT(length(plane.normal - normal), 1e-7) << name;
        EXPECT_NEAR(plane.distance(kHandle.centre), 0.0, 1e-12) << name;
    }
}

} // namespace
