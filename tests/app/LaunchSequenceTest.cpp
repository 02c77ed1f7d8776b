#include "app/LaunchSequence.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tb {
namespace {

using ::testing::ElementsAre;

LaunchStep step(const std::string& name, std::vector<std::string>& ran) {
    return {name, [name, &ran] {
                ran.push_back(name);
                return name + " done";
            }};
}

TEST(LaunchSequenceTest, RunsInOrderAndTellsWhatEachStepDid) {
    std::vector<std::string> ran;
    LaunchSequence sequence;
    sequence.append(step("a", ran));
    sequence.append(step("b", ran));

    const auto records = sequence.run();

    EXPECT_THAT(ran, ElementsAre("a", "b"));
    EXPECT_THAT(records, ElementsAre(LaunchRecord{"a", "a done"}, LaunchRecord{"b", "b done"}));
}

TEST(LaunchSequenceTest, StepsJoinNextToTheStepTheyFollow) {
    std::vector<std::string> ran;
    LaunchSequence sequence;
    sequence.append(step("first", ran));
    sequence.append(step("last", ran));

    EXPECT_TRUE(sequence.insertAfter("first", step("second", ran)));
    EXPECT_TRUE(sequence.insertBefore("last", step("third", ran)));
    EXPECT_TRUE(sequence.insertBefore("first", step("zeroth", ran)));
    EXPECT_TRUE(sequence.insertAfter("last", step("after last", ran)));
    EXPECT_FALSE(sequence.insertAfter("missing", step("lost", ran)));

    EXPECT_THAT(sequence.names(),
                ElementsAre("zeroth", "first", "second", "third", "last", "after last"));
    EXPECT_TRUE(sequence.remove("third"));
    EXPECT_FALSE(sequence.remove("third"));
    sequence.run();
    EXPECT_THAT(ran, ElementsAre("zeroth", "first", "second", "last", "after last"));
}

TEST(LaunchSequenceDeathTest, AStepNameIsUsedOnce) {
    std::vector<std::string> ran;
    LaunchSequence sequence;
    sequence.append(step("a", ran));
    EXPECT_DEATH(sequence.insertAfter("a", step("a", ran)), "twice");
}

}  // namespace
}  // namespace tb
