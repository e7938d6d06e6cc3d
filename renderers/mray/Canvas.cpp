// SPDX-License-Identifier: Apache-2.0
#include "Canvas.h"

#include <cstddef>
#include <stdexcept>

namespace tavrin::mray {

MeshOnCard::MeshOnCard(const Gl& gl, const Mesh& mesh)
    : gl_(gl), array_(gl), vertices_(gl), indices_(gl), count_(static_cast<GLsizei>(mesh.indices.size())) {
    gl.BindVertexArray(array_.name());
    gl.BindBuffer(GL_ARRAY_BUFFER, vertices_.name());
    gl.BufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(mesh.vertices.size() * sizeof(Vertex)),
                  mesh.vertices.data(), GL_STATIC_DRAW);
    gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_.name());
    gl.BufferData(GL_ELEMENT_ARRAY_BUFFER,
                  static_cast<GLsizeiptr>(mesh.indices.size() * sizeof(std::uint32_t)), mesh.indices.data(),
                  GL_STATIC_DRAW);
    attribute(0, 3, offsetof(Vertex, position));
    attribute(1, 3, offsetof(Vertex, object));
    attribute(2, 3, offsetof(Vertex, normal));
    attribute(3, 3, offsetof(Vertex, tangent));
    attribute(4, 2, offsetof(Vertex, uv));
    attribute(5, 4, offsetof(Vertex, lit));
    attribute(6, 1, offsetof(Vertex, open));
}

void MeshOnCard::draw() const {
    gl_.BindVertexArray(array_.name());
    gl_.DrawElements(GL_TRIANGLES, count_, GL_UNSIGNED_INT, nullptr);
}

void MeshOnCard::attribute(GLuint index, GLint size, std::size_t offset) const {
    gl_.EnableVertexAttribArray(index);
    gl_.VertexAttribPointer(index, size, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                            reinterpret_cast<const void*>(offset));
}

SurroundOnCard::SurroundOnCard(const Gl& gl, const Surround& surround) : gl_(gl), texture_(gl) {
    use();
    for (int i = 0; i < Surround::kLevels; ++i) {
        const GLsizei size = Surround::kSize >> i;
        gl.TexImage2D(GL_TEXTURE_2D, i, GL_RGB32F, size, size, 0, GL_RGB, GL_FLOAT, surround.level(i).data());
    }
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, Surround::kLevels - 1);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    gl.TexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void SurroundOnCard::use() const {
    gl_.ActiveTexture(GL_TEXTURE0);
    gl_.BindTexture(GL_TEXTURE_2D, texture_.name());
}

Canvas::Canvas(const Gl& gl) : gl_(gl), frame_(gl), color_(gl), depth_(gl) {
    gl.BindFramebuffer(GL_FRAMEBUFFER, frame_.name());
    gl.ClearColor(0, 0, 0, 0);
    gl.Enable(GL_DEPTH_TEST);
    gl.Enable(GL_CULL_FACE);
}

void Canvas::makeRoom(int width, int height) {
    if (width <= width_ && height <= height_) {
        return;
    }
    width_ = std::max(width, width_);
    height_ = std::max(height, height_);
    attach(color_, GL_RGBA32F, GL_COLOR_ATTACHMENT0);
    attach(depth_, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT);
    if (gl_.CheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        width_ = height_ = 0;
        throw std::runtime_error("cannot draw: no memory for a tile of the picture; try a smaller --size");
    }
}

void Canvas::attach(const GlRenderbuffer& buffer, GLenum format, GLenum point) const {
    gl_.BindRenderbuffer(GL_RENDERBUFFER, buffer.name());
    gl_.RenderbufferStorage(GL_RENDERBUFFER, format, width_, height_);
    gl_.FramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, buffer.name());
}

void Canvas::clear(int width, int height) const {
    gl_.Viewport(0, 0, width, height);
    gl_.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void Canvas::fetch(int width, int height, std::vector<float>& samples) const {
    samples.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    gl_.ReadPixels(0, 0, width, height, GL_RGBA, GL_FLOAT, samples.data());
    if (gl_.GetError() != GL_NO_ERROR) {
        throw std::runtime_error("cannot draw: the graphics driver reports an error; try a smaller --size");
    }
}

Scene::Scene(const Gl& gl, const Stage& stage)
    : stage_(stage), mesh_(gl, stage.look().mesh), surround_(gl, stage.look().surround) {}

}  // namespace tavrin::mray
