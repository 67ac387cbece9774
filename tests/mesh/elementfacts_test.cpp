// What facts leave to see under modes without a meaning, and the memory that they take.
#include <tuple>

#include <gtest/gtest.h>

#include "NRenderUtl/mesh/elementfacts.h"

TEST(ElementFacts, ModesWithoutAMeaningLeaveAllToSee) {
    const std::tuple<int, int, bool> rows[] = {// clip flag, failure mode; shown
                                               {0, 0, true}, {1, 0, false}, {2, 0, true},
                                               {4, 0, true}, {0, 1, false}, {0, 4, true}};
    for (const auto& [flag, mode, shown] : rows) {
        ElementFacts facts;
        facts.clipCode.writable(1)[0] = 2;
        facts.lower.writable(1)[0] = 5;
        ngl::NglElementAttributes how;
        how.clipFlag = flag;
        how.failureMode = mode;
        how.failureLevel = 5;
        EXPECT_EQ(isElementShown(facts, 0, how), shown) << "clip flag " << flag << ", mode " << mode;
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
