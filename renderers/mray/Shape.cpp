// SPDX-License-Identifier: Apache-2.0
#include "Shape.h"

namespace tavrin::mray {

namespace {

constexpr float kRing = 0.69f;  // torus: radius of the ring
constexpr float kTube = 0.31f;  // and of its tube
constexpr Vec3 kCube{0.78f, 0.78f, 0.78f};
constexpr float kCubeEdge = 0.07f;
constexpr Vec3 kSlab{0.95f, 0.95f, 0.05f};
constexpr float kSlabEdge = 0.03f;

int steps(float detail, int count) {
    return std::max(4, static_cast<int>(std::lround(detail * static_cast<float>(count))));
}

Mesh sphereMesh(float detail) {
    Mesh mesh;
    mesh.addPatch(evenSteps(steps(detail, 56)), evenSteps(steps(detail, 28)), [](float u, float v) {
        const float a = 2 * kPi * (u - 0.5f);
        const float b = kPi * (v - 0.5f);
        Vertex at;
        at.object = {std::sin(a) * std::cos(b), std::sin(b), std::cos(a) * std::cos(b)};
        at.normal = at.object;
        at.tangent = {std::cos(a), 0, -std::sin(a)};
        at.uv = {u, v};
        return at;
    });
    return mesh;
}

Mesh torusMesh(float detail) {
    Mesh mesh;
    mesh.addPatch(evenSteps(steps(detail, 80)), evenSteps(steps(detail, 36)), [](float u, float v) {
        const float a = 2 * kPi * u - kPi / 2;
        const float b = 2 * kPi * (v - 0.5f);
        const Vec3 out{std::cos(a), std::sin(a), 0};
        Vertex at;
        at.normal = out * std::cos(b) + Vec3{0, 0, 1} * std::sin(b);
        at.object = out * kRing + at.normal * kTube;
        at.tangent = {-std::sin(a), std::cos(a), 0};
        at.uv = {u, v};
        return at;
    });
    return mesh;
}

Mesh vaseMesh(const Profile& profile, float detail) {
    const int count = steps(detail, 64);
    const std::vector<Profile::Point> points = profile.points(count);
    Mesh mesh;
    mesh.addPatch(evenSteps(steps(detail, 56)), evenSteps(count), [&](float u, float v) {
        const auto& point = points[static_cast<std::size_t>(std::lround(v * static_cast<float>(count)))];
        const float a = 2 * kPi * (u - 0.5f);
        const Vec3 out{std::sin(a), 0, std::cos(a)};
        Vertex at;
        at.object = out * point.at.x + Vec3{0, point.at.y, 0};
        at.normal = out * point.normal.x + Vec3{0, point.normal.y, 0};
        at.tangent = {std::cos(a), 0, -std::sin(a)};
        at.uv = {u, point.along};
        return at;
    });
    return mesh;
}

// Steps from 0 to 1 over an edge of the given size, with extra ones in the
// rounding at both ends.
std::vector<float> edgeSteps(float half, float rounding, int count, int bend) {
    const float r = rounding / (2 * half);
    std::vector<float> result;
    for (int i = 0; i < bend; ++i) {
        const float angle = kPi / 4 * (1 - static_cast<float>(i) / static_cast<float>(bend));
        result.push_back(r * (1 - std::tan(angle)));
    }
    for (const float t : evenSteps(count)) {
        result.push_back(mix(r, 1 - r, t));
    }
    for (int i = bend - 1; i >= 0; --i) {
        result.push_back(1 - result[static_cast<std::size_t>(i)]);
    }
    return result;
}

// A box with rounded edges: six faces, each with its own uv.
Mesh boxMesh(Vec3 half, float rounding, float detail) {
    struct Face {
        Vec3 u, v, n;
    };
    static constexpr Face kFaces[]{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},  {{-1, 0, 0}, {0, 1, 0}, {0, 0, -1}},
                                   {{0, 0, -1}, {0, 1, 0}, {1, 0, 0}}, {{0, 0, 1}, {0, 1, 0}, {-1, 0, 0}},
                                   {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}, {{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}};
    const Vec3 core{half.x - rounding, half.y - rounding, half.z - rounding};
    const auto extent = [&](Vec3 axis) { return std::fabs(dot(axis, half)); };
    const auto flat = [&](Vec3 axis) { return std::max(1, static_cast<int>(extent(axis) * 12 * detail)); };
    const int bend = steps(detail, 4);
    Mesh mesh;
    for (const Face& face : kFaces) {
        const auto surface = [&](float u, float v) {
            const Vec3 raw = (face.u * (2 * u - 1) + face.v * (2 * v - 1) + face.n) * half;
            const Vec3 inner{std::clamp(raw.x, -core.x, core.x), std::clamp(raw.y, -core.y, core.y),
                             std::clamp(raw.z, -core.z, core.z)};
            Vertex at;
            at.normal = normalized(raw - inner);
            at.object = inner + at.normal * rounding;
            at.tangent = normalized(face.u - at.normal * dot(face.u, at.normal));
            at.uv = {u, v};
            return at;
        };
        mesh.addPatch(edgeSteps(extent(face.u), rounding, flat(face.u), bend),
                      edgeSteps(extent(face.v), rounding, flat(face.v), bend), surface);
    }
    return mesh;
}

float boxDistance(Vec3 p, Vec3 half, float rounding) {
    const Vec3 q{std::fabs(p.x) - half.x + rounding, std::fabs(p.y) - half.y + rounding,
                 std::fabs(p.z) - half.z + rounding};
    const Vec3 out{std::max(q.x, 0.0f), std::max(q.y, 0.0f), std::max(q.z, 0.0f)};
    return length(out) + std::min(std::max({q.x, q.y, q.z}), 0.0f) - rounding;
}

// Height of the middle of a box that leans back and touches the ground.
float standing(Vec3 half, float rounding, float tilt) {
    return (half.y - rounding) * std::cos(tilt) + (half.z - rounding) * std::sin(tilt) + rounding;
}

Vec3 aboutX(Vec3 p, float angle) {
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    return {p.x, c * p.y - s * p.z, s * p.y + c * p.z};
}

Vec3 aboutY(Vec3 p, float angle) {
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    return {c * p.x + s * p.z, p.y, c * p.z - s * p.x};
}

}  // namespace

Vec3 Pose::turn(Vec3 object) const { return aboutY(aboutX(object, -tilt), yaw); }

Vec3 Pose::turnBack(Vec3 world) const { return aboutX(aboutY(world, -yaw), tilt); }

Shape::Shape(ObjectKind kind) : kind_(kind) {
    switch (kind) {
        case ObjectKind::Sphere:
            pose_ = {0, 0, 1};
            break;
        case ObjectKind::Torus:
            pose_ = {0.62f, 0, kRing + kTube};
            break;
        case ObjectKind::Cube:
            pose_ = {0.6f, 0, kCube.y};
            break;
        case ObjectKind::Plane:
            pose_ = {0.3f, 0.3f, standing(kSlab, kSlabEdge, 0.3f)};
            break;
        case ObjectKind::Vase:
            pose_ = {0, 0, 1};
            vase_ = std::make_unique<Profile>();
            break;
    }
}

Mesh Shape::objectMesh(float detail) const {
    switch (kind_) {
        case ObjectKind::Torus:
            return torusMesh(detail);
        case ObjectKind::Cube:
            return boxMesh(kCube, kCubeEdge, detail);
        case ObjectKind::Vase:
            return vaseMesh(*vase_, detail);
        case ObjectKind::Plane:
            return boxMesh(kSlab, kSlabEdge, detail);
        case ObjectKind::Sphere:
            break;
    }
    return sphereMesh(detail);
}

float Shape::objectDistance(Vec3 p) const {
    switch (kind_) {
        case ObjectKind::Torus:
            return length(Vec2{length(Vec2{p.x, p.y}) - kRing, p.z}) - kTube;
        case ObjectKind::Cube:
            return boxDistance(p, kCube, kCubeEdge);
        case ObjectKind::Vase:
            return vase_->distance({length(Vec2{p.x, p.z}), p.y});
        case ObjectKind::Plane:
            return boxDistance(p, kSlab, kSlabEdge);
        case ObjectKind::Sphere:
            break;
    }
    return length(p) - 1;
}

Mesh Shape::mesh(float detail) const {
    Mesh result = objectMesh(detail);
    for (Vertex& vertex : result.vertices) {
        vertex.position = pose_.turn(vertex.object) + Vec3{0, pose_.lift, 0};
        vertex.normal = pose_.turn(vertex.normal);
        vertex.tangent = pose_.turn(vertex.tangent);
    }
    return result;
}

float Shape::distance(Vec3 world) const {
    return objectDistance(pose_.turnBack({world.x, world.y - pose_.lift, world.z}));
}

}  // namespace tavrin::mray
