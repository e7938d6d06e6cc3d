// SPDX-License-Identifier: Apache-2.0
#include "GroundLight.h"

namespace tavrin::mray {

namespace {

constexpr float kReach = 4.5f;  // the map covers [-kReach, kReach]^2

// Near lights are masked to a pool around the object, as on a stage.
Vec3 unhindered(const Light& light, Vec3 p) {
    constexpr float kPool = 4.5f;
    const float pool = light.near ? std::exp(-dot(p, p) / (2 * kPool * kPool)) : 1.0f;
    return light.radiance(p) * (std::max(light.direction(p).y, 0.0f) * pool * light.spill);
}

}  // namespace

GroundLight::GroundLight(const Mesh& mesh, const LightRig& rig, Vec3 ambient, float fineness)
    : size_(static_cast<int>(320 * fineness)), rig_(rig), ambient_(ambient) {
    const int samples = static_cast<int>(40 * fineness);
    std::vector<Sample> sky;
    for (int i = 0; i < 2 * samples; ++i) {
        const Vec2 s = spread(i);
        const float r = std::sqrt(s.x);
        sky.push_back(
            {{r * std::cos(2 * kPi * s.y), std::sqrt(1 - s.x), r * std::sin(2 * kPi * s.y)}, false});
    }
    const Cover skyCover = cover(mesh, sky);
    for (const float covered : skyCover) {
        light_.push_back(ambient * (1 - covered));
    }
    for (const Light& light : rig) {
        const Vec3 middle = light.near ? light.place : light.place * 10.0f;
        const Frame frame(normalized(middle - Vec3{0, 0.9f, 0}));
        const float radius = light.angle * length(middle - Vec3{0, 0.9f, 0});
        std::vector<Sample> disc;
        for (int i = 0; i < samples; ++i) {
            const Vec2 s = spread(i);
            const float r = radius * std::sqrt(s.x);
            const float turn = 2 * kPi * s.y;
            disc.push_back({middle + frame.at(r * std::cos(turn), r * std::sin(turn), 0), light.near});
        }
        const Cover lightCover = cover(mesh, disc);
        for (int z = 0; z < size_; ++z) {
            for (int x = 0; x < size_; ++x) {
                const auto i = static_cast<std::size_t>(z * size_ + x);
                light_[i] += unhindered(light, cellPlace(x, z)) * (1 - lightCover[i]);
            }
        }
    }
}

Vec3 GroundLight::cellPlace(int x, int z) const {
    const float scale = 2 * kReach / static_cast<float>(size_);
    return {(static_cast<float>(x) + 0.5f) * scale - kReach, 0,
            (static_cast<float>(z) + 0.5f) * scale - kReach};
}

// Shadows of all vertices in cells: x and z, and y telling whether the vertex
// lies safely below the light.
void GroundLight::project(const Mesh& mesh, const Sample& sample, std::vector<Vec3>& out) const {
    const float scale = static_cast<float>(size_) / (2 * kReach);
    const Vec3 light = sample.place;
    out.clear();
    for (const Vertex& vertex : mesh.vertices) {
        const Vec3 p = vertex.position;
        const Vec3 way = sample.near ? light - p : light;
        const bool below = way.y > 0.02f;
        const float t = below ? p.y / way.y : 0;
        out.push_back({(p.x - way.x * t + kReach) * scale - 0.5f, below ? 1.0f : 0.0f,
                       (p.z - way.z * t + kReach) * scale - 0.5f});
    }
}

void GroundLight::stamp(const Vec3& a, const Vec3& b, const Vec3& c, std::uint16_t id,
                        std::vector<std::uint16_t>& stamps, Cover& counts) const {
    const float low = std::max(std::ceil(std::min({a.z, b.z, c.z})), 0.0f);
    const float high = std::min(std::max({a.z, b.z, c.z}), static_cast<float>(size_ - 1));
    const Vec3* corners[]{&a, &b, &c};
    for (float z = low; z <= high; ++z) {
        float left = 1e9f;
        float right = -1e9f;
        for (int i = 0; i < 3; ++i) {
            const Vec3& p = *corners[i];
            const Vec3& q = *corners[(i + 1) % 3];
            if ((p.z <= z) != (q.z <= z)) {
                const float x = p.x + (q.x - p.x) * (z - p.z) / (q.z - p.z);
                left = std::min(left, x);
                right = std::max(right, x);
            }
        }
        const int from = static_cast<int>(std::ceil(std::max(left, 0.0f)));
        const int to = static_cast<int>(std::min(right, static_cast<float>(size_ - 1)));
        const std::size_t row = static_cast<std::size_t>(z) * static_cast<std::size_t>(size_);
        for (int x = from; x <= to && right >= 0; ++x) {
            const std::size_t i = row + static_cast<std::size_t>(x);
            counts[i] += stamps[i] == id ? 0.0f : 1.0f;
            stamps[i] = id;
        }
    }
}

GroundLight::Cover GroundLight::cover(const Mesh& mesh, const std::vector<Sample>& samples) const {
    const auto cells = static_cast<std::size_t>(size_) * static_cast<std::size_t>(size_);
    Cover counts(cells, 0.0f);
    std::vector<std::uint16_t> stamps(cells, 0);
    std::vector<Vec3> shadow;
    std::uint16_t id = 0;
    for (const Sample& sample : samples) {
        ++id;
        project(mesh, sample, shadow);
        for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
            const Vec3& a = shadow[mesh.indices[i]];
            const Vec3& b = shadow[mesh.indices[i + 1]];
            const Vec3& c = shadow[mesh.indices[i + 2]];
            // Only the side that faces the light: it covers the same cells.
            const float area = (b.x - a.x) * (c.z - a.z) - (b.z - a.z) * (c.x - a.x);
            if (area < 0 && a.y + b.y + c.y > 2.5f) {
                stamp(a, b, c, id, stamps, counts);
            }
        }
    }
    for (float& count : counts) {
        count /= static_cast<float>(samples.size());
    }
    soften(counts);
    return counts;
}

// A small blur against the steps left by single samples.
void GroundLight::soften(Cover& cover) const {
    const auto size = static_cast<std::size_t>(size_);
    for (const std::size_t step : {std::size_t{1}, size}) {
        const Cover from = cover;
        for (std::size_t i = step; i + step < cover.size(); ++i) {
            cover[i] = 0.25f * from[i - step] + 0.5f * from[i] + 0.25f * from[i + step];
        }
    }
}

Vec3 GroundLight::at(float x, float z) const {
    const float scale = static_cast<float>(size_) / (2 * kReach);
    const float u = (x + kReach) * scale - 0.5f;
    const float v = (z + kReach) * scale - 0.5f;
    const float last = static_cast<float>(size_ - 1);
    if (u < 0 || v < 0 || u >= last || v >= last) {
        Vec3 sum = ambient_;
        for (const Light& light : rig_) {
            sum += unhindered(light, {x, 0, z});
        }
        return sum;
    }
    const auto column = static_cast<std::size_t>(u);
    const auto row = static_cast<std::size_t>(v);
    const auto size = static_cast<std::size_t>(size_);
    const float fx = u - static_cast<float>(column);
    const float fz = v - static_cast<float>(row);
    const Vec3* cell = &light_[row * size + column];
    return mix(mix(cell[0], cell[1], fx), mix(cell[size], cell[size + 1], fx), fz);
}

}  // namespace tavrin::mray
