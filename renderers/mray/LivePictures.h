// SPDX-License-Identifier: Apache-2.0
// Pictures for who waits for them: drawn coarse and then fine, with all kept that a
// later one may have a use for.
#pragma once

#include <chrono>

#include "Coarse.h"
#include "LiveScene.h"
#include "Painter.h"
#include "Report.h"

namespace tavrin::mray {

// What becomes of a request while it is drawn.
class LiveListener {
  public:
    virtual ~LiveListener() = default;
    // The shader is compiled, or was already.
    virtual void onProgram(bool isNew) = 0;
    // The coarse picture stands in its file; several may come, each better.
    virtual void onCoarse() = 0;
    // The work goes on: called after each step of it, and now and then while the driver
    // compiles, by another thread.
    virtual void onStep() = 0;
    // Whether the picture is wanted no more, or will not be within that time.
    virtual bool isOutdated(std::chrono::milliseconds within) = 0;
};

class LivePictures {
  public:
    explicit LivePictures(const Gl& gl);

    // Writes the picture that the options ask for, and before it a coarse one where it
    // takes long.  False: it became outdated.  Once the shader is compiled, the first
    // picture comes in any case, so that who changes his mind all the time sees some.
    // Throws ShaderError, Stopped or std::runtime_error.
    bool draw(const Options& options, LiveListener& listener, Report& report);

    // Samples of the last picture that were no numbers.
    [[nodiscard]] long strange() const { return strange_; }

  private:
    struct LiveProgram {
        std::string source;
        Program program;
        double pace;  // microseconds a sample, of itself or of the one before
        bool isMeasured = false;
        LiveProgram(const Gl& gl, const VertexStage& vertices, const std::string& text,
                    const std::string& file, double guess)
            : source(text), program(gl, vertices, text, file, Linking::Apart), pace(guess) {}
        [[nodiscard]] const std::string& key() const { return source; }
    };
    // A picture underway.
    struct Work {
        const Options& options;
        LiveListener& listener;
        Report& report;
        LiveScene& scene;
        LiveProgram& program;
        std::vector<std::uint8_t> shown{};  // the coarse picture, as far as it is not fine yet
        double time = 0;                    // microseconds of drawing, of coarse or fine
        double count = 0;                   // samples drawn in it
    };

    LiveProgram& compiled(const Options& options, LiveScene& scene, LiveListener& listener, Report& report);
    void drawCoarse(Work& work, Fineness fineness);
    bool drawFine(Work& work);
    void learnPace(Work& work);
    void drawTile(Work& work, const Camera& camera, const Area& tile, Grid grid, Film& film);
    void showMore(Work& work, const Film& film, int rows);

    const Gl& gl_;
    VertexStage vertices_;
    Painter painter_;
    Shelf<LiveScene> scenes_;
    Shelf<LiveProgram> programs_;
    std::vector<float> samples_;
    double pace_;
    long strange_ = 0;
    std::chrono::steady_clock::time_point begun_{};  // the request before
};

}  // namespace tavrin::mray
