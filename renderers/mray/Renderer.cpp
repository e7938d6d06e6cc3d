// SPDX-License-Identifier: Apache-2.0
#include "Renderer.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>
#include <iterator>

#include "Bake.h"
#include "Camera.h"
#include "Film.h"
#include "GlObject.h"
#include "GroundLight.h"
#include "PngFile.h"
#include "Program.h"
#include "Surround.h"

namespace tavrin::mray {

namespace {

constexpr int kTileSamples = 90'000;  // so that a stop is heeded soon
constexpr int kTileSide = 1024;

std::string readShader(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file || !std::filesystem::is_regular_file(path)) {
        throw std::runtime_error("cannot read the shader " + path + "; check the file name");
    }
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (text.empty()) {
        throw std::runtime_error("the shader " + path + " is empty; generate it again");
    }
    return text;
}

// Better told before the work than after it.
void checkOutput(const std::string& path) {
    const std::filesystem::path parent = std::filesystem::path(path).parent_path();
    const std::string directory = parent.empty() ? "." : parent.string();
    if (access(directory.c_str(), W_OK | X_OK) != 0) {
        throw std::runtime_error("cannot write into " + directory + ": " + std::strerror(errno) +
                                 "; name another picture file");
    }
    if (std::filesystem::is_directory(path)) {
        throw std::runtime_error("cannot write " + path + ": it is a directory; name a picture file");
    }
}

// How much finer than for a small picture things must be.
float detailFor(const Options& options) {
    const auto small = static_cast<float>(std::min(options.width, options.height));
    return std::clamp(std::sqrt(small / 240), 1.0f, 4.0f);
}

// All of the scene that the graphics library has no part in.  Made by another
// thread while the drivers start and the shader is compiled.
class Stage {
  public:
    struct Look {
        Mesh mesh;
        Surround surround;
    };

    Stage(const Options& options, const Camera& camera)
        : camera_(camera),
          shape_(options.object),
          rig_(makeLightRig(options.light)),
          backdrop_(options.backdrop, rig_),
          detail_(detailFor(options)) {
        look_ = std::async(std::launch::async, [this] {
            Look look{shape_.mesh(detail_), Surround(backdrop_)};
            bakeVisibility(look.mesh, shape_, rig_);
            return look;
        });
        ground_ = std::async(std::launch::async, [this] {
            look_.wait();
            return GroundLight(shape_.mesh(0.6f * detail_), rig_, backdrop_.ambientUp(),
                               std::min(detail_, 2.5f));
        });
    }

    [[nodiscard]] const LightRig& rig() const { return rig_; }
    [[nodiscard]] const Look& look() const { return look_.get(); }

    // Ground and background behind an area, one colour per pixel.
    [[nodiscard]] std::future<std::vector<Vec3>> background(const Area& area) const {
        return std::async(std::launch::async, [this, area] {
            std::vector<Vec3> pixels;
            pixels.reserve(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height));
            for (int y = area.y; y < area.y + area.height; ++y) {
                for (int x = area.x; x < area.x + area.width; ++x) {
                    const auto middle = [](int i) { return static_cast<float>(i) + 0.5f; };
                    pixels.push_back(behind(camera_.direction(middle(x), middle(y))));
                }
            }
            return pixels;
        });
    }

  private:
    [[nodiscard]] Vec3 behind(Vec3 direction) const {
        const Vec3 far = backdrop_.plate(direction);
        if (direction.y > -0.02f) {
            return far;
        }
        const Vec3 p = camera_.eye() - direction * (camera_.eye().y / direction.y);
        const float fade = smoothstep(1.3f, 8.5f, length(Vec2{p.x, p.z}));
        return fade >= 1 ? far : mix(backdrop_.groundAlbedo() * ground_.get().at(p.x, p.z), far, fade);
    }

    const Camera& camera_;
    Shape shape_;
    LightRig rig_;
    Backdrop backdrop_;
    float detail_;
    std::shared_future<Look> look_;
    std::shared_future<GroundLight> ground_;
};

// The object in the graphics library's memory.
class MeshOnCard {
  public:
    MeshOnCard(const Gl& gl, const Mesh& mesh)
        : gl_(gl),
          array_(gl),
          vertices_(gl),
          indices_(gl),
          count_(static_cast<GLsizei>(mesh.indices.size())) {
        gl.BindVertexArray(array_.name());
        gl.BindBuffer(GL_ARRAY_BUFFER, vertices_.name());
        gl.BufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(mesh.vertices.size() * sizeof(Vertex)),
                      mesh.vertices.data(), GL_STATIC_DRAW);
        gl.BindBuffer(GL_ELEMENT_ARRAY_BUFFER, indices_.name());
        gl.BufferData(GL_ELEMENT_ARRAY_BUFFER,
                      static_cast<GLsizeiptr>(mesh.indices.size() * sizeof(std::uint32_t)),
                      mesh.indices.data(), GL_STATIC_DRAW);
        attribute(0, 3, offsetof(Vertex, position));
        attribute(1, 3, offsetof(Vertex, object));
        attribute(2, 3, offsetof(Vertex, normal));
        attribute(3, 3, offsetof(Vertex, tangent));
        attribute(4, 2, offsetof(Vertex, uv));
        attribute(5, 4, offsetof(Vertex, lit));
        attribute(6, 1, offsetof(Vertex, open));
    }
    void draw() const { gl_.DrawElements(GL_TRIANGLES, count_, GL_UNSIGNED_INT, nullptr); }

  private:
    void attribute(GLuint index, GLint size, std::size_t offset) const {
        gl_.EnableVertexAttribArray(index);
        gl_.VertexAttribPointer(index, size, GL_FLOAT, GL_FALSE, sizeof(Vertex),
                                reinterpret_cast<const void*>(offset));
    }

    const Gl& gl_;
    GlVertexArray array_;
    GlBuffer vertices_, indices_;
    GLsizei count_;
};

// Colour and depth to draw one tile into.
class Canvas {
  public:
    Canvas(const Gl& gl, int width, int height) : gl_(gl), frame_(gl), color_(gl), depth_(gl) {
        gl.BindFramebuffer(GL_FRAMEBUFFER, frame_.name());
        attach(color_, GL_RGBA32F, GL_COLOR_ATTACHMENT0, width, height);
        attach(depth_, GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT, width, height);
        if (gl.CheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
            throw std::runtime_error(
                "cannot draw: no memory for a tile of the picture; try a smaller --size");
        }
        gl.ClearColor(0, 0, 0, 0);
        gl.Enable(GL_DEPTH_TEST);
        gl.Enable(GL_CULL_FACE);
    }

  private:
    void attach(const GlRenderbuffer& buffer, GLenum format, GLenum point, int width, int height) const {
        gl_.BindRenderbuffer(GL_RENDERBUFFER, buffer.name());
        gl_.RenderbufferStorage(GL_RENDERBUFFER, format, width, height);
        gl_.FramebufferRenderbuffer(GL_FRAMEBUFFER, point, GL_RENDERBUFFER, buffer.name());
    }

    const Gl& gl_;
    GlFramebuffer frame_;
    GlRenderbuffer color_, depth_;
};

void uploadSurround(const Gl& gl, const GlTexture& texture, const Surround& surround) {
    gl.ActiveTexture(GL_TEXTURE0);
    gl.BindTexture(GL_TEXTURE_2D, texture.name());
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

void setUniforms(const Gl& gl, const Program& program, const Camera& camera, const LightRig& rig,
                 const Surround& surround) {
    std::vector<float> places;
    std::vector<float> colors;
    for (const Light& light : rig) {
        places.insert(places.end(), {light.place.x, light.place.y, light.place.z, light.near ? 1.0f : 0.0f});
        colors.insert(colors.end(), {light.color.x, light.color.y, light.color.z, light.angle});
    }
    const auto count = static_cast<GLsizei>(rig.size());
    const Vec3 eye = camera.eye();
    gl.Uniform1i(program.uniform("tvLights"), count);
    gl.Uniform4fv(program.uniform("tvLightPlace"), count, places.data());
    gl.Uniform4fv(program.uniform("tvLightColor"), count, colors.data());
    gl.Uniform3fv(program.uniform("tvSky"), 9, &surround.harmonics()[0].x);
    gl.Uniform3fv(program.uniform("tvEye"), 1, &eye.x);
    gl.Uniform1i(program.uniform("tvSurround"), 0);
}

std::vector<Area> makeTiles(int width, int height, Grid grid) {
    const int wide = std::min(width, kTileSide);
    const int tall = std::clamp(kTileSamples / (wide * grid.x * grid.y), 24, kTileSide);
    std::vector<Area> tiles;
    for (int y = 0; y < height; y += tall) {
        for (int x = 0; x < width; x += wide) {
            tiles.push_back({x, y, std::min(wide, width - x), std::min(tall, height - y)});
        }
    }
    return tiles;
}

Area withMargin(const Area& tile) {
    constexpr int m = Film::kMargin;
    return {tile.x - m, tile.y - m, tile.width + 2 * m, tile.height + 2 * m};
}

// Draws the object into one tile, margin included, and fetches the samples.
void drawTile(const Gl& gl, const Camera& camera, const Program& program, const MeshOnCard& mesh,
              const Area& area, Grid grid, std::vector<float>& samples) {
    const int wide = area.width * grid.x;
    const int tall = area.height * grid.y;
    gl.Viewport(0, 0, wide, tall);
    gl.Clear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    gl.UniformMatrix4fv(program.uniform("toClip"), 1, GL_FALSE, camera.toClip(area).data());
    mesh.draw();
    samples.resize(static_cast<std::size_t>(wide) * static_cast<std::size_t>(tall) * 4);
    gl.ReadPixels(0, 0, wide, tall, GL_RGBA, GL_FLOAT, samples.data());
    if (gl.GetError() != GL_NO_ERROR) {
        throw std::runtime_error("cannot draw: the graphics driver reports an error; try a smaller --size");
    }
}

// Draws and develops all tiles; the background of each is made meanwhile.
void drawTiles(const Gl& gl, const Stage& stage, const Camera& camera, const Program& program,
               const std::vector<Area>& tiles, Grid grid, Film& film, Report& report) {
    const Stage::Look& look = stage.look();
    report.mark("scene");
    const GlTexture surround(gl);
    const MeshOnCard mesh(gl, look.mesh);
    const Area largest = withMargin(tiles.front());
    const Canvas canvas(gl, largest.width * grid.x, largest.height * grid.y);
    uploadSurround(gl, surround, look.surround);
    program.use();
    setUniforms(gl, program, camera, stage.rig(), look.surround);
    report.mark("upload");
    std::vector<float> samples;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        report.checkStop();
        const Area area = withMargin(tiles[i]);
        std::future<std::vector<Vec3>> background = stage.background(area);
        drawTile(gl, camera, program, mesh, area, grid, samples);
        report.mark(i == 0 ? "first tile" : "more tiles");
        const std::vector<Vec3> behind = background.get();
        report.mark("background");
        film.develop(tiles[i], samples, behind);
        report.mark("film");
        report.progress(static_cast<int>(99 * (i + 1) / tiles.size()));
    }
}

// Drivers that draw in software spend most of a small picture's time on making
// the shader's code fast; that only pays for large ones.
void preferQuickCompile(const Options& options) {
    constexpr long kLarge = 3'000'000;
    if (long{options.width} * options.height * options.samples < kLarge) {
        setenv("GALLIVM_PERF", "nopt", 0);
    }
}

}  // namespace

void render(const Options& options, Report& report) {
    report.checkStop();
    report.progress(0);
    preferQuickCompile(options);
    const std::string source = readShader(options.shader);
    checkOutput(options.output);
    const Camera camera(options.width, options.height);
    const Stage stage(options, camera);
    const Grid grid = Grid::of(options.samples);
    Film film(options.width, options.height, grid, options.exposure);
    report.mark("start");
    const GlContext context;
    report.mark("context");
    const Program program(context.gl(), source, options.shader);
    report.mark("compile");
    drawTiles(context.gl(), stage, camera, program, makeTiles(options.width, options.height, grid), grid,
              film, report);
    report.checkStop();
    writePng(options.output, options.width, options.height, film.pixels());
    report.mark("png");
    report.progress(100);
    report.endProgress();
    if (film.strange() > 0) {
        std::fprintf(stderr,
                     "mray-render: %ld samples of the surface are not numbers; they are drawn black\n",
                     film.strange());
    }
}

}  // namespace tavrin::mray
