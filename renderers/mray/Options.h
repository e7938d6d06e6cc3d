// SPDX-License-Identifier: Apache-2.0
// The command line of mray-render.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "Backdrop.h"
#include "Shape.h"

namespace tavrin::mray {

struct Options {
    std::string shader;
    std::string output;
    std::string part;    // the output while it grows; empty: a name of the renderer's
    std::string values;  // the file of the shader's block of values; empty: none
    std::string coarse;  // a first, coarse picture; empty: none
    int width = 320;
    int height = 240;
    int samples = 4;
    ObjectKind object = ObjectKind::Sphere;
    BackdropKind backdrop = BackdropKind::Studio;
    LightKind light = LightKind::Key;
    float exposure = 1;
    bool quiet = false;
    bool timing = false;
    bool live = false;
    bool help = false;
    bool version = false;
};

// A command line that cannot be understood; what() says how to do it right.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

Options parseOptions(const std::vector<std::string>& arguments);

std::string usage();

}  // namespace tavrin::mray
