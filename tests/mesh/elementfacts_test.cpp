// Which elements clip codes and failure levels leave to see.
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "NRenderUtl/mesh/elementfacts.h"

TEST(ElementFacts, ClipCodes) {
    const std::tuple<int, int, bool> rows[] = {// flag, code; clipped
                                               {0, 2, false}, {1, 1, false}, {1, 2, true}, {1, 255, true},
                                               {2, 2, false}, {3, 3, false}, {3, 2, true}, {3, 0, true}};
    for (const auto& [flag, code, clipped] : rows) {
        ElementFacts facts;
        facts.clipCode.writable(2)[1] = static_cast<std::uint8_t>(code);
        ngl::NglElementAttributes how;
        how.clipFlag = flag;
        EXPECT_EQ(isElementClipped(facts, 1, how), clipped) << "flag " << flag << ", code " << code;
        EXPECT_EQ(isElementShown(facts, 1, how), !clipped);
    }
}

TEST(ElementFacts, FailureLevels) {
    const std::tuple<int, int, int, std::vector<int>> rows[] = {
        // mode, lower, upper; the levels of 0 to 6 at which the element fails
        {0, 2, 5, {}},
        {1, 5, 2, {5, 6}},
        {1, -1, 2, {}},
        {2, 5, 2, {0, 1}},
        {2, 5, -1, {}},
        {3, 5, 2, {0, 1, 5, 6}},
        {3, 2, 5, {0, 1, 2, 3, 4}},
        {3, -1, 3, {0, 1, 2}},
        {3, 4, -1, {4, 5, 6}},
        {3, -1, -1, {}},
        {3, 3, 3, {0, 1, 2, 3, 4, 5, 6}},
        {4, 5, 2, {}}};
    for (const auto& [mode, lower, upper, failing] : rows) {
        ElementFacts facts;
        facts.lower.writable(1)[0] = lower;
        facts.upper.writable(1)[0] = upper;
        ngl::NglElementAttributes how;
        how.failureMode = mode;
        std::vector<int> found;
        for (how.failureLevel = 0; how.failureLevel <= 6; ++how.failureLevel)
            if (isElementFailing(facts, 0, how)) {
                found.push_back(how.failureLevel);
                EXPECT_FALSE(isElementShown(facts, 0, how));
            }
        EXPECT_EQ(found, failing) << "mode " << mode << ", levels " << lower << " and " << upper;
    }
}

TEST(ElementFacts, TakeNoMemoryWhereAllAreAsAtFirst) {
    ElementFacts facts;
    facts.lower.writable(3)[1] = 4;
    facts.visible.writable(3)[2] = 0;
    facts.compact();
    EXPECT_FALSE(facts.lower.isInitial());
    EXPECT_EQ(facts.lower[1], 4);
    EXPECT_EQ(facts.visible[2], 0);
    facts.lower.writable(3)[1] = -1;
    facts.visible.writable(3)[2] = 1;
    facts.compact();
    EXPECT_TRUE(facts.lower.isInitial() && facts.visible.isInitial());
    EXPECT_EQ(facts.lower[1], -1);
}
