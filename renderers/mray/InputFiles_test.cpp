// SPDX-License-Identifier: Apache-2.0
#include "InputFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace tavrin::mray {
namespace {

class InputFilesTest : public testing::Test {
  protected:
    InputFilesTest() {
        std::string name = (std::filesystem::temp_directory_path() / "mray.XXXXXX").string();
        directory_ = mkdtemp(name.data());
    }
    ~InputFilesTest() override { std::filesystem::remove_all(directory_); }
    std::string put(const std::string& text) const {
        std::string path = directory_ + "/file";
        std::ofstream(path, std::ios::binary) << text;
        return path;
    }
    std::string directory_;
};

TEST_F(InputFilesTest, ValuesAreNumbersInAllTheirForms) {
    EXPECT_EQ(readValues(put("1 -2.5\n.5  5.\n1e-3\n")), (std::vector<float>{1, -2.5f, 0.5f, 5, 1e-3f}));
    EXPECT_TRUE(readValues(put("")).empty());
    EXPECT_TRUE(readValues(put(" \n ")).empty());
    EXPECT_TRUE(std::isinf(readValues(put("1e999"))[0]));
    EXPECT_LT(readValues(put("-1e999"))[0], 0);
    EXPECT_EQ(readValues(put("1e-999")), std::vector<float>{0});
}

TEST_F(InputFilesTest, OtherThingsAreNoValues) {
    for (const char* text : {"x", "1x", "1,2", "1\t2", "--1", "0x10"}) {
        EXPECT_THROW(readValues(put(text)), std::runtime_error) << text;
    }
    std::string many;
    for (std::size_t i = 0; i < kMostValues; ++i) {
        many += "1 ";
    }
    EXPECT_EQ(readValues(put(many)).size(), kMostValues);
    EXPECT_THROW(readValues(put(many + "1")), std::runtime_error);
    EXPECT_THROW(readValues(directory_), std::runtime_error);
    EXPECT_THROW(readValues(directory_ + "/none"), std::runtime_error);
}

TEST_F(InputFilesTest, AShaderHoldsSomething) {
    EXPECT_EQ(readShader(put("void main")), "void main");
    EXPECT_THROW(readShader(put("")), std::runtime_error);
    EXPECT_THROW(readShader(directory_ + "/none"), std::runtime_error);
    EXPECT_THROW(readShader(directory_), std::runtime_error);
}

TEST_F(InputFilesTest, APictureNeedsAPlace) {
    checkOutput(directory_ + "/a.png");
    EXPECT_THROW(checkOutput(directory_), std::runtime_error);
    EXPECT_THROW(checkOutput(directory_ + "/none/a.png"), std::runtime_error);
}

}  // namespace
}  // namespace tavrin::mray
