// SPDX-License-Identifier: Apache-2.0
#include "base/Listeners.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace tavrin {
namespace {

using testing::ElementsAre;

TEST(Listeners, AreToldInTheirOrderUntilTheirSubscriptionEnds) {
    Listeners<int> listeners;
    std::vector<int> heard;
    auto first = listeners.Add([&](int word) { heard.push_back(word); });
    const auto second = listeners.Add([&](int word) { heard.push_back(10 * word); });
    listeners.Tell(1);
    first.reset();
    listeners.Tell(2);
    EXPECT_THAT(heard, ElementsAre(1, 10, 20));
}

TEST(Listeners, MayComeAndGoWhileTheyAreTold) {
    Listeners<> listeners;
    std::vector<int> heard;
    Listeners<>::Subscription second;
    Listeners<>::Subscription third;
    const auto first = listeners.Add([&] {
        heard.push_back(1);
        second.reset();
        if (third == nullptr) third = listeners.Add([&] { heard.push_back(3); });
    });
    second = listeners.Add([&] { heard.push_back(2); });
    listeners.Tell();
    EXPECT_THAT(heard, ElementsAre(1));
    listeners.Tell();
    EXPECT_THAT(heard, ElementsAre(1, 1, 3));
}

TEST(Listeners, ASubscriptionMayOutliveTheList) {
    std::optional<Listeners<>> listeners(std::in_place);
    const auto subscription = listeners->Add([] {});
    listeners.reset();
    EXPECT_NE(subscription, nullptr);
}

}  // namespace
}  // namespace tavrin
