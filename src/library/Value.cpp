#include "library/Value.h"

#include "text/ValueFormat.h"

namespace tavrin {

namespace {

// Calls `visit` with the value as its own class.
template <typename Visitor>
auto VisitValue(const COpValue& value, Visitor visit) {
    if (value.type == type_words::kFloat) return visit(static_cast<const COpValueFloat&>(value));
    if (value.type == type_words::kXyz) return visit(static_cast<const COpValueXyz&>(value));
    if (value.type == type_words::kRgb) return visit(static_cast<const COpValueRgb&>(value));
    if (value.type == type_words::kRgba) return visit(static_cast<const COpValueRgba&>(value));
    if (value.type == type_words::kString) return visit(static_cast<const COpValueString&>(value));
    return visit(static_cast<const COpValueGeneric&>(value));
}

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

}  // namespace

bool IsGenericType(std::string_view type) { return type.starts_with(type_words::kGeneric); }

std::unique_ptr<COpValue> MakeValue(std::string_view type) {
    if (type == type_words::kFloat) return std::make_unique<COpValueFloat>();
    if (type == type_words::kXyz) return std::make_unique<COpValueXyz>();
    if (type == type_words::kRgb) return std::make_unique<COpValueRgb>();
    if (type == type_words::kRgba) return std::make_unique<COpValueRgba>();
    if (type == type_words::kString) return std::make_unique<COpValueString>();
    if (IsGenericType(type)) return std::make_unique<COpValueGeneric>(type);
    return nullptr;
}

std::unique_ptr<COpValue> CloneValue(const COpValue& value) {
    return VisitValue(value, [](const auto& own) -> std::unique_ptr<COpValue> {
        return std::make_unique<std::decay_t<decltype(own)>>(own);
    });
}

std::string ValueText(const COpValue& value) { return VisitValue(value, LiteralOf()); }

}  // namespace tavrin
