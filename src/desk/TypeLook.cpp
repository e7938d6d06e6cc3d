// SPDX-License-Identifier: Apache-2.0
#include "desk/TypeLook.h"

#include <cmath>
#include <cstdint>

namespace tavrin {

namespace {

constexpr Rgb kNoType{0.72F, 0.72F, 0.72F};
// Light and clear enough for a dark desk, dark enough for a light one.
constexpr float kMost = 0.92F;
constexpr float kLeast = 0.42F;
constexpr uint32_t kHues = 24;
constexpr size_t kMostKnown = 1000;  // documents may name any number of types

// FNV-1a: the same everywhere, unlike what the language offers.
uint32_t HashOf(std::string_view text) {
    uint32_t hash = 2166136261U;
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    return hash;
}

Rgb ColorOfHue(float hue) {
    const auto channel = [hue](float peak) {
        const float turn = std::abs(std::remainder(hue - peak, 1.0F)) * 6;  // 0 to 3
        const float part = turn < 1 ? 1 : turn > 2 ? 0 : 2 - turn;
        return kLeast + (kMost - kLeast) * part;
    };
    return {channel(0), channel(1.0F / 3), channel(2.0F / 3)};
}

}  // namespace

TypeLook LookOfType(const std::string& type, const TypeTables& types) {
    std::string_view name = type;
    if (name.starts_with(kGenericPrefix)) name.remove_prefix(kGenericPrefix.size());
    const TypeMark& mark = types.GetMark(type);
    TypeLook look{kNoType, TypeShape::kCircle};
    if (!name.empty()) {
        const uint32_t hash = HashOf(name);
        look.color = ColorOfHue(static_cast<float>(hash % kHues) / static_cast<float>(kHues));
        look.shape = static_cast<TypeShape>(hash / kHues % kTypeShapeNames.size());
    }
    if (mark.color) look.color = {(*mark.color)[0], (*mark.color)[1], (*mark.color)[2]};
    if (mark.shape) look.shape = *mark.shape;
    return look;
}

const TypeLook& TypeLooks::Of(const std::string& type) {
    if (const auto known = m_known.find(type); known != m_known.end()) return known->second;
    if (m_known.size() >= kMostKnown) m_known.clear();
    return m_known.emplace(type, LookOfType(type, m_types)).first->second;
}

}  // namespace tavrin
