// SPDX-License-Identifier: Apache-2.0
#include "Mesh.h"

namespace tavrin::mray {

void Mesh::addPatch(const std::vector<float>& us, const std::vector<float>& vs, const Surface& surface) {
    const auto first = static_cast<std::uint32_t>(vertices.size());
    const auto columns = static_cast<std::uint32_t>(us.size());
    const auto rows = static_cast<std::uint32_t>(vs.size());
    for (const float v : vs) {
        for (const float u : us) {
            vertices.push_back(surface(u, v));
        }
    }
    for (std::uint32_t y = 0; y + 1 < rows; ++y) {
        for (std::uint32_t x = 0; x + 1 < columns; ++x) {
            const std::uint32_t a = first + y * columns + x;
            const std::uint32_t b = a + columns;
            indices.insert(indices.end(), {a, a + 1, b + 1, a, b + 1, b});
        }
    }
}

std::vector<float> evenSteps(int count) {
    std::vector<float> steps;
    for (int i = 0; i <= count; ++i) {
        steps.push_back(static_cast<float>(i) / static_cast<float>(count));
    }
    return steps;
}

}  // namespace tavrin::mray
