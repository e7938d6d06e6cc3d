// SPDX-License-Identifier: Apache-2.0
#include "LiveRequest.h"

#include <gtest/gtest.h>

namespace tavrin::mray {
namespace {

TEST(LiveRequest, IsACommandLineWithAName) {
    const LiveRequest request =
        parseRequest("draw 12  --size 64,48 --samples=9 --coarse a%20b.png --values v -- -%25.frag out.png");
    EXPECT_EQ(request.id, "12");
    EXPECT_EQ(request.options.width, 64);
    EXPECT_EQ(request.options.samples, 9);
    EXPECT_EQ(request.options.coarse, "a b.png");
    EXPECT_EQ(request.options.values, "v");
    EXPECT_EQ(request.options.shader, "-%.frag");
    EXPECT_EQ(request.options.output, "out.png");
}

TEST(LiveRequest, NothingElseIsOne) {
    for (const char* line : {"", " ", "draw", "paint 1 a b", "stop"}) {
        try {
            parseRequest(line);
            ADD_FAILURE() << line;
        } catch (const RequestError& error) {
            EXPECT_EQ(error.id, "") << line;
        }
    }
    for (const char* line :
         {"draw 1", "draw 1 a", "draw 1 a b c", "draw 1 --help", "draw 1 --live", "draw 1 --version a b",
          "draw 1 --nope a b", "draw 1 --values", "draw 1 --coarse= a b", "draw 1 a% b", "draw 1 a%4 b",
          "draw 1 a%g0 b", "draw 1 a%-1 b"}) {
        try {
            parseRequest(line);
            ADD_FAILURE() << line;
        } catch (const RequestError& error) {
            EXPECT_EQ(error.id, "1") << line;
        }
    }
}

}  // namespace
}  // namespace tavrin::mray
