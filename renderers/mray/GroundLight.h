// SPDX-License-Identifier: Apache-2.0
// Light on the ground around the object.  The object's triangles are projected
// onto the ground from many points of every light and of the sky; the average
// is the soft shadow, hard where the object touches the ground.
#pragma once

#include <cstdint>

#include "Backdrop.h"
#include "Mesh.h"

namespace tavrin::mray {

class GroundLight {
  public:
    // fineness 1: a small picture.
    GroundLight(const Mesh& mesh, const LightRig& rig, Vec3 ambient, float fineness);

    // Irradiance over pi at a point of the ground.
    [[nodiscard]] Vec3 at(float x, float z) const;

  private:
    // Share of samples that are covered, per cell.
    using Cover = std::vector<float>;

    struct Sample {
        Vec3 place;  // position, or direction to it
        bool near;
    };
    [[nodiscard]] Cover cover(const Mesh& mesh, const std::vector<Sample>& samples) const;
    void project(const Mesh& mesh, const Sample& sample, std::vector<Vec3>& out) const;
    void stamp(const Vec3& a, const Vec3& b, const Vec3& c, std::uint16_t id,
               std::vector<std::uint16_t>& stamps, Cover& counts) const;
    [[nodiscard]] Vec3 cellPlace(int x, int z) const;
    void soften(Cover& cover) const;

    int size_;
    std::vector<Vec3> light_;
    LightRig rig_;
    Vec3 ambient_;
};

}  // namespace tavrin::mray
