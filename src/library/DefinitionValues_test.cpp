// SPDX-License-Identifier: Apache-2.0
// The value clauses of inputs.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "library/OpBox.h"
#include "support/TestSite.h"

namespace tavrin {
namespace {

using test::ArchiveOf;
using test::CollectingSink;
using testing::ElementsAre;
using testing::IsEmpty;

// An input `a` of a box, read with the value clauses given.
struct Reading {
    explicit Reading(std::string_view clauses) {
        report.SetSink(&sink);
        CArchive archive = ArchiveOf("input a {\n" + std::string(clauses), "box");
        ok = box.ReadDefinition(archive, "/nowhere", report);
    }
    template <typename Value>
    const Value& As(size_t index = 0) const {
        return dynamic_cast<const Value&>(*box.inputs.at(0)->values.at(index));
    }
    CollectingSink sink;
    Report report;
    COpBox box;
    bool ok = false;
};

void ExpectError(std::string_view text, const std::string& message) {
    const Reading reading(text);
    EXPECT_FALSE(reading.ok) << text;
    EXPECT_THAT(reading.sink.alerts, ElementsAre("box near line " + message)) << text;
}

TEST(DefinitionValues, AFloatHasValueRangeFlagAndFormat) {
    const Reading reading("float { 0.5 -1 1e2 1 \"%.3f m\" } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueFloat>();
    EXPECT_EQ(value.type, "float");
    EXPECT_THAT((std::vector{value.value, value.min, value.max}), ElementsAre(0.5F, -1.0F, 100.0F));
    EXPECT_EQ(value.integer, 1);
    EXPECT_EQ(value.format, "%.3f m");
}

TEST(DefinitionValues, AnXyzHasThreeComponentsRangeFlagAndFormat) {
    const Reading reading("xyz { 1 2 3 4 5 1 \"(%g,%g,%g)\" } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueXyz>();
    EXPECT_EQ(value.type, "xyz");
    EXPECT_THAT((std::vector{value.x, value.y, value.z, value.min, value.max}), ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(value.integer, 1);
    EXPECT_EQ(value.format, "(%g,%g,%g)");
}

TEST(DefinitionValues, AnRgbHasThreeComponentsAndFormat) {
    const Reading reading("rgb { 0.1 0.2 0.3 %g } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueRgb>();
    EXPECT_EQ(value.type, "rgb");
    EXPECT_THAT((std::vector{value.r, value.g, value.b}), ElementsAre(0.1F, 0.2F, 0.3F));
    EXPECT_EQ(value.format, "%g");
}

TEST(DefinitionValues, AnRgbaHasFourComponentsAndFormat) {
    const Reading reading("rgba { 0.1 0.2 0.3 0.4 %g } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueRgba>();
    EXPECT_EQ(value.type, "rgba");
    EXPECT_THAT((std::vector{value.r, value.g, value.b, value.a}), ElementsAre(0.1F, 0.2F, 0.3F, 0.4F));
    EXPECT_EQ(value.format, "%g");
}

TEST(DefinitionValues, AComponentThatIsNoNumberIsZero) {
    const Reading reading("rgb { red 0.5x \"\" %g } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueRgb>();
    EXPECT_THAT((std::vector{value.r, value.g, value.b}), ElementsAre(0, 0.5F, 0));
}

TEST(DefinitionValues, GroupsHoldTheirSequenceAndNothingElse) {
    for (const char* text : {"float",
                             "float 0.5",
                             "float { 0 0 1 yes %g } }",
                             "float { 0 0 1 2 %g } }",
                             "float { 0 0 1 01 %g } }",
                             "float { 0 0 1 true %g } }",
                             "float { 0 0 1 0 %g extra } }",
                             "float { 0 0 1 0 %g",
                             "float { 0 0 1 0",
                             "float { 0 0 1 0 }",
                             "float { 0",
                             "float {",
                             "float { 0 0 1 -1 %g } }",
                             "xyz { 0 0 0 0 1 2 %g } }",
                             "xyz { 0 0 0 0 %g } }",
                             "xyz { 0 0 0 0 1 0 %g",
                             "xyz",
                             "xyz { 0 0 0 0 1 0 %g %g }",
                             "rgb { 0 0 0 }",
                             "rgb { 0 0 0 %g %g }",
                             "rgb { 0 0 0 %g",
                             "rgb",
                             "rgba { 0 0 0 %g }",
                             "rgba { 0 0 0 0 %g %g }",
                             "rgba"}) {
        ExpectError(text, "2: unexpected input");
    }
}

TEST(DefinitionValues, AGroupThatIsOneTokenShortTakesItsBraceForTheFormat) {
    const Reading reading("float { 0 0 1 0 }\n}");
    EXPECT_TRUE(reading.ok) << "the input's brace closes the group, the end of the file the input";
    EXPECT_EQ(reading.As<COpValueFloat>().format, "}");
}

// Blocks

TEST(DefinitionValues, AStringHasItsProperties) {
    const Reading reading(
        "string {\n value \"my text\" format \"<%s>\" fileflag 1 quoteflag 1 noedit options { a \"b c\" {\n "
        "} }\n}");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueString>();
    EXPECT_EQ(value.type, "string");
    EXPECT_EQ(value.value, "my text");
    EXPECT_EQ(value.format, "<%s>");
    EXPECT_EQ(value.fileflag, 1);
    EXPECT_EQ(value.quoteflag, 1);
    EXPECT_EQ(value.noedit, 1);
    EXPECT_THAT(value.options, ElementsAre("a", "b c", "{"));
}

TEST(DefinitionValues, AStringBlockWithNothingIsAnEmptyText) {
    const Reading reading("string { } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueString>();
    EXPECT_EQ(value.value, "");
    EXPECT_EQ(value.format, "");
    EXPECT_THAT((std::vector{value.fileflag, value.quoteflag, value.noedit}), ElementsAre(0, 0, 0));
    EXPECT_THAT(value.options, IsEmpty());
}

TEST(DefinitionValues, BlocksPassOverWhatTheyDoNotKnow) {
    const Reading reading(
        "string no brace value x \"\" { 7 Value y } generic:m { { format %s fileflag 2 value z } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.As<COpValueString>().value, "x");
    EXPECT_EQ(reading.As<COpValueGeneric>(1).value, "z");
    EXPECT_EQ(reading.As<COpValueGeneric>(1).format, "") << "a generic value has none";
}

TEST(DefinitionValues, AFlagThatIsSwitchedOffAgainIsOff) {
    const Reading reading("string { fileflag 1 quoteflag 1 fileflag 0 quoteflag 0 } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.As<COpValueString>().fileflag, 0);
    EXPECT_EQ(reading.As<COpValueString>().quoteflag, 0);
}

TEST(DefinitionValues, AGenericValueKeepsTheDefinitionsText) {
    const Reading reading(
        "generic:matrix { value \"1 0 0 1\" noedit options { one two } } generic { } genericx { } }");
    ASSERT_TRUE(reading.ok);
    const auto& value = reading.As<COpValueGeneric>();
    EXPECT_EQ(value.type, "generic:matrix");
    EXPECT_EQ(value.defaultValue, "1 0 0 1");
    EXPECT_EQ(value.value, "1 0 0 1");
    EXPECT_EQ(value.noedit, 1);
    EXPECT_THAT(value.options, ElementsAre("one", "two"));
    EXPECT_EQ(reading.As<COpValueGeneric>(1).type, "generic");
    EXPECT_EQ(reading.As<COpValueGeneric>(2).type, "genericx");
}

TEST(DefinitionValues, RepeatedOptionsAddAndRepeatedValuesReplace) {
    const Reading reading("string { options { a } value x options { b } value y } }");
    EXPECT_THAT(reading.As<COpValueString>().options, ElementsAre("a", "b"));
    EXPECT_EQ(reading.As<COpValueString>().value, "y");
}

TEST(DefinitionValues, AClauseOfABlockWithoutItsOperandIsUnexpectedInput) {
    for (const char* text :
         {"string { value", "string { format", "string { fileflag", "string { quoteflag",
          "string { fileflag 2 } }", "string { fileflag yes } }", "string { quoteflag }",
          "string { quoteflag \"\" } }", "string { options", "string { options a } }", "generic { value",
          "generic { options", "generic:x { options one", "generic { options }"}) {
        ExpectError(text, "2: unexpected input");
    }
}

TEST(DefinitionValues, TheEndOfTheFileClosesABlockAndItsOptions) {
    const Reading open("string { value x");
    EXPECT_TRUE(open.ok);
    EXPECT_EQ(open.As<COpValueString>().value, "x");
    const Reading options("generic { options { a b");
    EXPECT_TRUE(options.ok);
    EXPECT_THAT(options.As<COpValueGeneric>().options, ElementsAre("a", "b"));
}

TEST(DefinitionValues, EachTypeKeepsItsOwnNumbers) {
    const Reading reading("float { 0.5 0 1 0 %g } float { 0.25 0 1 0 %f } rgb { 1 0 0 %g } }");
    ASSERT_TRUE(reading.ok);
    EXPECT_EQ(reading.As<COpValueFloat>(0).value, 0.5F);
    EXPECT_EQ(reading.As<COpValueFloat>(1).value, 0.25F);
    EXPECT_EQ(reading.As<COpValueRgb>(2).r, 1.0F);
}

}  // namespace
}  // namespace tavrin
