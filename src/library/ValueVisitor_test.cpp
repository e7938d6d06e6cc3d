// SPDX-License-Identifier: Apache-2.0
#include "library/ValueVisitor.h"

#include <gtest/gtest.h>

#include <utility>

namespace tavrin {
namespace {

// Says which class it was called with.
struct ClassName {
    std::string operator()(const COpValueFloat&) const { return "float"; }
    std::string operator()(const COpValueXyz&) const { return "xyz"; }
    std::string operator()(const COpValueRgb&) const { return "rgb"; }
    std::string operator()(const COpValueRgba&) const { return "rgba"; }
    std::string operator()(const COpValueString&) const { return "string"; }
    std::string operator()(const COpValueGeneric& value) const { return "generic " + value.value; }
};
static_assert(ValueVisitor<ClassName, COpValue> && ValueVisitor<ClassName, const COpValue>);

// What forgets a class, whichever it is, or may only be called with values that it can change, is no visitor.
template <typename Forgotten>
struct Forgetful {
    template <typename Value>
    requires(!std::is_same_v<Value, Forgotten>) void operator()(const Value&) const {}
};
static_assert(!ValueVisitor<Forgetful<COpValueFloat>, COpValue>);
static_assert(!ValueVisitor<Forgetful<COpValueXyz>, COpValue>);
static_assert(!ValueVisitor<Forgetful<COpValueRgb>, COpValue>);
static_assert(!ValueVisitor<Forgetful<COpValueRgba>, COpValue>);
static_assert(!ValueVisitor<Forgetful<COpValueString>, COpValue>);
static_assert(!ValueVisitor<Forgetful<COpValueGeneric>, COpValue>);

struct Changer {
    template <typename Value>
    requires(!std::is_const_v<Value>) void operator()(Value& value) const { value.format = "changed"; }
};
static_assert(ValueVisitor<Changer, COpValue> && !ValueVisitor<Changer, const COpValue>);

TEST(ValueVisitor, EachTypeLeadsToItsClass) {
    for (const char* type : {"float", "xyz", "rgb", "rgba", "string"}) {
        const auto value = MakeValue(type);
        EXPECT_EQ(VisitValue(*value, ClassName()), type);
        EXPECT_EQ(VisitValue(std::as_const(*value), ClassName()), type);
    }
    for (const char* type : {"generic", "generic:light", "genericlight"}) {
        const auto value = MakeValue(type);
        static_cast<COpValueGeneric&>(*value).value = type;
        EXPECT_EQ(VisitValue(*value, ClassName()), std::string("generic ") + type);
    }
}

TEST(ValueVisitor, AValueCanBeChangedAsItsOwnClass) {
    const auto value = MakeValue("rgba");
    VisitValue(*value, Changer());
    EXPECT_EQ(value->format, "changed");
    VisitValue(*value, ValueCalls{[](COpValueRgba& v) { v.a = 0.5F; }, [](const COpValue&) { FAIL(); }});
    EXPECT_EQ(static_cast<const COpValueRgba&>(*value).a, 0.5F);
}

TEST(ValueVisitor, AVisitorOfLambdasTakesEachToItsCall) {
    const auto components = ValueCalls{
        [](const COpValueFloat&) { return 1; },  [](const COpValueXyz&) { return 3; },
        [](const COpValueRgb&) { return 3; },    [](const COpValueRgba&) { return 4; },
        [](const COpValueString&) { return 0; }, [](const COpValueGeneric&) { return 0; },
    };
    EXPECT_EQ(VisitValue(*MakeValue("float"), components), 1);
    EXPECT_EQ(VisitValue(*MakeValue("rgba"), components), 4);
    EXPECT_EQ(VisitValue(*MakeValue("generic:m"), components), 0);
}

}  // namespace
}  // namespace tavrin
