// SPDX-License-Identifier: Apache-2.0
#include "Backdrop.h"

namespace tavrin::mray {

namespace {

// A softbox: a rectangle of light hung at unit distance in a direction.
struct Panel {
    Frame frame;
    float wide, tall;  // half sizes
    Vec3 color;
};

const Panel kPanels[]{{Frame(normalized({-0.80f, 0.62f, 0.55f})), 0.42f, 0.42f, {3.6f, 3.5f, 3.35f}},
                      {Frame(normalized({0.95f, 0.30f, 0.30f})), 0.16f, 0.62f, {2.0f, 2.1f, 2.25f}},
                      {Frame(normalized({0.10f, 1.00f, -0.25f})), 0.75f, 0.40f, {0.9f, 0.9f, 0.9f}},
                      {Frame(normalized({-0.70f, 0.42f, -0.85f})), 0.12f, 0.50f, {1.9f, 1.9f, 1.9f}}};

Vec3 panels(Vec3 d) {
    Vec3 sum;
    for (const Panel& panel : kPanels) {
        const float facing = dot(d, panel.frame.n);
        if (facing < 0.5f) {
            continue;
        }
        const float x = std::fabs(dot(d, panel.frame.u)) / facing;
        const float y = std::fabs(dot(d, panel.frame.v)) / facing;
        const float edge = smoothstep(panel.wide + 0.03f, panel.wide - 0.03f, x) *
                           smoothstep(panel.tall + 0.03f, panel.tall - 0.03f, y);
        // Brighter in the middle, as a lamp behind cloth is.
        const float relX = x / panel.wide;
        const float relY = y / panel.tall;
        const float lamp = 1.15f - 0.2f * (relX * relX + relY * relY);
        sum += panel.color * (edge * lamp);
    }
    return sum;
}

// Black cards left and right of the object, which give bright surfaces a contour
// when everything around is white.
float flags(Vec3 d) {
    const float side = smoothstep(0.72f, 0.80f, std::fabs(d.x)) * smoothstep(0.98f, 0.94f, std::fabs(d.x));
    return 1 - 0.85f * side * smoothstep(0.75f, 0.65f, d.y);
}

Vec3 sky(Vec3 d) {
    const float up = std::max(d.y, 0.0f);
    const Vec3 horizon{0.78f, 0.84f, 0.90f};
    const Vec3 zenith{0.17f, 0.30f, 0.56f};
    const Vec3 blue = mix(horizon, zenith, 1 - std::exp(-3.2f * up));
    const float glow = std::max(dot(d, normalized({-0.62f, 0.78f, 0.42f})), 0.0f);
    return blue + Vec3{1.0f, 0.9f, 0.7f} * (0.35f * std::pow(glow, 24.0f));
}

// The seamless paper of the studio: a pool of light that falls off upwards and
// to the sides.
Vec3 paper(Vec3 d, Vec3 dark, Vec3 bright) {
    const Vec3 towards = normalized({0.0f, -0.02f, -1.0f});
    const float off = std::max(0.0f, 1 - dot(d, towards));
    return mix(dark, bright, std::exp(-7.0f * off));
}

}  // namespace

Backdrop::Backdrop(BackdropKind kind, const LightRig& rig) : kind_(kind) {
    constexpr int kSamples = 256;
    const Frame up({0, 1, 0});
    for (int i = 0; i < kSamples; ++i) {
        const Vec2 s = spread(i);
        const float r = std::sqrt(s.x);
        const Vec3 d = up.at(r * std::cos(2 * kPi * s.y), r * std::sin(2 * kPi * s.y), std::sqrt(1 - s.x));
        ambientUp_ += above(d) * (1.0f / kSamples);
    }
    Vec3 arriving = ambientUp_;
    for (const Light& light : rig) {
        arriving += light.radiance({0, 0, 0}) * (std::max(light.direction({0, 0, 0}).y, 0.0f) * light.spill);
    }
    ground_ = arriving * groundAlbedo();
}

Vec3 Backdrop::groundAlbedo() const {
    switch (kind_) {
        case BackdropKind::Sky:
            return {0.42f, 0.385f, 0.335f};
        case BackdropKind::Dark:
            return {0.06f, 0.06f, 0.063f};
        case BackdropKind::White:
            return {0.92f, 0.92f, 0.92f};
        case BackdropKind::Studio:
            break;
    }
    return {0.30f, 0.30f, 0.305f};
}

Vec3 Backdrop::plate(Vec3 direction) const {
    switch (kind_) {
        // The haze hides the horizon; show more of the blue above it.
        case BackdropKind::Sky:
            return sky({direction.x, 1.1f * (direction.y + 0.13f), direction.z});
        case BackdropKind::Dark:
            return paper(direction, {0.006f, 0.006f, 0.007f}, {0.05f, 0.051f, 0.055f});
        case BackdropKind::White:
            return paper(direction, {1.15f, 1.15f, 1.15f}, {1.6f, 1.6f, 1.6f});
        case BackdropKind::Studio:
            break;
    }
    return paper(direction, {0.085f, 0.087f, 0.092f}, {0.27f, 0.27f, 0.278f});
}

Vec3 Backdrop::above(Vec3 d) const {
    const float up = std::max(d.y, 0.0f);
    switch (kind_) {
        case BackdropKind::Sky:
            return sky(d);
        case BackdropKind::Dark:
            return Vec3{0.035f, 0.036f, 0.04f} + panels(d) * 0.30f;
        case BackdropKind::White:
            return Vec3{0.62f, 0.62f, 0.62f} * flags(d) + panels(d) * 0.40f;
        case BackdropKind::Studio:
            break;
    }
    return mix(Vec3{0.17f, 0.17f, 0.175f}, Vec3{0.08f, 0.08f, 0.083f}, up) + panels(d) * 0.55f;
}

Vec3 Backdrop::environment(Vec3 d) const {
    // The ground fades into the surroundings a little below the horizon.
    const float below = smoothstep(0.02f, -0.20f, d.y);
    return below <= 0 ? above(d) : mix(above({d.x, std::fabs(d.y), d.z}), ground_, below);
}

}  // namespace tavrin::mray
