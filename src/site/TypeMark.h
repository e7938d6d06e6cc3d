// SPDX-License-Identifier: Apache-2.0
// How a library wants the buttons of a type to be marked.
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tavrin {

enum class TypeShape { kCircle, kSquare, kDiamond, kTriangle, kWedge, kBar };

// By the order of TypeShape; as site files name them.
inline constexpr std::array<std::string_view, 6> kTypeShapeNames{"circle",   "square", "diamond",
                                                                 "triangle", "wedge",  "bar"};

// Nothing for any other word.
constexpr std::optional<TypeShape> TypeShapeNamed(std::string_view name) {
    for (size_t i = 0; i < kTypeShapeNames.size(); ++i) {
        if (kTypeShapeNames[i] == name) return static_cast<TypeShape>(i);
    }
    return std::nullopt;
}

// What a library does not say is chosen by the type's name.
struct TypeMark {
    std::optional<std::array<float, 3>> color;  // components from 0 to 1
    std::optional<TypeShape> shape;
};

}  // namespace tavrin
