// SPDX-License-Identifier: Apache-2.0
#include "library/Value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavrin {
namespace {

using testing::ElementsAre;

// Literals

TEST(Value, AFloatIsPrintedByItsFormat) {
    COpValueFloat value;
    value.value = 0.25F;
    for (const auto& [format, text] : {std::pair{"%g", "0.25"},
                                       {"%.3f", "0.250"},
                                       {"float(%g)", "float(0.25)"},
                                       {"%8.2f|", "    0.25|"},
                                       {"%g%%", "0.25%"},
                                       {"%e", "2.500000e-01"}}) {
        value.format = format;
        EXPECT_EQ(ValueText(value), text) << format;
    }
}

TEST(Value, AFloatIsPrintedAsADouble) {
    COpValueFloat value;
    value.value = 0.1F;
    value.format = "%g";
    EXPECT_EQ(ValueText(value), "0.1");
    value.format = "%.9f";
    EXPECT_EQ(ValueText(value), "0.100000001");
}

TEST(Value, ComponentsAreTakenInOrder) {
    COpValueRgb rgb;
    rgb.r = 1, rgb.g = 2, rgb.b = 3;
    rgb.format = "color(%g,%g,%g)";
    EXPECT_EQ(ValueText(rgb), "color(1,2,3)");
    COpValueXyz xyz;
    xyz.x = 1, xyz.y = 2, xyz.z = 3, xyz.min = 8, xyz.max = 9;
    xyz.format = "[%g %g %g]";
    EXPECT_EQ(ValueText(xyz), "[1 2 3]");
    COpValueRgba rgba;
    rgba.r = 1, rgba.g = 2, rgba.b = 3, rgba.a = 4;
    rgba.format = "%g/%g/%g/%g";
    EXPECT_EQ(ValueText(rgba), "1/2/3/4");
}

TEST(Value, AFormatWithFewerOrMoreConversionsThanComponents) {
    COpValueRgb rgb;
    rgb.r = 1, rgb.g = 2, rgb.b = 3;
    rgb.format = "%g,%g";
    EXPECT_EQ(ValueText(rgb), "1,2");
    rgb.format = "%g,%g,%g,%g;";
    EXPECT_EQ(ValueText(rgb), "1,2,3,;");
}

TEST(Value, ANumberWithoutAFormatIsAnEmptyText) {
    COpValueFloat value;
    value.value = 7;
    EXPECT_EQ(ValueText(value), "");
}

TEST(Value, AFormatThatReachesForMemoryIsText) {
    COpValueFloat number;
    COpValueString text;
    text.value = "v";
    for (const char* format : {"%n", "%*g", "%1$s", "%p", "%lc", "%999999999g", "%"}) {
        number.format = format;
        text.format = format;
        EXPECT_EQ(ValueText(number), format);
        EXPECT_EQ(ValueText(text), format);
    }
    number.format = "%s";
    EXPECT_EQ(ValueText(number), "%s");
    text.format = "%g";
    EXPECT_EQ(ValueText(text), "%g");
    text.format = "%s%s%s";
    EXPECT_EQ(ValueText(text), "v");
}

TEST(Value, AStringWithoutAFormatIsAnEmptyText) {
    COpValueString value;
    value.value = "text";
    EXPECT_EQ(ValueText(value), "");
    value.quoteflag = 1;
    EXPECT_EQ(ValueText(value), "");
}

TEST(Value, AStringIsQuotedBeforeItsFormatIsApplied) {
    COpValueString value;
    value.value = "a\"b\\%s";
    value.format = "<%s>";
    EXPECT_EQ(ValueText(value), "<a\"b\\%s>");
    value.quoteflag = 1;
    EXPECT_EQ(ValueText(value), "<\"a\"b\\%s\">") << "nothing inside is escaped";
    value.value = "";
    EXPECT_EQ(ValueText(value), "<\"\">");
}

TEST(Value, AGenericValueIsItsTextAsItStands) {
    COpValueGeneric value("generic:matrix");
    value.defaultValue = "old";
    value.value = "m %s %d";
    value.format = "<%s>";
    EXPECT_EQ(ValueText(value), "m %s %d");
}

// Making and cloning

TEST(Value, EachTypeWordMakesItsClass) {
    EXPECT_NE(dynamic_cast<COpValueFloat*>(MakeValue("float").get()), nullptr);
    EXPECT_NE(dynamic_cast<COpValueXyz*>(MakeValue("xyz").get()), nullptr);
    EXPECT_NE(dynamic_cast<COpValueRgb*>(MakeValue("rgb").get()), nullptr);
    EXPECT_NE(dynamic_cast<COpValueRgba*>(MakeValue("rgba").get()), nullptr);
    EXPECT_NE(dynamic_cast<COpValueString*>(MakeValue("string").get()), nullptr);
    for (const char* type : {"generic", "generic:", "generic:light", "genericlight"}) {
        const auto value = MakeValue(type);
        ASSERT_NE(dynamic_cast<COpValueGeneric*>(value.get()), nullptr) << type;
        EXPECT_EQ(value->type, type);
    }
    for (const char* type : {"", "Float", "int", "gener", "Generic", "color", "float "}) {
        EXPECT_EQ(MakeValue(type), nullptr) << type;
    }
}

TEST(Value, AMadeValueHasAllDefaults) {
    COpValueXyz xyz;
    EXPECT_THAT((std::vector{xyz.x, xyz.y, xyz.z, xyz.min, xyz.max}), testing::Each(0.0F));
    EXPECT_EQ(xyz.integer, 0);
    COpValueFloat number;
    EXPECT_THAT((std::vector{number.value, number.min, number.max}), testing::Each(0.0F));
    EXPECT_EQ(number.integer, 0);
    EXPECT_EQ(number.format, "");
    COpValueRgba rgba;
    EXPECT_THAT((std::vector{rgba.r, rgba.g, rgba.b, rgba.a}), testing::Each(0.0F));
}

template <typename Value>
std::unique_ptr<Value> CloneOf(Value& value) {
    value.format = "<%s%g>";
    auto clone = CloneValue(value);
    EXPECT_NE(clone.get(), &value);
    EXPECT_EQ(clone->type, value.type);
    EXPECT_EQ(clone->format, "<%s%g>");
    return std::unique_ptr<Value>(dynamic_cast<Value*>(clone.release()));
}

TEST(Value, ACloneHasEveryField) {
    COpValueFloat number;
    number.value = 1, number.min = 2, number.max = 3, number.integer = 1;
    const auto numberClone = CloneOf(number);
    EXPECT_THAT((std::vector{numberClone->value, numberClone->min, numberClone->max}), ElementsAre(1, 2, 3));
    EXPECT_EQ(numberClone->integer, 1);

    COpValueXyz xyz;
    xyz.x = 1, xyz.y = 2, xyz.z = 3, xyz.min = 4, xyz.max = 5, xyz.integer = 1;
    const auto xyzClone = CloneOf(xyz);
    EXPECT_THAT((std::vector{xyzClone->x, xyzClone->y, xyzClone->z, xyzClone->min, xyzClone->max}),
                ElementsAre(1, 2, 3, 4, 5));
    EXPECT_EQ(xyzClone->integer, 1);

    COpValueRgb rgb;
    rgb.r = 1, rgb.g = 2, rgb.b = 3;
    const auto rgbClone = CloneOf(rgb);
    EXPECT_THAT((std::vector{rgbClone->r, rgbClone->g, rgbClone->b}), ElementsAre(1, 2, 3));

    COpValueRgba rgba;
    rgba.r = 1, rgba.g = 2, rgba.b = 3, rgba.a = 4;
    const auto rgbaClone = CloneOf(rgba);
    EXPECT_THAT((std::vector{rgbaClone->r, rgbaClone->g, rgbaClone->b, rgbaClone->a}),
                ElementsAre(1, 2, 3, 4));
}

TEST(Value, ACloneOfATextHasItsOptionsToo) {
    COpValueString text;
    text.value = "v", text.quoteflag = 1, text.fileflag = 1, text.noedit = 1, text.options = {"a", "b"};
    const auto textClone = CloneOf(text);
    EXPECT_EQ(textClone->value, "v");
    EXPECT_THAT((std::vector{textClone->quoteflag, textClone->fileflag, textClone->noedit}),
                ElementsAre(1, 1, 1));
    EXPECT_THAT(textClone->options, ElementsAre("a", "b"));

    COpValueGeneric generic("generic:m");
    generic.defaultValue = "d", generic.value = "v", generic.noedit = 1, generic.options = {"c"};
    const auto genericClone = CloneOf(generic);
    EXPECT_EQ(genericClone->defaultValue, "d");
    EXPECT_EQ(genericClone->value, "v");
    EXPECT_EQ(genericClone->noedit, 1);
    EXPECT_THAT(genericClone->options, ElementsAre("c"));
}

}  // namespace
}  // namespace tavrin
