// SPDX-License-Identifier: Apache-2.0
// Makes a picture: prepares the scene, draws the object tile by tile and puts it
// over ground and background.
#pragma once

#include "Options.h"
#include "Report.h"

namespace tavrin::mray {

// Throws ShaderError, Stopped or std::runtime_error.
void render(const Options& options, Report& report);

}  // namespace tavrin::mray
