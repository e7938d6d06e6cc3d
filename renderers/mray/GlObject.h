// SPDX-License-Identifier: Apache-2.0
// Owners of graphics objects.
#pragma once

#include <utility>

#include "GlContext.h"

namespace tavrin::mray {

// An object that is made with glGen... and deleted with glDelete...
template <auto Generate, auto Delete>
class GlObject {
  public:
    explicit GlObject(const Gl& gl) : gl_(&gl) { (gl.*Generate)(1, &name_); }
    ~GlObject() { (gl_->*Delete)(1, &name_); }
    GlObject(const GlObject&) = delete;
    GlObject& operator=(const GlObject&) = delete;
    [[nodiscard]] GLuint name() const { return name_; }

  private:
    const Gl* gl_;
    GLuint name_ = 0;
};

using GlBuffer = GlObject<&Gl::GenBuffers, &Gl::DeleteBuffers>;
using GlFramebuffer = GlObject<&Gl::GenFramebuffers, &Gl::DeleteFramebuffers>;
using GlRenderbuffer = GlObject<&Gl::GenRenderbuffers, &Gl::DeleteRenderbuffers>;
using GlTexture = GlObject<&Gl::GenTextures, &Gl::DeleteTextures>;
using GlVertexArray = GlObject<&Gl::GenVertexArrays, &Gl::DeleteVertexArrays>;

}  // namespace tavrin::mray
