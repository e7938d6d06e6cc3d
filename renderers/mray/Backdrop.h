// SPDX-License-Identifier: Apache-2.0
// The surroundings: what the camera sees behind the object (the plate), what the
// object sees all around (the environment), and the colour of the ground.
#pragma once

#include "LightRig.h"

namespace tavrin::mray {

enum class BackdropKind { Studio, Sky, Dark, White };

class Backdrop {
  public:
    Backdrop(BackdropKind kind, const LightRig& rig);

    // Colour behind everything in a direction from the camera.
    [[nodiscard]] Vec3 plate(Vec3 direction) const;

    // Radiance arriving at the object from a direction; downwards the ground.
    [[nodiscard]] Vec3 environment(Vec3 direction) const;

    // Irradiance over pi on open ground, without the lights.
    [[nodiscard]] Vec3 ambientUp() const { return ambientUp_; }

    [[nodiscard]] Vec3 groundAlbedo() const;

  private:
    [[nodiscard]] Vec3 above(Vec3 direction) const;

    BackdropKind kind_;
    Vec3 ambientUp_;
    Vec3 ground_;  // radiance of open, lit ground
};

}  // namespace tavrin::mray
