// SPDX-License-Identifier: Apache-2.0
#include "desk/TypeLook.h"

#include <gtest/gtest.h>

#include <set>

namespace tavrin {
namespace {

TEST(TypeLook, IsWhatTheLibrarySays) {
    TypeTables types;
    types.SetMark("rgb", {{{0.9F, 0.8F, 0.1F}}, TypeShape::kDiamond});
    EXPECT_EQ(LookOfType("rgb", types), (TypeLook{{0.9F, 0.8F, 0.1F}, TypeShape::kDiamond}));
    EXPECT_EQ(LookOfType("generic:rgb", types), LookOfType("rgb", types));
}

TEST(TypeLook, WhatTheLibraryDoesNotSayComesOfTheName) {
    TypeTables types;
    const TypeLook byName = LookOfType("rgb", types);
    types.SetMark("rgb", {{{0.9F, 0.8F, 0.1F}}, {}});
    EXPECT_EQ(LookOfType("rgb", types).shape, byName.shape);
    types.SetMark("rgb", {{}, TypeShape::kBar});
    EXPECT_EQ(LookOfType("rgb", types), (TypeLook{byName.color, TypeShape::kBar}));
}

TEST(TypeLook, IsAlwaysTheSameForAName) {
    const TypeTables types;
    // Whoever has learnt the colours of a library is not to learn others with the next version.
    EXPECT_EQ(LookOfType("float", types).shape, TypeShape::kWedge);
    EXPECT_EQ(LookOfType("float", types), LookOfType("generic:float", types));
    EXPECT_FALSE(LookOfType("float", types) == LookOfType("xyz", types));
}

TEST(TypeLook, NamesSpreadOverShapesAndColors) {
    const TypeTables types;
    std::set<TypeShape> shapes;
    std::set<float> reds;
    for (int i = 0; i < 60; ++i) {
        const TypeLook look = LookOfType("type" + std::to_string(i), types);
        shapes.insert(look.shape);
        reds.insert(look.color.r);
        for (const float channel : {look.color.r, look.color.g, look.color.b}) {
            EXPECT_GE(channel, 0.4F) << i;  // seen on a dark desk
            EXPECT_LE(channel, 0.95F) << i;
        }
    }
    EXPECT_EQ(shapes.size(), kTypeShapeNames.size());
    EXPECT_GT(reds.size(), 6U);
}

TEST(TypeLook, NoTypeIsAGreyCircle) {
    const TypeTables types;
    for (const char* none : {"", "generic:"}) {
        const TypeLook look = LookOfType(none, types);
        EXPECT_EQ(look.shape, TypeShape::kCircle) << none;
        EXPECT_EQ(look.color.r, look.color.b) << none;
    }
}

TEST(TypeLook, IsKeptForWhoAsksAgainHoweverManyTypesThereAre) {
    TypeTables types;
    types.SetMark("rgb", {{{0.9F, 0.8F, 0.1F}}, TypeShape::kDiamond});
    TypeLooks looks(types);
    const TypeLook wanted = LookOfType("rgb", types);
    EXPECT_EQ(looks.Of("rgb"), wanted);
    for (int i = 0; i < 3000; ++i) {
        const std::string name = std::to_string(i);
        ASSERT_EQ(looks.Of(name), LookOfType(name, types));
    }
    EXPECT_EQ(looks.Of("rgb"), wanted);
}

TEST(TypeShape, HasANameThatSiteFilesUse) {
    EXPECT_EQ(TypeShapeNamed("circle"), TypeShape::kCircle);
    EXPECT_EQ(TypeShapeNamed("bar"), TypeShape::kBar);
    EXPECT_EQ(TypeShapeNamed("Circle"), std::nullopt);
    EXPECT_EQ(TypeShapeNamed(""), std::nullopt);
}

}  // namespace
}  // namespace tavrin
