// SPDX-License-Identifier: Apache-2.0
#include "Painter.h"

namespace tavrin::mray {

namespace {

constexpr int kTileSide = 1024;

void setScene(const Gl& gl, const Program& program, const Camera& camera, const Stage& stage) {
    std::vector<float> places;
    std::vector<float> colors;
    for (const Light& light : stage.rig()) {
        places.insert(places.end(), {light.place.x, light.place.y, light.place.z, light.near ? 1.0f : 0.0f});
        colors.insert(colors.end(), {light.color.x, light.color.y, light.color.z, light.angle});
    }
    const auto count = static_cast<GLsizei>(stage.rig().size());
    const Vec3 eye = camera.eye();
    gl.Uniform1i(program.uniform("tvLights"), count);
    gl.Uniform4fv(program.uniform("tvLightPlace"), count, places.data());
    gl.Uniform4fv(program.uniform("tvLightColor"), count, colors.data());
    gl.Uniform3fv(program.uniform("tvSky"), 9, &stage.look().surround.harmonics()[0].x);
    gl.Uniform3fv(program.uniform("tvEye"), 1, &eye.x);
    gl.Uniform1i(program.uniform("tvSurround"), 0);
}

}  // namespace

std::vector<Area> makeTiles(int width, int height, Grid grid, long mostSamples, int leastRows) {
    const int wide = std::min(width, kTileSide);
    const long rows =
        std::clamp(mostSamples / (long{wide} * grid.x * grid.y), long{leastRows}, long{kTileSide});
    // Shaders compare neighbours two by two: these are to be the same ones in whatever tiles.
    const int tall = static_cast<int>(rows + rows % 2);
    std::vector<Area> tiles;
    for (int y = 0; y < height; y += tall) {
        for (int x = 0; x < width; x += wide) {
            tiles.push_back({x, y, std::min(wide, width - x), std::min(tall, height - y)});
        }
    }
    return tiles;
}

Area withMargin(const Area& tile) {
    constexpr int m = Film::kMargin;
    return {tile.x - m, tile.y - m, tile.width + 2 * m, tile.height + 2 * m};
}

Painter::Painter(const Gl& gl) : gl_(gl), canvas_(gl), values_(gl) {}

void Painter::take(const Program& program, const Scene& scene, const Camera& camera) {
    program_ = &program;
    scene_ = &scene;
    camera_ = &camera;
    program.use();
    scene.surround().use();
    setScene(gl_, program, camera, scene.stage());
}

void Painter::warmUp() {
    constexpr std::array<float, 16> kOutside{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 2, 1};
    canvas_.makeRoom(1, 1);
    canvas_.clear(1, 1);
    program_->setClip(kOutside);
    scene_->mesh().draw();
}

void Painter::setValues(const Program& program, std::vector<float> values) const {
    if (program.valueBytes() == 0) {
        return;
    }
    values.resize(program.valueBytes() / sizeof(float));
    gl_.BindBufferBase(GL_UNIFORM_BUFFER, 0, values_.name());
    gl_.BufferData(GL_UNIFORM_BUFFER, static_cast<GLsizeiptr>(values.size() * sizeof(float)), values.data(),
                   GL_STREAM_DRAW);
}

void Painter::draw(const Area& area, Grid grid, std::vector<float>& samples) {
    const int wide = area.width * grid.x;
    const int tall = area.height * grid.y;
    canvas_.makeRoom(wide, tall);
    canvas_.clear(wide, tall);
    program_->setClip(camera_->toClip(area));
    scene_->mesh().draw();
    canvas_.fetch(wide, tall, samples);
}

}  // namespace tavrin::mray
