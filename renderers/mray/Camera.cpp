// SPDX-License-Identifier: Apache-2.0
#include "Camera.h"

namespace tavrin::mray {

Camera::Camera(int width, int height)
    : width_(static_cast<float>(width)), height_(static_cast<float>(height)) {
    constexpr Vec3 kTarget{0, 0.93f, 0};
    constexpr float kDistance = 6.6f;
    constexpr float kPitch = 0.19f;
    constexpr float kTan = 0.222f;  // over the smaller side
    const float small = std::min(width_, height_);
    tanX_ = kTan * width_ / small;
    tanY_ = kTan * height_ / small;
    ahead_ = {0, -std::sin(kPitch), -std::cos(kPitch)};
    eye_ = kTarget - ahead_ * kDistance;
    right_ = normalized(cross(ahead_, {0, 1, 0}));
    up_ = cross(right_, ahead_);
}

Vec3 Camera::direction(float x, float y) const {
    const float sx = (2 * x / width_ - 1) * tanX_;
    const float sy = (1 - 2 * y / height_) * tanY_;
    return normalized(ahead_ + right_ * sx + up_ * sy);
}

std::array<float, 16> Camera::toClip(const Area& area) const {
    constexpr float kNear = 0.5f;
    constexpr float kFar = 50.0f;
    // The area's own scale and shift of the full picture's clip space.
    const float scaleX = width_ / static_cast<float>(area.width);
    const float scaleY = height_ / static_cast<float>(area.height);
    const float middleX =
        (static_cast<float>(area.x) + 0.5f * static_cast<float>(area.width)) * 2 / width_ - 1;
    const float middleY =
        1 - (static_cast<float>(area.y) + 0.5f * static_cast<float>(area.height)) * 2 / height_;
    const float depth = (kFar + kNear) / (kFar - kNear);
    const float offset = -2 * kFar * kNear / (kFar - kNear);
    const Vec3 rows[3]{right_ * (scaleX / tanX_) - ahead_ * (middleX * scaleX),
                       up_ * (scaleY / tanY_) - ahead_ * (middleY * scaleY), ahead_ * depth};
    const float shift[3]{-dot(rows[0], eye_), -dot(rows[1], eye_), -dot(rows[2], eye_) + offset};
    return {rows[0].x, rows[1].x, rows[2].x, ahead_.x, rows[0].y, rows[1].y, rows[2].y, ahead_.y,
            rows[0].z, rows[1].z, rows[2].z, ahead_.z, shift[0],  shift[1],  shift[2],  -dot(ahead_, eye_)};
}

}  // namespace tavrin::mray
