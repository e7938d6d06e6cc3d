// SPDX-License-Identifier: Apache-2.0
// Pictures: what was read is flattened. The reader wants a file, and gets one that lies in memory.
#include "images/SgiImage.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "base/FileDescriptor.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace tavrin;
    const FileDescriptor file(::memfd_create("input", MFD_CLOEXEC));
    if (!file || ::write(file.Get(), data, size) != static_cast<ssize_t>(size)) std::abort();
    CSgiImage image("/proc/self/fd/" + std::to_string(file.Get()), {});
    // What holds for every file: an image is complete, or empty with a message.
    const bool read = image.pixels != nullptr;
    if (read != image.message.empty() || read != (image.width > 0) || read != (image.height > 0))
        std::abort();
    image.FlattenOver(0.2F, 0.5F, 1.0F);
    return 0;
}
