// SPDX-License-Identifier: Apache-2.0
// One texture that holds many small pictures.
#pragma once

#include <optional>
#include <vector>

namespace tavrin {

// Pictures are put into it row by row and never taken out alone: when it is full, Clear makes room for all.
// The texture belongs to the context in which Bind was called last; ContextIsNew tells of another one, to
// which the pictures then go again.
class DeskAtlas {
  public:
    // Of so many pixels on a side, a power of two. Memory is taken when the first picture comes.
    explicit DeskAtlas(int size) : m_size(size) {}

    // Device pixels, the lowest row first.
    struct Place {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
    };
    int Size() const { return m_size; }

    // Room for a picture; nothing if none is left. The room is clear.
    std::optional<Place> Add(int width, int height);
    // The bytes R, G, B, A of the place's pixels in a row, to be written before the next Bind.
    unsigned char* Row(const Place& place, int row);
    void Clear();

    void ContextIsNew();
    // Makes it the current texture, with everything that was added.
    void Bind();

  private:
    static constexpr int kBytes = 4;  // of a pixel
    unsigned char* PixelAt(int x, int y) {
        return m_pixels.data() +
               (static_cast<size_t>(y) * static_cast<size_t>(m_size) + static_cast<size_t>(x)) * kBytes;
    }
    void MakeTexture();

    // Pictures of like height stand side by side.
    struct Shelf {
        int bottom = 0;
        int height = 0;
        int used = 0;  // of its width
    };

    int m_size;
    std::vector<unsigned char> m_pixels;
    std::vector<Shelf> m_shelves;
    int m_top = 0;            // of the highest shelf
    int m_changedBottom = 0;  // rows that the texture does not have yet, none if both are alike
    int m_changedTop = 0;
    unsigned m_texture = 0;  // 0 until the context's first use
};

}  // namespace tavrin
