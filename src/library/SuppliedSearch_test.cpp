// SPDX-License-Identifier: Apache-2.0
// What is found in the supplied library, as its preprocessor makes it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "library/DefinitionTexts.h"
#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "library/OperatorIndex.h"
#include "library/OperatorSearch.h"
#include "support/Patience.h"
#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using test::TestSite;
using testing::IsEmpty;

class SuppliedSearch : public testing::Test {
  protected:
    // The library is read once for all tests. The time stands still: no run takes too long here.
    struct Supplied {
        Supplied()
            : registry(own.report),
              index(registry, own.site, {}, [] { return std::chrono::steady_clock::time_point(); }) {
            own.site.settingsLibrary = own.site.directories.libName;
            own.site.settings.Store("preprocess.pure", "1");
            registry.AddDirectory(own.site.LibraryPath("menu"));
            index.Reload();
            isRead = test::SleepUntil(
                [this] { return index.Step(std::chrono::milliseconds(5)) == OperatorIndex::Pace::kDone; });
        }
        TestSite own;
        COpRegistry registry;
        OperatorIndex index;
        bool isRead = false;
    };
    static void SetUpTestSuite() { s_supplied = std::make_unique<Supplied>(); }
    static void TearDownTestSuite() { s_supplied.reset(); }
    void SetUp() override { ASSERT_TRUE(Index().Unread() == 0 && s_supplied->isRead); }

    static const OperatorIndex& Index() { return s_supplied->index; }
    static std::string NameOf(const OperatorHit& hit) { return Index().Operators()[hit.place].name; }
    static std::vector<std::string> First(const std::vector<OperatorHit>& hits, size_t count) {
        std::vector<std::string> names;
        for (size_t i = 0; i < hits.size() && i < count; ++i) names.push_back(NameOf(hits[i]));
        return names;
    }

    static inline std::unique_ptr<Supplied> s_supplied;
};

TEST_F(SuppliedSearch, EachOperatorIsReadToTheEnd) {
    for (const KnownOperator& known : Index().Operators()) {
        EXPECT_EQ(known.problem, "") << known.name;
        EXPECT_NE(known.help, "") << known.name;
        EXPECT_EQ(known.keywords.empty(), known.source == KnownOperator::Source::kNetwork) << known.name;
        const bool isNetwork = known.source == KnownOperator::Source::kNetwork;
        EXPECT_TRUE(isNetwork || known.source == KnownOperator::Source::kDefinition) << known.name;
        EXPECT_EQ(known.buttons.empty(), isNetwork) << known.name;
    }
    EXPECT_THAT(s_supplied->own.sink.alerts, IsEmpty());
    EXPECT_EQ(s_supplied->own.sink.log, "");
}

TEST_F(SuppliedSearch, WhatAnArtistTypesFindsWhatWasMeant) {
    struct Case {
        const char* typed;
        std::vector<std::string> first;
    };
    const Case cases[] = {
        {"noise", {"Noise"}},
        {"NOISE", {"Noise"}},
        {"n", {"Noise", "Number"}},
        {"wp", {"WornPaint"}},
        {"worn p", {"WornPaint"}},
        {"paint", {"WornPaint"}},
        {"cc", {"ClearCoat"}},
        {"coat", {"ClearCoat"}},
        {"mix", {"Mix"}},
        {"colour mix", {"Mix"}},
        {"m", {"Marble", "Math", "Matte", "Metal", "Mix"}},
        {"met", {"Metal"}},
        {"shading glow", {"Glow"}},
        {"turbulence", {"Marble"}},
        {"rough", {"Matte", "Metal", "Plastic", "ClearCoat"}},
        {"multiply", {"Math", "Mix"}},
        {"subtract", {"Math"}},
        {"nosie", {"Noise"}},
        {"piant", {"WornPaint"}},
        {"treshold", {"Threshold"}},
        {"clear caot", {"ClearCoat"}},
        {"color", {"Tint", "Adjust", "Ramp"}},
        {"voronoi", {"Cells"}},
        {"fresnel", {"Facing"}},
        {"gloss", {"Plastic"}},
        {"normal map", {"Bump"}},
        {"emission", {"Glow"}},
        {"uv", {"Coordinates"}},
        {"reroute", {"Relay"}},
        {"color ramp", {"Ramp"}},
        {"map range", {"Remap"}},
        {"hsv", {"Adjust"}},
        {"qqq", {}},
    };
    OperatorSearch search(Index());
    for (const Case& each : cases)
        EXPECT_EQ(First(search.Find(each.typed), each.first.size()), each.first) << each.typed;
    EXPECT_THAT(search.Find("qqq"), IsEmpty());
}

// By words of its own name, its menu and its help, whichever operator comes to the library.
TEST_F(SuppliedSearch, EachOperatorIsTheFirstForItsNameAndFoundByItsMenu) {
    OperatorSearch search(Index());
    for (const KnownOperator& known : Index().Operators()) {
        EXPECT_EQ(First(search.Find(known.name), 1), std::vector{known.name});
        EXPECT_EQ(First(search.Find(ToLower(known.name)), 1), std::vector{known.name});
        const auto& hits = search.Find(known.menu);
        EXPECT_TRUE(std::any_of(hits.begin(), hits.end(), [&](const OperatorHit& hit) {
            return NameOf(hit) == known.name;
        })) << known.menu;
    }
}

// For each button of each operator, as the open end of a wire.
TEST_F(SuppliedSearch, WhatIsOfferedForAWireCanBeWired) {
    std::vector<std::unique_ptr<COpBox>> boxes;
    DefinitionTexts texts(s_supplied->registry, s_supplied->own.site);
    for (const KnownOperator& known : Index().Operators()) {
        if (known.source != KnownOperator::Source::kDefinition) continue;
        ASSERT_TRUE(boxes.emplace_back(std::make_unique<COpBox>())
                        ->Define(known.name, s_supplied->registry, s_supplied->own.site, &texts));
    }
    OperatorSearch search(Index());
    size_t wired = 0;
    const auto check = [&](const COpButton& open) {
        const OpenEnd end = OpenEnd::Of(open);
        for (const OperatorHit& hit : search.Find("", &end)) {
            const auto box = std::find_if(boxes.begin(), boxes.end(),
                                          [&](const auto& other) { return other->filename == NameOf(hit); });
            ASSERT_TRUE(box != boxes.end() && hit.fit);
            // The copy stands for the new box; an input and an output may bear one name.
            COpBox fresh(**box);
            auto& buttons = open.IsOutput() ? fresh.inputs : fresh.outputs;
            const auto button = std::find_if(buttons.begin(), buttons.end(), [&](const auto& other) {
                return other->DisplayName() == hit.fit->button;
            });
            ASSERT_TRUE(button != buttons.end()) << NameOf(hit) << " has no " << hit.fit->button;
            EXPECT_TRUE(open.CanConnect(**button)) << open.name << " to " << NameOf(hit);
            if (!hit.fit->castType.empty())
                (*button)->SetCast(static_cast<size_t>((*button)->FindCast(hit.fit->castType)));
            EXPECT_TRUE(hit.fit->types > WireFit::Types::kCast ||
                        (*button)->CurrentType() == open.CurrentType());
            ++wired;
        }
    };
    for (const auto& box : boxes) {
        for (const auto& input : box->inputs) check(*input);
        for (const auto& output : box->outputs) check(*output);
    }
    EXPECT_GT(wired, 1000U);
}

}  // namespace
}  // namespace tavrin
