// SPDX-License-Identifier: Apache-2.0
// What is drawn and what is drawn into, in the graphics library's memory.
#pragma once

#include "GlObject.h"
#include "Stage.h"

namespace tavrin::mray {

// The object.
class MeshOnCard {
  public:
    MeshOnCard(const Gl& gl, const Mesh& mesh);
    void draw() const;

  private:
    void attribute(GLuint index, GLint size, std::size_t offset) const;

    const Gl& gl_;
    GlVertexArray array_;
    GlBuffer vertices_, indices_;
    GLsizei count_;
};

// The surroundings, sharper and rougher.
class SurroundOnCard {
  public:
    SurroundOnCard(const Gl& gl, const Surround& surround);
    void use() const;

  private:
    const Gl& gl_;
    GlTexture texture_;
};

// Colour and depth to draw one tile into.
class Canvas {
  public:
    explicit Canvas(const Gl& gl);

    // Makes sure of a size at least.  Throws std::runtime_error where there is no
    // memory for it.
    void makeRoom(int width, int height);

    // Of the tile in the lower left corner: red, green, blue, alpha, bottom row first.
    void clear(int width, int height) const;
    void fetch(int width, int height, std::vector<float>& samples) const;

  private:
    void attach(const GlRenderbuffer& buffer, GLenum format, GLenum point) const;

    const Gl& gl_;
    GlFramebuffer frame_;
    GlRenderbuffer color_, depth_;
    int width_ = 0, height_ = 0;
};

// A stage and what of it lies in the graphics library's memory.
class Scene {
  public:
    // Waits for the stage's object and surroundings.
    Scene(const Gl& gl, const Stage& stage);

    [[nodiscard]] const Stage& stage() const { return stage_; }
    [[nodiscard]] const MeshOnCard& mesh() const { return mesh_; }
    [[nodiscard]] const SurroundOnCard& surround() const { return surround_; }

  private:
    const Stage& stage_;
    MeshOnCard mesh_;
    SurroundOnCard surround_;
};

}  // namespace tavrin::mray
