// SPDX-License-Identifier: Apache-2.0
// The objects that can be rendered, standing on the ground y = 0.
#pragma once

#include <memory>

#include "Mesh.h"
#include "Profile.h"

namespace tavrin::mray {

enum class ObjectKind { Sphere, Torus, Cube, Vase, Plane };

// Where an object stands: turned, then lifted until it touches the ground.
struct Pose {
    float yaw = 0;   // about y, radians
    float tilt = 0;  // about x, before the yaw; positive leans back
    float lift = 0;
    [[nodiscard]] Vec3 turn(Vec3 object) const;
    [[nodiscard]] Vec3 turnBack(Vec3 world) const;
};

class Shape {
  public:
    explicit Shape(ObjectKind kind);

    // The mesh; the number of triangles grows with the square of detail
    // (1: a small picture).
    [[nodiscard]] Mesh mesh(float detail) const;

    // Signed distance of a world-space point, negative inside.
    [[nodiscard]] float distance(Vec3 world) const;

  private:
    [[nodiscard]] Mesh objectMesh(float detail) const;
    [[nodiscard]] float objectDistance(Vec3 p) const;

    ObjectKind kind_;
    Pose pose_;
    std::unique_ptr<Profile> vase_;
};

}  // namespace tavrin::mray
