// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/WheelPainter.h"

#include <GL/gl.h>
#include <GL/glu.h>

#include <cmath>

namespace tavrin {

namespace {

// Of a marker, in shares of its scale.
constexpr int kSlices = 32;
struct Disk {
    double inner, outer;
    float grey;
};
constexpr Disk kMarkerDisks[] = {{0.02, 0.07, 0.3F}, {0.03, 0.06, 0.7F}, {0.04, 0.05, 1.0F}};

constexpr float kOutlineGrey = 0.4F;
constexpr float kOutlineWidth = 3;
constexpr float kDimming = 0.6F;

GLsizei DevicePixels(const ColorWheel& wheel, double pixelRatio) {
    return static_cast<GLsizei>(std::lround(wheel.Size() * pixelRatio));
}

void SetColor(const Color& color) { glColor3f(color.r, color.g, color.b); }
void SetGrey(float grey) { glColor3f(grey, grey, grey); }
void Vertex(WheelPoint at) { glVertex2d(at.x, at.y); }

void DrawTriangle(const ColorWheel& wheel) {
    glBegin(GL_TRIANGLES);
    SetColor(wheel.HueColor());
    Vertex(wheel.PureCorner());
    SetGrey(0);
    Vertex(wheel.BlackCorner());
    SetGrey(1);
    Vertex(wheel.WhiteCorner());
    glEnd();
}

void DrawOutline(const ColorWheel& wheel, float width, float grey) {
    const WheelPoint pure = wheel.PureCorner();
    const WheelPoint white = wheel.WhiteCorner();
    const WheelPoint black = wheel.BlackCorner();
    glLineWidth(width);
    SetGrey(grey);
    glBegin(GL_LINE_LOOP);
    Vertex({pure.x + 1, pure.y});
    Vertex({white.x - 1, white.y + 1});
    Vertex({black.x - 1, black.y + 1});
    glEnd();
}

void DrawMarker(WheelPoint at, double scale) {
    GLUquadric* quadric = gluNewQuadric();
    gluQuadricDrawStyle(quadric, GLU_FILL);
    glPushMatrix();
    glTranslated(at.x, at.y, 0);
    glScaled(scale, scale, 1);
    for (const Disk& disk : kMarkerDisks) {
        SetGrey(disk.grey);
        gluDisk(quadric, disk.inner, disk.outer, kSlices, 1);
    }
    glPopMatrix();
    gluDeleteQuadric(quadric);
}

void Dim(const ColorWheel& wheel, const Color& ground) {
    glColor4f(ground.r, ground.g, ground.b, kDimming);
    glRectd(0, 0, wheel.Size(), wheel.Size());
}

}  // namespace

void WheelPainter::Paint(const ColorWheel& wheel, const WheelLook& look) {
    const auto ratio = static_cast<float>(look.pixelRatio);
    SetUp(wheel, look);
    DrawRing(wheel, look.pixelRatio);
    DrawTriangle(wheel);
    DrawOutline(wheel, kOutlineWidth * ratio, kOutlineGrey);
    DrawOutline(wheel, ratio, 1);
    DrawMarker(wheel.TriangleMarker(), wheel.MarkerScale());
    DrawMarker(wheel.RingMarker(), wheel.MarkerScale());
    if (look.isDimmed) Dim(wheel, look.ground);
    glFinish();
}

// The ground is opaque, and what is blended over it leaves that so: through anything else the windows behind
// would shine.
void WheelPainter::SetUp(const ColorWheel& wheel, const WheelLook& look) const {
    const GLsizei side = DevicePixels(wheel, look.pixelRatio);
    glViewport(0, 0, side, side);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, wheel.Size(), wheel.Size(), 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_DITHER);
    glShadeModel(GL_SMOOTH);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(look.ground.r, look.ground.g, look.ground.b, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_FALSE);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

// The corner where the picture begins is on the edge of what is seen, where a context may take a raster
// position for one outside and draw nothing. So the raster goes to the middle and from there by device
// pixels, not quite to the edge of the first one, which rounding could make the one before.
void WheelPainter::DrawRing(const ColorWheel& wheel, double pixelRatio) {
    static constexpr GLubyte kNothing[4] = {};
    constexpr float kInFirstPixel = 0.25F;
    const GLsizei side = DevicePixels(wheel, pixelRatio);
    if (!m_ring || m_ring->Width() != side) m_ring.emplace(side);
    const WheelPoint middle = wheel.Centre();
    const float toCorner = kInFirstPixel - 0.5F * static_cast<float>(side);
    glRasterPos2d(middle.x, middle.y);
    glBitmap(1, 1, 0, 0, toCorner, toCorner, kNothing);
    glPixelZoom(1, 1);
    glDrawPixels(m_ring->Width(), m_ring->Height(), GL_RGBA, GL_UNSIGNED_BYTE, m_ring->Pixels());
}

}  // namespace tavrin
