// SPDX-License-Identifier: Apache-2.0
// What comes over a connection of the picture window: a message that was read is read again as the same.
#include "render/PictureMessage.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    PictureMessageReader reader;
    reader.Add({reinterpret_cast<const char*>(data), size});
    while (const auto message = reader.Next()) {
        const std::string line = message->Line();
        if (line.size() > PictureMessage::kLongestLine) std::abort();
        const auto again = PictureMessage::Parse(std::string_view(line).substr(0, line.size() - 1));
        // A line that was nearly too long may be longer with all that is encoded now, and lose words.
        if (!again || (line.size() < size && *again != *message)) std::abort();
    }
    return 0;
}
