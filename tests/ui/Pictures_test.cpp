// SPDX-License-Identifier: Apache-2.0
// How pictures are compared, and whether the references and the tests belong together.
#include "ui/support/Pictures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "support/TestSite.h"
#include "ui/base/Text.h"

namespace tavrin {
namespace {

using test::CountDifferences;
using test::DifferencePicture;
using test::PictureShelf;
using test::PictureTolerance;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr QRgb kGrey = qRgb(100, 100, 100);

QImage Grey(int width = 8, int height = 6) {
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(kGrey);
    return picture;
}

class Pictures : public testing::Test {
  protected:
    std::string Compare(const QImage& picture, PictureTolerance tolerance = {}) {
        return Shelf(false).Compare(picture, "name@1x", "way", tolerance);
    }
    PictureShelf Shelf(bool update) { return {directory / "references", directory / "results", update}; }
    void Keep(const QImage& picture) { EXPECT_EQ(Shelf(true).Compare(picture, "name@1x", "way", {}), ""); }
    bool IsWritten(const std::string& name) {
        return std::filesystem::exists(directory / ("results/" + name));
    }

    test::TempDir directory;
};

TEST_F(Pictures, APictureLikeItsReferencePassesAndLeavesNothingBehind) {
    Keep(Grey());
    EXPECT_EQ(Compare(Grey()), "");
    EXPECT_FALSE(std::filesystem::exists(directory / "results"));
    EXPECT_THAT(Shelf(false).References(), ElementsAre("name@1x"));
}

TEST_F(Pictures, AMissingReferenceFailsAndThePictureCanBeSeen) {
    EXPECT_THAT(Compare(Grey()), HasSubstr("no reference " + (directory / "references/name@1x.png")));
    EXPECT_TRUE(IsWritten("name@1x.way.png"));
}

TEST_F(Pictures, APixelThatDiffersFailsAndIsShownInRed) {
    Keep(Grey());
    QImage other = Grey();
    other.setPixel(3, 2, qRgb(100, 103, 100));
    const std::string wrong = Compare(other);
    EXPECT_THAT(wrong, HasSubstr("1 pixels differ"));
    EXPECT_THAT(wrong, HasSubstr(directory / "results/name@1x.way.difference.png"));
    EXPECT_EQ(QImage(Shown(directory / "results/name@1x.way.png")).pixel(3, 2), qRgb(100, 103, 100));
    const QImage difference(Shown(directory / "results/name@1x.way.difference.png"));
    EXPECT_EQ(difference.pixel(3, 2), qRgb(255, 0, 0));
    EXPECT_NE(difference.pixel(3, 3), qRgb(255, 0, 0));
}

TEST_F(Pictures, ToleranceIsForEachChannelAndForTheNumberOfPixels) {
    Keep(Grey());
    QImage slight = Grey();
    slight.fill(qRgb(102, 98, 100));
    EXPECT_EQ(Compare(slight), "");
    EXPECT_NE(Compare(slight, {1, 0}), "");
    QImage three = Grey();
    for (int x = 0; x < 3; ++x) three.setPixel(x, 0, qRgb(255, 100, 100));
    EXPECT_EQ(Compare(three, {2, 3}), "");
    EXPECT_NE(Compare(three, {2, 2}), "");
}

TEST_F(Pictures, EachChannelCounts) {
    for (const QRgb color : {qRgb(90, 100, 100), qRgb(100, 110, 100), qRgb(100, 100, 110)}) {
        QImage other = Grey();
        other.setPixel(7, 5, color);
        EXPECT_EQ(CountDifferences(Grey(), other, 9), 1);
        EXPECT_EQ(CountDifferences(Grey(), other, 10), 0);
    }
}

TEST_F(Pictures, AlphaDoesNotCount) {
    Keep(Grey());
    QImage clear = Grey().convertToFormat(QImage::Format_ARGB32);
    clear.fill(qRgba(100, 100, 100, 7));
    EXPECT_EQ(Compare(clear), "");
}

TEST_F(Pictures, AnotherSizeDiffersInEachPixel) {
    Keep(Grey());
    EXPECT_THAT(Compare(Grey(9, 6), {2, 50}), HasSubstr("54 pixels differ"));
    EXPECT_THAT(Compare(Grey(9, 6), {2, 50}), HasSubstr("9 x 6, not 8 x 6"));
}

// A test's name stands before the first dot or @.
TEST_F(Pictures, EachReferenceOfTheDeskBelongsToATestAndStandsThereForBothRatios) {
    std::set<std::string> tests;
    const auto& all = *testing::UnitTest::GetInstance();
    for (int suite = 0; suite < all.total_test_suite_count(); ++suite) {
        const auto& one = *all.GetTestSuite(suite);
        if (!std::string(one.name()).starts_with("DeskPicture")) continue;
        for (int test = 0; test < one.total_test_count(); ++test) {
            const char* name = one.GetTestInfo(test)->name();
            EXPECT_TRUE(tests.insert(name).second) << name << ": two tests would share their references";
        }
    }
    const std::vector<std::string> references = test::DeskPictureShelf().References();
    EXPECT_GT(references.size(), 100U);
    for (const std::string& reference : references) {
        EXPECT_TRUE(tests.contains(reference.substr(0, reference.find_first_of(".@")))) << reference;
        std::string other = reference;
        char& ratio = other.at(other.size() - 2);
        ratio = ratio == '1' ? '2' : '1';
        EXPECT_TRUE(std::binary_search(references.begin(), references.end(), other)) << other;
    }
}

}  // namespace
}  // namespace tavrin
