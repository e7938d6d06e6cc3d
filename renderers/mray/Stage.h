// SPDX-License-Identifier: Apache-2.0
// All of the scene that the graphics library has no part in: the object with
// what it sees of the lights, the surroundings, the light on the ground.  Made by
// other threads while the drivers start and the shader is compiled.
#pragma once

#include <future>
#include <vector>

#include "Camera.h"
#include "GroundLight.h"
#include "Options.h"
#include "Surround.h"

namespace tavrin::mray {

class Stage {
  public:
    // What a stage is made from; equal ones make equal stages.
    struct Plan {
        ObjectKind object;
        BackdropKind backdrop;
        LightKind light;
        float detail;  // how much finer than for a small picture things are
        static Plan of(const Options& options);
        bool operator==(const Plan&) const = default;
    };
    struct Look {
        Mesh mesh;
        Surround surround;
    };

    explicit Stage(const Plan& plan);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    [[nodiscard]] const LightRig& rig() const { return rig_; }
    void wait() const { look_.wait(); }
    // Waits until it is made.
    [[nodiscard]] const Look& look() const { return look_.get(); }

    // Ground and background behind an area, one colour per pixel, top row first.
    // Waits until the light on the ground is made.
    [[nodiscard]] std::vector<Vec3> background(const Camera& camera, const Area& area) const;

  private:
    [[nodiscard]] Vec3 behind(const Camera& camera, Vec3 direction) const;

    Shape shape_;
    LightRig rig_;
    Backdrop backdrop_;
    float detail_;
    std::shared_future<Look> look_;
    std::shared_future<GroundLight> ground_;
};

}  // namespace tavrin::mray
