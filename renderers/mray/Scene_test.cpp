// SPDX-License-Identifier: Apache-2.0
// The arithmetic of the scene: meshes, surroundings, light on the ground, film.
#include <gtest/gtest.h>

#include "Bake.h"
#include "Camera.h"
#include "Film.h"
#include "GroundLight.h"
#include "Surround.h"

namespace tavrin::mray {
namespace {

class EveryObject : public testing::TestWithParam<ObjectKind> {};

TEST_P(EveryObject, MeshLiesOnItsSurfaceAndStandsOnTheGround) {
    const Shape shape(GetParam());
    const Mesh mesh = shape.mesh(1);
    float lowest = 1;
    for (const Vertex& vertex : mesh.vertices) {
        lowest = std::min(lowest, vertex.position.y);
        EXPECT_NEAR(shape.distance(vertex.position), 0, 0.03f);
        EXPECT_NEAR(length(vertex.normal), 1, 1e-3f);
        const Vec3 p = vertex.object;
        EXPECT_LE(std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)}), 1.001f);
        EXPECT_TRUE(vertex.uv.x >= 0 && vertex.uv.x <= 1 && vertex.uv.y >= 0 && vertex.uv.y <= 1);
    }
    EXPECT_NEAR(lowest, 0, 0.01f);
}

TEST_P(EveryObject, TrianglesFaceOutwards) {
    const Mesh mesh = Shape(GetParam()).mesh(1);
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        const Vertex& a = mesh.vertices[mesh.indices[i]];
        const Vertex& b = mesh.vertices[mesh.indices[i + 1]];
        const Vertex& c = mesh.vertices[mesh.indices[i + 2]];
        const Vec3 face = cross(b.position - a.position, c.position - a.position);
        if (length(face) > 1e-6f) {
            EXPECT_GT(dot(face, a.normal + b.normal + c.normal), 0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Objects, EveryObject,
                         testing::Values(ObjectKind::Sphere, ObjectKind::Torus, ObjectKind::Cube,
                                         ObjectKind::Vase, ObjectKind::Plane));

TEST(GroundLight, DarkUnderTheObjectAndFreeFarAway) {
    const LightRig sun = makeLightRig(LightKind::Sun);
    const GroundLight ground(Shape(ObjectKind::Sphere).mesh(1), sun, {0.1f, 0.1f, 0.1f}, 1);
    const float open = 0.1f + sun[0].color.x * sun[0].place.y;
    EXPECT_LT(ground.at(0, 0).x, 0.05f);
    EXPECT_NEAR(ground.at(-4, 3).x, open, 0.02f);
    EXPECT_NEAR(ground.at(90, 0).x, open, 1e-4f);
    // In the middle of the shadow there is only sky.
    const Vec3 middle = sun[0].place * (-1 / sun[0].place.y);
    EXPECT_LT(ground.at(middle.x, middle.z).x, 0.1f);
}

TEST(Bake, ShadesTheSideAwayFromTheLight) {
    const Shape shape(ObjectKind::Sphere);
    const LightRig sun = makeLightRig(LightKind::Sun);
    Mesh mesh = shape.mesh(1);
    bakeVisibility(mesh, shape, sun);
    for (const Vertex& vertex : mesh.vertices) {
        const float facing = dot(vertex.normal, sun[0].place);
        if (std::fabs(facing) > 0.2f) {
            EXPECT_NEAR(vertex.lit[0], facing > 0 ? 1 : 0, 0.02f);
        }
        EXPECT_TRUE(vertex.open > 0 && vertex.open <= 1);
    }
}

TEST(Surround, HarmonicsFollowTheLight) {
    const Backdrop backdrop(BackdropKind::Sky, {});
    const Surround surround(backdrop);
    const auto& sky = surround.harmonics();
    // Upwards: the even terms of the third axis and the first one.
    const float up = sky[0].z + sky[1].z - sky[6].z - sky[8].z;
    const float aside = sky[0].z + sky[3].z - sky[6].z + sky[8].z;
    EXPECT_NEAR(up, backdrop.ambientUp().z, 0.04f);
    EXPECT_GT(up, aside);
    for (int i = 0; i < Surround::kLevels; ++i) {
        const auto size = static_cast<std::size_t>(Surround::kSize >> i);
        EXPECT_EQ(surround.level(i).size(), size * size);
    }
}

TEST(Camera, ClipSpaceAgreesWithDirections) {
    const Camera camera(320, 240);
    const Area area{40, 60, 100, 50};
    const auto m = camera.toClip(area);
    const Vec3 p = camera.eye() + camera.direction(40, 60) * 5.0f;  // top left corner of the area
    const auto row = [&](std::size_t i) { return m[i] * p.x + m[4 + i] * p.y + m[8 + i] * p.z + m[12 + i]; };
    EXPECT_NEAR(row(0) / row(3), -1, 1e-4f);
    EXPECT_NEAR(row(1) / row(3), 1, 1e-4f);
}

TEST(Film, BackgroundShowsWhereNothingIsDrawn) {
    for (const int count : {1, 2, 4, 9, 16}) {
        const Grid grid = Grid::of(count);
        EXPECT_EQ(grid.x * grid.y, count);
        Film film(3, 2, grid, 1);
        std::vector<float> samples(static_cast<std::size_t>(5 * 4 * count * 4), 0.0f);
        film.develop({0, 0, 3, 2}, samples, std::vector<Vec3>(20, Vec3{0.2140f, 0, 1000}));
        for (std::size_t i = 0; i < film.pixels().size(); i += 3) {
            EXPECT_NEAR(film.pixels()[i], 127.5, 1.6);
            EXPECT_LE(film.pixels()[i + 1], 1);
            EXPECT_GE(film.pixels()[i + 2], 254);
        }
    }
}

TEST(Film, CountsWhatIsNoNumber) {
    Film film(1, 1, Grid{}, 1);
    std::vector<float> samples(9 * 4, 0.0f);
    samples[16] = std::nanf("");
    film.develop({0, 0, 1, 1}, samples, std::vector<Vec3>(9, Vec3{1, 1, 1}));
    EXPECT_EQ(film.strange(), 1);
    EXPECT_LE(film.pixels()[0], 1);
}

}  // namespace
}  // namespace tavrin::mray
