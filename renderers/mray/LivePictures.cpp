// SPDX-License-Identifier: Apache-2.0
#include "LivePictures.h"

#include <chrono>
#include <utility>

#include "Heartbeat.h"
#include "InputFiles.h"
#include "PngFile.h"

namespace tavrin::mray {

namespace {

constexpr std::size_t kMostScenes = 4;
constexpr std::size_t kMostPrograms = 16;
constexpr double kUsualPace = 0.4;  // microseconds a sample, before any is measured
constexpr double kCaution = 3;
// A newer request is looked for after each tile.
constexpr double kTileTime = 12'000;  // microseconds
constexpr long kFewestSamples = 8'000;
constexpr long kMostSamples = 90'000;
constexpr int kTileRows = 8;
// A large picture is shown again and again while it becomes fine.
constexpr double kShowAgain = 700'000;  // microseconds
constexpr double kWritingShare = 10;    // and not more than this part of the time goes to that

constexpr std::chrono::milliseconds kBeat{500};
// Requests that come so fast are those of a hand that moves: what is fine then waits a while for the next
// one, and leaves the machine to the hand.
constexpr std::chrono::milliseconds kBusy{150};
constexpr std::chrono::milliseconds kRest{50};

using Clock = std::chrono::steady_clock;

double microseconds(Clock::duration time) { return std::chrono::duration<double, std::micro>(time).count(); }

}  // namespace

LivePictures::LivePictures(const Gl& gl)
    : gl_(gl),
      vertices_(gl),
      painter_(gl),
      scenes_(kMostScenes),
      programs_(kMostPrograms),
      pace_(kUsualPace) {}

bool LivePictures::draw(const Options& options, LiveListener& listener, Report& report) {
    report.checkStop();
    const Clock::time_point now = Clock::now();
    const bool isHandBusy = now - std::exchange(begun_, now) < kBusy;
    strange_ = 0;
    const std::vector<float> values =
        options.values.empty() ? std::vector<float>() : readValues(options.values);
    checkOutput(options.output);
    const Stage::Plan plan = Stage::Plan::of(options);
    LiveScene& scene = scenes_.find(plan, [&plan](auto& all) { all.emplace_front(plan); }).first;
    report.mark("start");
    Work work{options, listener, report, scene, compiled(options, scene, listener, report)};
    painter_.setValues(work.program.program, values);
    // How fast a new program is, nobody knows.
    const double pace = work.program.pace * (work.program.isMeasured ? 1 : kCaution);
    const Fineness first = firstFineness(options, pace);
    if (!options.coarse.empty() && first != Fineness{1, options.samples}) {
        drawCoarse(work, first);
        if (isHandBusy && listener.isOutdated(kRest)) {
            return false;
        }
    }
    return drawFine(work);
}

LivePictures::LiveProgram& LivePictures::compiled(const Options& options, LiveScene& scene,
                                                  LiveListener& listener, Report& report) {
    const Heartbeat heartbeat(kBeat, [&listener] { listener.onStep(); });
    const std::string source = readShader(options.shader);
    const auto make = [&](auto& all) { all.emplace_front(gl_, vertices_, source, options.shader, pace_); };
    const auto [program, isNew] = programs_.find(source, make);
    report.mark("compile");
    const Scene& drawn = scene.scene(gl_);
    report.mark("scene");
    if (isNew) {
        const Camera camera(options.width, options.height);
        painter_.take(program.program, drawn, camera);
        painter_.warmUp();
        report.mark("code");
    }
    listener.onProgram(isNew);
    return program;
}

void LivePictures::drawCoarse(Work& work, Fineness fineness) {
    const Options& options = work.options;
    const int width = shrunk(options.width, fineness.shrink);
    const int height = shrunk(options.height, fineness.shrink);
    const Grid grid = Grid::of(fineness.samples);
    const Camera camera(width, height);
    Film film(width, height, grid, options.exposure);
    painter_.take(work.program.program, work.scene.scene(gl_), camera);
    for (const Area& tile : makeTiles(width, height, grid, kMostSamples, kTileRows)) {
        work.report.checkStop();
        drawTile(work, camera, tile, grid, film);
    }
    learnPace(work);
    work.shown = enlarged(film.pixels(), width, height, options.width, options.height);
    writePng(options.coarse, options.width, options.height, work.shown, PngEffort::Quick);
    work.report.mark("png");
    work.listener.onCoarse();
}

bool LivePictures::drawFine(Work& work) {
    const Options& options = work.options;
    const Grid grid = Grid::of(options.samples);
    const Camera camera(options.width, options.height);
    Film film(options.width, options.height, grid, options.exposure);
    painter_.take(work.program.program, work.scene.scene(gl_), camera);
    const auto samples = static_cast<long>(kTileTime / work.program.pace);
    Clock::time_point shown = Clock::now();
    double wait = kShowAgain;
    for (const Area& tile : makeTiles(options.width, options.height, grid,
                                      std::clamp(samples, kFewestSamples, kMostSamples), kTileRows)) {
        work.report.checkStop();
        if (!work.shown.empty() && work.listener.isOutdated(std::chrono::milliseconds(0))) {
            return false;
        }
        drawTile(work, camera, tile, grid, film);
        const int rows = tile.y + tile.height;
        const bool isBand = tile.x + tile.width == options.width && rows < options.height;
        const Clock::time_point now = Clock::now();
        if (isBand && !work.shown.empty() && microseconds(now - shown) > wait) {
            showMore(work, film, rows);
            shown = Clock::now();
            wait = std::max(kShowAgain, kWritingShare * microseconds(shown - now));
        }
    }
    learnPace(work);
    strange_ = film.strange();
    writePng(options.output, options.width, options.height, film.pixels(), PngEffort::Quick);
    work.report.mark("png");
    return true;
}

void LivePictures::drawTile(Work& work, const Camera& camera, const Area& tile, Grid grid, Film& film) {
    const Area area = withMargin(tile);
    const Clock::time_point begin = Clock::now();
    painter_.draw(area, grid, samples_);
    work.report.mark("draw");
    work.time += microseconds(Clock::now() - begin);
    work.count += double{1} * area.width * area.height * grid.x * grid.y;
    const std::vector<Vec3> behind = work.scene.background(camera, film.width(), film.height(), area);
    work.report.mark("background");
    film.develop(tile, samples_, behind);
    work.report.mark("film");
    work.listener.onStep();
}

// By a whole picture: some of its tiles show nothing but the background.
void LivePictures::learnPace(Work& work) {
    pace_ = std::max(work.time / work.count, 0.001);
    work.program.pace = pace_;
    work.program.isMeasured = true;
    work.time = work.count = 0;
}

// The rows that are fine, in the coarse picture.
void LivePictures::showMore(Work& work, const Film& film, int rows) {
    const Options& options = work.options;
    const auto fine = static_cast<long>(rows) * options.width * 3;
    std::copy_n(film.pixels().begin(), fine, work.shown.begin());
    writePng(options.coarse, options.width, options.height, work.shown, PngEffort::Quick);
    work.report.mark("png");
    work.listener.onCoarse();
}

}  // namespace tavrin::mray
