// SPDX-License-Identifier: Apache-2.0
// The product's version.
#pragma once

#include <string>
#include <string_view>

namespace tavrin {

// The version resource of this release.
inline constexpr std::string_view kProductVersion = "1,3, 32, 0";

// Each comma made a full stop, each blank dropped: "1.3.32.0".
std::string VersionText(std::string_view resource);

// At most three components: the form of titles and documents.
std::string ShortVersion(const std::string& version);

}  // namespace tavrin
