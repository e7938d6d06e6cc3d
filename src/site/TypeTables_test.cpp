// SPDX-License-Identifier: Apache-2.0
#include "site/TypeTables.h"

#include <gtest/gtest.h>

namespace tavrin {
namespace {

// Head and tail of a type's declaration around a name.
std::string Declared(const TypeTables& types, const std::string& type) {
    const TypeTables::Declaration& declaration = types.GetDeclaration(type);
    return declaration.head + "name" + declaration.tail;
}

TEST(TypeTables, AWordWithoutATranslationStands) {
    TypeTables types;
    types.SetWord("rgb", "color");
    EXPECT_EQ(types.TranslateWord("rgb"), "color");
    EXPECT_EQ(types.TranslateWord("Rgb"), "Rgb");
    EXPECT_EQ(types.TranslateWord("xyz"), "xyz");
    EXPECT_EQ(types.TranslateWord(""), "");
}

TEST(TypeTables, TheLaterTranslationOfAWordStands) {
    TypeTables types;
    types.SetWord("rgb", "color");
    types.SetWord("rgb", "colour");
    EXPECT_EQ(types.TranslateWord("rgb"), "colour");
}

TEST(TypeTables, AWordMayBecomeNothing) {
    TypeTables types;
    types.SetWord("rgb", "");
    EXPECT_EQ(types.TranslateWord("rgb"), "");
}

TEST(TypeTables, TranslationsAreNotTranslatedAgain) {
    TypeTables types;
    types.SetWord("rgb", "xyz");
    types.SetWord("xyz", "point");
    EXPECT_EQ(types.TranslateType("rgb"), "xyz");
}

TEST(TypeTables, ClearedWordsStandForThemselves) {
    TypeTables types;
    types.SetWord("rgb", "color");
    types.ClearWords();
    EXPECT_EQ(types.TranslateWord("rgb"), "rgb");
    EXPECT_EQ(Declared(types, "rgb"), "color name");
}

TEST(TypeTables, TheNameOfAGenericTypeIsNeverTranslated) {
    TypeTables types;
    types.SetWord("matrix", "mat4");
    types.SetWord("generic:matrix", "wrong");
    EXPECT_EQ(types.TranslateType("generic:matrix"), "matrix");
    EXPECT_EQ(types.TranslateType("generic:"), "");
    EXPECT_EQ(types.TranslateType("matrix"), "mat4");
}

TEST(TypeTables, ATypeThatOnlyBeginsLikeAGenericOneIsTranslated) {
    TypeTables types;
    types.SetWord("generic", "any");
    EXPECT_EQ(types.TranslateType("generic"), "any");
    EXPECT_EQ(types.TranslateType("generics"), "generics");
    EXPECT_EQ(types.TranslateType("Generic:x"), "Generic:x");
}

TEST(TypeTables, FourTypesAreBuiltIn) {
    const TypeTables types;
    EXPECT_EQ(Declared(types, "rgb"), "color name");
    EXPECT_EQ(Declared(types, "xyz"), "point name");
    EXPECT_EQ(Declared(types, "float"), "float name");
    EXPECT_EQ(Declared(types, "string"), "string name");
}

TEST(TypeTables, AnUndeclaredTypeIsTheNameAlone) {
    const TypeTables types;
    EXPECT_EQ(Declared(types, "rgba"), "name");
    EXPECT_EQ(Declared(types, "generic"), "name");
    EXPECT_EQ(Declared(types, "generic:matrix"), "name");
}

TEST(TypeTables, DeclarationsGoByTheSystemsWords) {
    TypeTables types;
    types.SetWord("rgb", "vec3");
    types.SetDataType("vec3", {"wrong ", ""});
    EXPECT_EQ(Declared(types, "rgb"), "color name");
}

TEST(TypeTables, AGenericTypeIsDeclaredUnderItsName) {
    TypeTables types;
    types.SetDataType("matrix", {"mat4 ", "[1]"});
    types.SetDataType("generic:matrix", {"wrong ", ""});
    EXPECT_EQ(Declared(types, "generic:matrix"), "mat4 name[1]");
    EXPECT_EQ(Declared(types, "matrix"), "mat4 name[1]");
}

TEST(TypeTables, ATailAloneGivesNoHead) {
    TypeTables types;
    types.SetDataType("rgb", {"", " : color "});
    EXPECT_EQ(Declared(types, "rgb"), "name : color ");
}

TEST(TypeTables, ResettingLeavesTheBuiltInTypesAndTheWords) {
    TypeTables types;
    types.SetDataType("rgb", {"changed ", ""});
    types.SetDataType("matrix", {"mat4 ", ""});
    types.SetWord("rgb", "color");
    types.ResetDataTypes();
    EXPECT_EQ(Declared(types, "rgb"), "color name");
    EXPECT_EQ(Declared(types, "matrix"), "name");
    EXPECT_EQ(types.TranslateWord("rgb"), "color");
}

}  // namespace
}  // namespace tavrin
