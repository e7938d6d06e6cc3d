// SPDX-License-Identifier: Apache-2.0
#include "library/Value.h"

#include "library/ValueVisitor.h"
#include "text/ValueFormat.h"

namespace tavrin {

namespace {

struct LiteralOf {
    std::string operator()(const COpValueFloat& v) const { return FormatNumbers(v.format, {v.value}); }
    std::string operator()(const COpValueXyz& v) const { return FormatNumbers(v.format, {v.x, v.y, v.z}); }
    std::string operator()(const COpValueRgb& v) const { return FormatNumbers(v.format, {v.r, v.g, v.b}); }
    std::string operator()(const COpValueRgba& v) const {
        return FormatNumbers(v.format, {v.r, v.g, v.b, v.a});
    }
    std::string operator()(const COpValueString& v) const {
        return FormatString(v.format, v.quoteflag != 0 ? "\"" + v.value + "\"" : v.value);
    }
    std::string operator()(const COpValueGeneric& v) const { return v.value; }
};

template <typename Class>
std::unique_ptr<COpValue> Made(std::string_view type) {
    if constexpr (std::is_default_constructible_v<Class>) {
        return std::make_unique<Class>();
    } else {
        return std::make_unique<Class>(type);  // one that bears many types
    }
}

template <typename... Classes>
std::unique_ptr<COpValue> MakeOf(std::string_view type, ValueClassList<Classes...>) {
    std::unique_ptr<COpValue> value;
    static_cast<void>(((Classes::Bears(type) && (value = Made<Classes>(type))) || ...));
    return value;
}

}  // namespace

bool IsGenericType(std::string_view type) { return type.starts_with(type_words::kGeneric); }

std::unique_ptr<COpValue> MakeValue(std::string_view type) { return MakeOf(type, ValueClasses()); }

std::unique_ptr<COpValue> CloneValue(const COpValue& value) {
    return VisitValue(value, [](const auto& own) -> std::unique_ptr<COpValue> {
        return std::make_unique<std::decay_t<decltype(own)>>(own);
    });
}

std::string ValueText(const COpValue& value) { return VisitValue(value, LiteralOf()); }

}  // namespace tavrin
