// SPDX-License-Identifier: Apache-2.0
// Every operator of the library that is supplied, read through its own scripts. Operators that are saved
// networks are left out here: their boxes are operators themselves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "codegen/BoxMerge.h"
#include "library/CodeNames.h"
#include "library/OpBox.h"
#include "library/OpRegistry.h"
#include "support/TestSite.h"
#include "text/Tokens.h"

namespace tavrin {
namespace {

using testing::IsEmpty;
using testing::Not;

class SuppliedLibrary : public testing::Test {
  protected:
    SuppliedLibrary() : registry(own.report) { registry.AddDirectory(own.site.LibraryPath("menu")); }

    // The names of all operators that are definitions.
    std::vector<std::string> Definitions() const {
        std::vector<std::string> names;
        for (const auto& entry : registry.Entries()) {
            std::string reason;
            auto archive = CArchive::Open(entry->path, reason);
            std::string token;
            if (archive && ReadToken(*archive, token) && token != "tavrn-version")
                names.push_back(entry->name);
        }
        EXPECT_THAT(names, Not(IsEmpty()));
        return names;
    }

    std::vector<std::string> Generate(const COpBox& box) {
        CCodeGen shader;
        PreparedVariables prepared;
        prepared.Prepare(box, own.site.types);
        BoxMerge merge(shader);
        box.GenerateCode(merge, own.site.types, {prepared, &own.report});
        std::vector<std::string> lines;
        shader.WriteCode(lines);
        shader.WriteHints(lines);
        return lines;
    }

    test::TestSite own;
    COpRegistry registry;
};

TEST_F(SuppliedLibrary, OperatorsAreFoundInSubmenusWithoutWarnings) {
    ASSERT_THAT(registry.Entries(), Not(IsEmpty()));
    for (const auto& entry : registry.Entries()) EXPECT_NE(registry.MenuPath(*entry), "") << entry->name;
    EXPECT_EQ(own.sink.log, "");
    EXPECT_LE(registry.Entries().back()->id, COpRegistry::kLastId);
}

TEST_F(SuppliedLibrary, EveryOperatorIsReadWithoutAWordAndHasHelp) {
    for (const std::string& name : Definitions()) {
        COpBox box;
        ASSERT_TRUE(box.Define(name, registry, own.site)) << name << ": " << own.sink.LastAlert();
        EXPECT_EQ(box.filename, name);
        EXPECT_NE(box.boxhelp, "") << name;
        EXPECT_NE(box.icontext, "") << name;
        EXPECT_FALSE(box.inputs.empty() && box.outputs.empty()) << name;
        for (const auto* side : {&box.inputs, &box.outputs}) {
            for (const auto& button : *side) {
                EXPECT_NE(button->help, "") << name << " " << button->name;
                EXPECT_FALSE(button->values.empty()) << name << " " << button->name;
            }
        }
    }
    EXPECT_THAT(own.sink.alerts, IsEmpty());
    EXPECT_EQ(own.sink.log, "");
}

TEST_F(SuppliedLibrary, ButtonsHaveNamesOfTheirOwnAndCastlocksNameThem) {
    for (const std::string& name : Definitions()) {
        COpBox box;
        ASSERT_TRUE(box.Define(name, registry, own.site)) << name;
        std::set<std::string> names;
        std::set<std::string> shown;
        for (const auto* side : {&box.inputs, &box.outputs}) {
            for (const auto& button : *side) {
                names.insert(button->name);
                EXPECT_TRUE(shown.insert(button->DisplayName()).second)
                    << name << " has two buttons " << button->DisplayName();
            }
        }
        for (const auto& [first, second] : box.castlock) {
            EXPECT_TRUE(names.contains(first)) << name << " " << first;
            EXPECT_TRUE(names.contains(second)) << name << " " << second;
        }
    }
}

TEST_F(SuppliedLibrary, EveryOperatorGeneratesCodeWithItsDefaultsTwiceTheSame) {
    for (const std::string& name : Definitions()) {
        COpBox box;
        ASSERT_TRUE(box.Define(name, registry, own.site)) << name;
        box.wid = 1;
        const auto lines = Generate(box);
        EXPECT_EQ(Generate(box), lines) << name;
        EXPECT_GT(lines.size(), 1U) << name;
        for (const std::string& line : lines) {
            EXPECT_EQ(line.find("TAVRN_"), std::string::npos) << name << ": " << line;
        }
    }
    EXPECT_THAT(own.sink.alerts, IsEmpty());
}

}  // namespace
}  // namespace tavrin
