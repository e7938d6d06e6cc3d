// SPDX-License-Identifier: Apache-2.0
// The one door by which code comes to a value as its own class. Who does something of its own for each class
// hands in a visitor that has a call for all of them; one that forgets a class does not compile.
#pragma once

#include <concepts>
#include <type_traits>

#include "library/Value.h"

namespace tavrin {

// Values are made and visited by this list alone: a new class is added here, and the compiler names every
// visitor that does not know it. The first whose `Bears` is true of a type text has the type, the last the
// rest.
template <typename... Classes>
struct ValueClassList {};
using ValueClasses =
    ValueClassList<COpValueFloat, COpValueXyz, COpValueRgb, COpValueRgba, COpValueString, COpValueGeneric>;

namespace value_visit {

// A class of values, constant where the value is seen as a constant one.
template <typename Class, typename Value>
using As = std::conditional_t<std::is_const_v<Value>, const Class, Class>;

template <typename Visitor, typename Value, typename... Classes>
constexpr bool HasCallForEach(ValueClassList<Classes...>) {
    return (std::invocable<Visitor&, As<Classes, Value>&> && ...);
}

template <typename Value, typename Visitor, typename Class, typename... Others>
decltype(auto) Visit(Value& value, Visitor& visitor, ValueClassList<Class, Others...>) {
    if constexpr (sizeof...(Others) > 0) {
        if (!Class::Bears(value.type)) return Visit(value, visitor, ValueClassList<Others...>());
    }
    return visitor(static_cast<As<Class, Value>&>(value));
}

}  // namespace value_visit

// Can be called with a value of every class; `Value` is COpValue or const COpValue.
template <typename Visitor, typename Value>
concept ValueVisitor = value_visit::HasCallForEach<Visitor, Value>(ValueClasses());

// Calls the visitor with the value as its own class; what it returns.
template <std::derived_from<COpValue> Value, typename Visitor>
requires ValueVisitor<Visitor, value_visit::As<COpValue, Value>>
decltype(auto) VisitValue(Value& value, Visitor&& visitor) {
    value_visit::As<COpValue, Value>& any = value;
    return value_visit::Visit(any, visitor, ValueClasses());
}

// A visitor made of lambdas. They name their classes: one that takes whatever comes is never told of a new
// one.
template <typename... Calls>
struct ValueCalls : Calls... {
    using Calls::operator()...;
};
// The compiler that fuzzes does not find that by itself yet.
template <typename... Calls>
ValueCalls(Calls...) -> ValueCalls<Calls...>;

}  // namespace tavrin
