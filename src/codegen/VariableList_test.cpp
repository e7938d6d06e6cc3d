// SPDX-License-Identifier: Apache-2.0
#include "codegen/VariableList.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace tavrin {
namespace {

// The value of a name, or a text that no test gives.
std::string ValueOf(const VariableList& list, std::string_view name) {
    const VariableList::Found found = list.Find(name);
    return found.found ? std::string(found.value) : "(none)";
}

TEST(VariableList, TheFirstOfANameCounts) {
    VariableList list;
    list.Add("x", "first");
    list.Add("y", "other");
    list.Add("x", "second");
    EXPECT_EQ(ValueOf(list, "x"), "first");
    EXPECT_EQ(ValueOf(list, "y"), "other");
}

TEST(VariableList, KeepsEveryPairInOrder) {
    VariableList list;
    list.Add("x", "1");
    list.Add("", "2");
    list.Add("x", "");
    ASSERT_EQ(list.Size(), 3U);
    EXPECT_EQ(list.Name(0), "x");
    EXPECT_EQ(list.Value(0), "1");
    EXPECT_EQ(list.Name(1), "");
    EXPECT_EQ(list.Value(1), "2");
    EXPECT_EQ(list.Name(2), "x");
    EXPECT_EQ(list.Value(2), "");
}

TEST(VariableList, AnEmptyListFindsNothing) {
    VariableList list;
    EXPECT_EQ(ValueOf(list, "x"), "(none)");
    EXPECT_EQ(ValueOf(list, ""), "(none)");
}

TEST(VariableList, NamesAreComparedWholeAndWithCase) {
    VariableList list;
    list.Add("name", "v");
    for (const char* other : {"Name", "nam", "names", "", "name "})
        EXPECT_EQ(ValueOf(list, other), "(none)") << other;
}

TEST(VariableList, AnEmptyNameIsANameAndAnEmptyValueIsAValue) {
    VariableList list;
    list.Add("x", "");
    EXPECT_EQ(ValueOf(list, "x"), "");
    EXPECT_EQ(ValueOf(list, ""), "(none)");
    list.Add("", "of none");
    EXPECT_EQ(ValueOf(list, ""), "of none");
}

TEST(VariableList, LongNamesThatShareBothEndsAreTold) {
    VariableList list;
    list.Add("Noise_out_1_in_place_of_the_other", "one");
    list.Add("Noise_out_2_in_place_of_the_other", "two");
    EXPECT_EQ(ValueOf(list, "Noise_out_1_in_place_of_the_other"), "one");
    EXPECT_EQ(ValueOf(list, "Noise_out_2_in_place_of_the_other"), "two");
    EXPECT_EQ(ValueOf(list, "Noise_out_3_in_place_of_the_other"), "(none)");
}

TEST(VariableList, ExtendingAppendsSeparatorAndValueToTheFirst) {
    VariableList list;
    list.Add("x", "a");
    list.Add("x", "z");
    EXPECT_TRUE(list.Extend("x", "b", ", "));
    EXPECT_TRUE(list.Extend("x", "", "; "));
    EXPECT_EQ(ValueOf(list, "x"), "a, b; ");
    EXPECT_EQ(list.Value(1), "z");
    EXPECT_EQ(list.Size(), 2U);
}

TEST(VariableList, ExtendingAnUnknownNameSetsItWithoutSeparator) {
    VariableList list;
    EXPECT_FALSE(list.Extend("x", "a", ", "));
    EXPECT_EQ(ValueOf(list, "x"), "a");
    EXPECT_TRUE(list.Extend("x", "b", ", "));
    EXPECT_EQ(ValueOf(list, "x"), "a, b");
}

TEST(VariableList, ExtendingTwoNamesInTurnMixesNothing) {
    VariableList list;
    for (int i = 0; i < 50; ++i) {
        list.Extend("x", std::to_string(i), "+");
        list.Extend("y", std::to_string(100 + i), "-");
    }
    EXPECT_EQ(ValueOf(list, "x").substr(0, 10), "0+1+2+3+4+");
    EXPECT_EQ(ValueOf(list, "y").substr(0, 12), "100-101-102-");
    EXPECT_EQ(ValueOf(list, "x").size(), 10U + 40U * 2U + 49U);
    EXPECT_EQ(ValueOf(list, "y").size(), 50U * 3U + 49U);
}

TEST(VariableList, ClearingForgetsAll) {
    VariableList list;
    list.Add("x", "1");
    list.Clear();
    EXPECT_EQ(list.Size(), 0U);
    EXPECT_EQ(ValueOf(list, "x"), "(none)");
    list.Add("x", "2");
    EXPECT_EQ(ValueOf(list, "x"), "2");
}

TEST(VariableList, ACopyLivesOnItsOwn) {
    VariableList list;
    list.Add("x", "1");
    VariableList copy = list;
    copy.Extend("x", "2", ",");
    copy.Add("y", "3");
    list.Clear();
    EXPECT_EQ(ValueOf(copy, "x"), "1,2");
    EXPECT_EQ(ValueOf(copy, "y"), "3");
}

TEST(VariableList, ManyVariablesAreAllFound) {
    VariableList list;
    constexpr int kCount = 5000;
    for (int i = 0; i < kCount; ++i) list.Add("name_" + std::to_string(i), std::to_string(i));
    for (int i = 0; i < kCount; ++i) list.Add("name_" + std::to_string(i), "later");
    for (int i = 0; i < kCount; ++i) ASSERT_EQ(ValueOf(list, "name_" + std::to_string(i)), std::to_string(i));
    EXPECT_EQ(ValueOf(list, "name_5000"), "(none)");
    EXPECT_EQ(list.Size(), 2U * kCount);
}

TEST(VariableList, BehavesAsAListThatIsSearchedFromItsStart) {
    std::mt19937 random(7);
    VariableList list;
    std::vector<std::pair<std::string, std::string>> model;
    const auto find = [&model](const std::string& name) {
        return std::find_if(model.begin(), model.end(),
                            [&name](const auto& pair) { return pair.first == name; });
    };
    for (int step = 0; step < 3000; ++step) {
        const std::string name(random() % 12, static_cast<char>('a' + random() % 5));
        const std::string value = std::to_string(random() % 1000);
        if (random() % 2 == 0) {
            list.Add(name, value);
            model.emplace_back(name, value);
        } else {
            const auto found = find(name);
            EXPECT_EQ(list.Extend(name, value, ","), found != model.end());
            if (found != model.end()) {
                found->second += "," + value;
            } else {
                model.emplace_back(name, value);
            }
        }
    }
    ASSERT_EQ(list.Size(), model.size());
    for (size_t i = 0; i < model.size(); ++i) {
        ASSERT_EQ(list.Name(i), model[i].first);
        ASSERT_EQ(list.Value(i), model[i].second);
        ASSERT_EQ(ValueOf(list, model[i].first), find(model[i].first)->second);
    }
}

}  // namespace
}  // namespace tavrin
