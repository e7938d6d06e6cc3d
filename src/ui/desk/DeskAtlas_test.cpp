// SPDX-License-Identifier: Apache-2.0
// Where pictures stand in the desk's texture, and when they reach it.
#include "ui/desk/DeskAtlas.h"

#include <algorithm>

#include "ui/desk/DeskPenTest.h"

namespace tavrin {
namespace {

using Place = DeskAtlas::Place;

bool Overlap(const Place& one, const Place& other) {
    return one.x < other.x + other.width && other.x < one.x + one.width && one.y < other.y + other.height &&
           other.y < one.y + one.height;
}

void Fill(DeskAtlas& atlas, const Place& place, unsigned char value) {
    for (int row = 0; row < place.height; ++row) std::fill_n(atlas.Row(place, row), 4 * place.width, value);
}

bool IsAll(DeskAtlas& atlas, const Place& place, unsigned char value) {
    for (int row = 0; row < place.height; ++row) {
        const unsigned char* bytes = atlas.Row(place, row);
        if (!std::all_of(bytes, bytes + 4 * place.width, [&](unsigned char byte) { return byte == value; }))
            return false;
    }
    return true;
}

TEST(DeskAtlas, PicturesLieInsideAndApart) {
    DeskAtlas atlas(64);
    std::vector<Place> places;
    unsigned state = 3;
    const auto chance = [&state](unsigned below) {
        state = state * 1664525 + 1013904223;
        return static_cast<int>((state >> 16) % below);
    };
    int failures = 0;
    while (failures < 20) {
        const auto place = atlas.Add(1 + chance(20), 1 + chance(12));
        failures += place ? 0 : 1;
        if (place) places.push_back(*place);
    }
    int covered = 0;
    for (size_t i = 0; i < places.size(); ++i) {
        const Place& one = places[i];
        EXPECT_TRUE(one.x >= 0 && one.y >= 0 && one.x + one.width <= 64 && one.y + one.height <= 64);
        covered += one.width * one.height;
        for (size_t j = 0; j < i; ++j) EXPECT_FALSE(Overlap(one, places[j])) << j << " and " << i;
    }
    EXPECT_GT(covered, 64 * 64 / 2);
}

TEST(DeskAtlas, APictureAsLargeAsTheTextureFillsItAlone) {
    DeskAtlas atlas(16);
    EXPECT_FALSE(atlas.Add(17, 1).has_value());
    EXPECT_FALSE(atlas.Add(1, 17).has_value());
    ASSERT_TRUE(atlas.Add(16, 16).has_value());
    EXPECT_FALSE(atlas.Add(1, 1).has_value());
}

TEST(DeskAtlas, ThereIsRoomAgainAfterItWasClearedAndTheRoomIsClear) {
    DeskAtlas atlas(16);
    const auto whole = atlas.Add(16, 16);
    ASSERT_TRUE(whole.has_value());
    EXPECT_TRUE(IsAll(atlas, *whole, 0));
    Fill(atlas, *whole, 9);
    atlas.Clear();
    const auto again = atlas.Add(16, 16);
    ASSERT_TRUE(again.has_value());
    EXPECT_TRUE(IsAll(atlas, *again, 0));
}

class DeskAtlasTexture : public test::DeskPenTest {
  protected:
    static constexpr int kSize = 16;
    // The bytes of the texture, after a frame in which `work` was done.
    std::vector<unsigned char> Texture(DeskAtlas& atlas, const std::function<void()>& work) {
        std::vector<unsigned char> bytes(size_t{kSize} * kSize * 4);
        canvas->paint = [&] {
            work();
            atlas.Bind();
            glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
            EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        };
        canvas->grabFramebuffer();
        return bytes;
    }
    // Where the texture has another value than the one told.
    static int Others(const std::vector<unsigned char>& texture, const Place& place, unsigned char value) {
        int others = 0;
        for (int y = place.y; y < place.y + place.height; ++y) {
            for (int x = 4 * place.x; x < 4 * (place.x + place.width); ++x)
                others += texture[static_cast<size_t>(y * kSize * 4 + x)] == value ? 0 : 1;
        }
        return others;
    }
};

TEST_F(DeskAtlasTexture, WhatWasAddedReachesTheTextureWithTheNextBind) {
    DeskAtlas atlas(kSize);
    Place first;
    Place second;
    Place third;
    Texture(atlas, [&] {
        first = *atlas.Add(5, 4);
        Fill(atlas, first, 10);
    });
    const auto texture = Texture(atlas, [&] {
        second = *atlas.Add(6, 3);
        third = *atlas.Add(6, 9);
        Fill(atlas, second, 20);
        Fill(atlas, third, 30);
    });
    EXPECT_EQ(Others(texture, first, 10), 0);
    EXPECT_EQ(Others(texture, second, 20), 0);
    EXPECT_EQ(Others(texture, third, 30), 0);
}

TEST_F(DeskAtlasTexture, ANewContextGetsAllThatIsThere) {
    DeskAtlas atlas(kSize);
    Place place;
    Texture(atlas, [&] {
        place = *atlas.Add(7, 4);
        Fill(atlas, place, 10);
    });
    RenewContext();
    const auto texture = Texture(atlas, [&] { atlas.ContextIsNew(); });
    EXPECT_EQ(Others(texture, place, 10), 0);
}

TEST_F(DeskAtlasTexture, ANewContextGetsWhatCameAfterItWasCleared) {
    DeskAtlas atlas(kSize);
    Texture(atlas, [&] { Fill(atlas, *atlas.Add(16, 16), 10); });
    RenewContext();
    atlas.Clear();
    atlas.ContextIsNew();
    Place place;
    const auto texture = Texture(atlas, [&] {
        place = *atlas.Add(3, 3);
        Fill(atlas, place, 20);
    });
    EXPECT_EQ(Others(texture, place, 20), 0);
}

TEST_F(DeskAtlasTexture, WhatWasClearedIsGoneFromTheTexture) {
    DeskAtlas atlas(kSize);
    Texture(atlas, [&] { Fill(atlas, *atlas.Add(16, 16), 10); });
    Place place;
    const auto texture = Texture(atlas, [&] {
        atlas.Clear();
        place = *atlas.Add(8, 8);
    });
    EXPECT_EQ(Others(texture, place, 0), 0);
}

}  // namespace
}  // namespace tavrin
