// SPDX-License-Identifier: Apache-2.0
// Draws the object with a program, tile by tile.
#pragma once

#include "Canvas.h"
#include "Film.h"
#include "Program.h"

namespace tavrin::mray {

// The tiles of a picture, in bands from the top: each of at most so many samples, if
// that leaves it its least number of rows, and of at most 1024 pixels a side.
std::vector<Area> makeTiles(int width, int height, Grid grid, long mostSamples, int leastRows);

// A tile and the pixels that its filter needs around it.
Area withMargin(const Area& tile);

class Painter {
  public:
    explicit Painter(const Gl& gl);

    // What draw() draws from now on.  All of it must outlive the drawing.
    void take(const Program& program, const Scene& scene, const Camera& camera);

    // Has the driver make the program's code, which many do only when they draw: draws what
    // is nowhere to be seen.
    void warmUp();

    // The numbers that the program has in its block of values (see Program.h);
    // those that are missing are 0.
    void setValues(const Program& program, std::vector<float> values) const;

    // Draws into an area and fetches its samples, grid.x by grid.y for each pixel:
    // red, green, blue, alpha, bottom row first.  Throws std::runtime_error.
    void draw(const Area& area, Grid grid, std::vector<float>& samples);

  private:
    const Gl& gl_;
    Canvas canvas_;
    GlBuffer values_;
    const Program* program_ = nullptr;
    const Scene* scene_ = nullptr;
    const Camera* camera_ = nullptr;
};

}  // namespace tavrin::mray
