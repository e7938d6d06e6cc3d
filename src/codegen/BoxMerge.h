// SPDX-License-Identifier: Apache-2.0
// Merges boxes into a working copy, one after the other.
#pragma once

#include <string>
#include <vector>

#include "codegen/CodeGen.h"

namespace tavrin {

// Made for one generation. The boxes are only read, and none of their text is copied on the way.
class BoxMerge {
  public:
    // `shader` is the working copy; it outlives this.
    explicit BoxMerge(CCodeGen& shader) : m_shader(shader) {}
    BoxMerge(const BoxMerge&) = delete;
    BoxMerge& operator=(const BoxMerge&) = delete;

    CCodeGen& Shader() { return m_shader; }

    // The line that declares an output, which is the Nth of its box, counted from 1.
    struct Declaration {
        std::string text;
        size_t output = 0;
    };

    // Starts with the next box of the order: an expander without variables, for those of this one. It is good
    // until the next start, and `box` is to stay for as long.
    CMex& Start(const CCodeGen& box);

    // After a start: does what ExpandAll("all") with those variables on a copy of the box, that also has the
    // lines `declarations` at the end of "main-header", and Merge of the copy would do.
    void Merge(const std::vector<Declaration>& declarations);

    // Where a line comes from that the generation itself writes for the box.
    LineOrigin Generated(size_t line) const { return {m_place, LineSource(LineSource::kGenerated, line)}; }

  private:
    CCodeGen& m_shader;
    const CCodeGen* m_box = nullptr;
    uint32_t m_place = 0;  // of the box in the order of generation
    CMex m_mex;            // kept from box to box for its memory
};

}  // namespace tavrin
