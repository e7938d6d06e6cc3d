// SPDX-License-Identifier: Apache-2.0
#include "Renderer.h"

#include <cstdio>
#include <cstdlib>
#include <future>

#include "InputFiles.h"
#include "Painter.h"
#include "PngFile.h"

namespace tavrin::mray {

namespace {

constexpr long kTileSamples = 90'000;  // so that a stop is heeded soon
constexpr int kTileRows = 24;

// Drivers that draw in software spend most of a small picture's time on making
// the shader's code fast; that only pays for large ones.
void preferQuickCompile(const Options& options) {
    constexpr long kLarge = 3'000'000;
    if (long{options.width} * options.height * options.samples < kLarge) {
        setenv("GALLIVM_PERF", "nopt", 0);
    }
}

// Draws and develops all tiles; the background of each is made meanwhile.  The
// picture grows by each band that is done.
void drawTiles(Painter& painter, const Stage& stage, const Camera& camera, const Options& options, Film& film,
               PngFile& picture, Report& report) {
    const Grid grid = Grid::of(options.samples);
    const std::vector<Area> tiles = makeTiles(options.width, options.height, grid, kTileSamples, kTileRows);
    std::vector<float> samples;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        report.checkStop();
        const Area area = withMargin(tiles[i]);
        auto background = std::async(std::launch::async,
                                     [&stage, &camera, area] { return stage.background(camera, area); });
        painter.draw(area, grid, samples);
        report.mark(i == 0 ? "first tile" : "more tiles");
        const std::vector<Vec3> behind = background.get();
        report.mark("background");
        film.develop(tiles[i], samples, behind);
        report.mark("film");
        if (tiles[i].x + tiles[i].width == options.width) {
            picture.addRows(film.row(tiles[i].y), tiles[i].height);
            report.mark("png");
        }
        report.progress(static_cast<int>(99 * (i + 1) / tiles.size()));
    }
}

}  // namespace

void render(const Options& options, Report& report) {
    report.checkStop();
    report.progress(0);
    preferQuickCompile(options);
    const std::string source = readShader(options.shader);
    const std::vector<float> values =
        options.values.empty() ? std::vector<float>() : readValues(options.values);
    checkOutput(options.output);
    const Camera camera(options.width, options.height);
    const Stage stage(Stage::Plan::of(options));
    Film film(options.width, options.height, Grid::of(options.samples), options.exposure);
    report.mark("start");
    const GlContext context;
    const Gl& gl = context.gl();
    report.mark("context");
    const VertexStage vertices(gl);
    const Program program(gl, vertices, source, options.shader, Linking::Together);
    report.mark("compile");
    stage.wait();
    report.mark("scene");
    const Scene scene(gl, stage);
    Painter painter(gl);
    painter.take(program, scene, camera);
    painter.setValues(program, values);
    report.mark("upload");
    PngFile picture(options.output, options.part.empty() ? partName(options.output) : options.part,
                    options.width, options.height, PngEffort::Small);
    drawTiles(painter, stage, camera, options, film, picture, report);
    report.checkStop();
    picture.finish();
    report.mark("png");
    report.progress(100);
    report.endProgress();
    if (film.strange() > 0) {
        std::fprintf(stderr,
                     "mray-render: %ld samples of the surface are not numbers; they are drawn black\n",
                     film.strange());
    }
}

}  // namespace tavrin::mray
