// SPDX-License-Identifier: Apache-2.0
// A scene that stays for further pictures, with the backgrounds that were made of it.
#pragma once

#include <list>
#include <optional>

#include "Canvas.h"
#include "Shelf.h"

namespace tavrin::mray {

class LiveScene {
  public:
    // Its stage is made by other threads from now on.
    explicit LiveScene(const Stage::Plan& plan) : plan_(plan), stage_(plan), plates_(kMostPlates) {}

    [[nodiscard]] const Stage::Plan& key() const { return plan_; }
    // Waits for the stage the first time.
    const Scene& scene(const Gl& gl);

    // Ground and background behind an area.  Those of a whole picture are kept, if it is
    // no large one.
    std::vector<Vec3> background(const Camera& camera, int width, int height, const Area& area);

  private:
    // The background of a whole picture and its margin.
    struct Plate {
        Area area;
        std::vector<Vec3> pixels;
        [[nodiscard]] std::pair<int, int> key() const { return {area.width, area.height}; }
    };
    static constexpr std::size_t kMostPlates = 4;

    Stage::Plan plan_;
    Stage stage_;
    std::optional<Scene> scene_;
    Shelf<Plate> plates_;
};

}  // namespace tavrin::mray
