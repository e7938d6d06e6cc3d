// SPDX-License-Identifier: Apache-2.0
#include "library/LiveObjects.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

namespace tavrin {
namespace {

class Thing : public LiveObject<Thing> {};

TEST(LiveRef, LeadsToItsObjectWhileThatLives) {
    auto thing = std::make_unique<Thing>();
    const LiveRef<Thing> ref(*thing);
    EXPECT_EQ(ref.Get(), thing.get());
    EXPECT_EQ(ref.Serial(), thing->Serial());
    thing.reset();
    EXPECT_EQ(ref.Get(), nullptr);
    EXPECT_EQ(LiveRef<Thing>().Get(), nullptr);
}

TEST(LiveRef, DoesNotLeadToAnotherObjectAtTheSameAddress) {
    alignas(Thing) std::byte place[sizeof(Thing)];
    auto* first = new (place) Thing;
    const LiveRef<Thing> ref(*first);
    first->~Thing();
    auto* second = new (place) Thing;
    EXPECT_TRUE(Thing::IsLive(first));  // which is the other one
    EXPECT_EQ(ref.Get(), nullptr);
    second->~Thing();
}

}  // namespace
}  // namespace tavrin
