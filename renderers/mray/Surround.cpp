// SPDX-License-Identifier: Apache-2.0
#include "Surround.h"

namespace tavrin::mray {

namespace {

// Share of the picture that the octahedron fills; the rest is a border in which
// the directions continue over the fold.  The shaders know this number too.
constexpr float kFill = 0.9375f;

Vec2 fold(Vec3 direction) {
    const Vec3 d =
        direction * (1 / (std::fabs(direction.x) + std::fabs(direction.y) + std::fabs(direction.z)));
    if (d.y >= 0) {
        return {d.x, d.z};
    }
    return {(1 - std::fabs(d.z)) * (d.x < 0 ? -1.0f : 1.0f), (1 - std::fabs(d.x)) * (d.z < 0 ? -1.0f : 1.0f)};
}

Vec3 unfold(Vec2 at) {
    // Beyond an edge the picture continues turned by half a turn.
    if (std::fabs(at.x) > 1) {
        at = {(at.x < 0 ? -2.0f : 2.0f) - at.x, -at.y};
    }
    if (std::fabs(at.y) > 1) {
        at = {-at.x, (at.y < 0 ? -2.0f : 2.0f) - at.y};
    }
    Vec3 d{at.x, 1 - std::fabs(at.x) - std::fabs(at.y), at.y};
    if (d.y < 0) {
        d.x = (1 - std::fabs(at.y)) * (at.x < 0 ? -1.0f : 1.0f);
        d.z = (1 - std::fabs(at.x)) * (at.y < 0 ? -1.0f : 1.0f);
    }
    return normalized(d);
}

Vec3 texelDirection(int x, int y, int size) {
    const float scale = 2.0f / (static_cast<float>(size) * kFill);
    return unfold({(static_cast<float>(x) + 0.5f) * scale - 1 / kFill,
                   (static_cast<float>(y) + 0.5f) * scale - 1 / kFill});
}

int sizeOf(int level) { return Surround::kSize >> level; }

}  // namespace

Surround::Surround(const Backdrop& backdrop) {
    Level& all = sharp_[0];
    all.reserve(static_cast<std::size_t>(kSize) * kSize);
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            all.push_back(backdrop.environment(texelDirection(x, y, kSize)));
        }
    }
    for (int i = 1; i < kLevels; ++i) {
        const auto size = static_cast<std::size_t>(sizeOf(i));
        const Level& from = sharp_[static_cast<std::size_t>(i - 1)];
        Level& to = sharp_[static_cast<std::size_t>(i)];
        for (std::size_t y = 0; y < size; ++y) {
            for (std::size_t x = 0; x < size; ++x) {
                const Vec3* at = &from[2 * y * 2 * size + 2 * x];
                to.push_back((at[0] + at[1] + at[2 * size] + at[2 * size + 1]) * 0.25f);
            }
        }
    }
    levels_[0] = sharp_[0];
    for (int i = 1; i < kLevels; ++i) {
        blur(i);
    }
    makeHarmonics();
}

Vec3 Surround::look(int level, Vec3 direction) const {
    const auto size = static_cast<std::size_t>(sizeOf(level));
    const Vec2 at = fold(direction);
    const float x = (at.x * kFill * 0.5f + 0.5f) * static_cast<float>(size) - 0.5f;
    const float y = (at.y * kFill * 0.5f + 0.5f) * static_cast<float>(size) - 0.5f;
    const auto column = static_cast<std::size_t>(std::max(x, 0.0f));
    const auto row = static_cast<std::size_t>(std::max(y, 0.0f));
    const float fx = x - static_cast<float>(column);
    const float fy = y - static_cast<float>(row);
    const Vec3* texel = &sharp_[static_cast<std::size_t>(level)][row * size + column];
    return mix(mix(texel[0], texel[1], fx), mix(texel[size], texel[size + 1], fx), fy);
}

// One level as reflected by microfacets of its roughness, seen head-on.
void Surround::blur(int level) {
    const int size = sizeOf(level);
    const int samples = 16 + 16 * level;
    const float roughness = static_cast<float>(level) / (kLevels - 1);
    const float a2 = std::pow(roughness, 4.0f);
    std::vector<Vec3> around;
    for (int i = 0; i < samples; ++i) {
        const Vec2 s = spread(i);
        const float cosine = std::sqrt((1 - s.x) / (1 + (a2 - 1) * s.x));
        const float sine = std::sqrt(std::max(0.0f, 1 - cosine * cosine));
        const Vec3 h{sine * std::cos(2 * kPi * s.y), sine * std::sin(2 * kPi * s.y), cosine};
        const Vec3 l{2 * cosine * h.x, 2 * cosine * h.y, 2 * cosine * h.z - 1};
        if (l.z > 0) {
            around.push_back(l);
        }
    }
    Level& to = levels_[static_cast<std::size_t>(level)];
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const Frame frame(texelDirection(x, y, size));
            Vec3 sum;
            float weight = 0;
            for (const Vec3& l : around) {
                sum += look(std::min(level + 1, kLevels - 1), frame.at(l.x, l.y, l.z)) * l.z;
                weight += l.z;
            }
            to.push_back(sum * (1 / weight));
        }
    }
}

void Surround::makeHarmonics() {
    const int size = sizeOf(3);
    std::array<Vec3, 9> sum{};
    float total = 0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const float scale = 2.0f / (static_cast<float>(size) * kFill);
            if (std::fabs((static_cast<float>(x) + 0.5f) * scale - 1 / kFill) > 1 ||
                std::fabs((static_cast<float>(y) + 0.5f) * scale - 1 / kFill) > 1) {
                continue;
            }
            const Vec3 d = texelDirection(x, y, size);
            const float norm = std::fabs(d.x) + std::fabs(d.y) + std::fabs(d.z);
            const float weight = norm * norm * norm;  // solid angle, up to a factor
            const Vec3 c = look(3, d) * weight;
            const float basis[9]{
                1, d.y, d.z, d.x, d.x * d.y, d.y * d.z, 3 * d.z * d.z - 1, d.x * d.z, d.x * d.x - d.y * d.y};
            for (std::size_t i = 0; i < 9; ++i) {
                sum[i] += c * basis[i];
            }
            total += weight;
        }
    }
    // Squared norms of the basis times the attenuation of a cosine lobe (1, 2/3,
    // 1/4), so that a constant surrounding comes back unchanged.
    constexpr float kFactor[9]{1, 2, 2, 2, 15 / 4.0f, 15 / 4.0f, 5 / 16.0f, 15 / 4.0f, 15 / 16.0f};
    for (std::size_t i = 0; i < 9; ++i) {
        harmonics_[i] = sum[i] * (kFactor[i] / total);
    }
}

}  // namespace tavrin::mray
