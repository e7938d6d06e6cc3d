// SPDX-License-Identifier: Apache-2.0
#include "ui/desk/DeskAtlas.h"

#include <GL/gl.h>

#include <algorithm>

namespace tavrin {

namespace {

// A shelf takes pictures that leave at most a third of its height empty.
bool Fits(int height, int shelfHeight) { return height <= shelfHeight && shelfHeight * 2 <= height * 3 + 4; }

}  // namespace

std::optional<DeskAtlas::Place> DeskAtlas::Add(int width, int height) {
    if (width > m_size || height > m_size) return std::nullopt;
    if (m_pixels.empty()) m_pixels.resize(static_cast<size_t>(m_size) * static_cast<size_t>(m_size) * kBytes);
    auto shelf = std::find_if(m_shelves.begin(), m_shelves.end(), [&](const Shelf& candidate) {
        return Fits(height, candidate.height) && candidate.used + width <= m_size;
    });
    if (shelf == m_shelves.end()) {
        if (m_top + height > m_size) return std::nullopt;
        shelf = m_shelves.insert(shelf, {m_top, height, 0});
        m_top += height;
    }
    const Place place{shelf->used, shelf->bottom, width, height};
    shelf->used += width;
    m_changedBottom = m_changedTop == 0 ? place.y : std::min(m_changedBottom, place.y);
    m_changedTop = std::max(m_changedTop, place.y + height);
    return place;
}

unsigned char* DeskAtlas::Row(const Place& place, int row) { return PixelAt(place.x, place.y + row); }

void DeskAtlas::Clear() {
    std::fill_n(m_pixels.begin(), PixelAt(0, m_top) - m_pixels.data(), 0);
    m_shelves.clear();
    m_top = 0;
}

void DeskAtlas::ContextIsNew() {
    m_texture = 0;
    m_changedBottom = 0;
    m_changedTop = m_top;
}

void DeskAtlas::MakeTexture() {
    glGenTextures(1, &m_texture);
    glBindTexture(GL_TEXTURE_2D, m_texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, m_size, m_size, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
}

void DeskAtlas::Bind() {
    if (m_texture == 0) {
        MakeTexture();
    } else {
        glBindTexture(GL_TEXTURE_2D, m_texture);
    }
    if (m_changedTop <= m_changedBottom) return;
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, m_changedBottom, m_size, m_changedTop - m_changedBottom, GL_RGBA,
                    GL_UNSIGNED_BYTE, PixelAt(0, m_changedBottom));
    m_changedBottom = 0;
    m_changedTop = 0;
}

}  // namespace tavrin
