// SPDX-License-Identifier: Apache-2.0
// What each vertex sees of the lights and of its surroundings, found by walking
// through the signed distance of the shape.
#pragma once

#include "LightRig.h"
#include "Shape.h"

namespace tavrin::mray {

void bakeVisibility(Mesh& mesh, const Shape& shape, const LightRig& rig);

}  // namespace tavrin::mray
