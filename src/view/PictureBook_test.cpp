// SPDX-License-Identifier: Apache-2.0
#include "view/PictureBook.h"

#include <gmock/gmock.h>

#include <filesystem>

#include "ui/support/Windows.h"
#include "view/ViewTest.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using EntryState = PictureEntry::State;
using Kind = PictureEntry::Kind;
using test::Append;
using test::Chart;
using test::Encoded;
using test::Noise;
using test::Plain;
using test::WaitUntil;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PictureBookTest : public testing::Test {
  protected:
    void Make(size_t mostBytes = PictureBook::kMostBytes) {
        book = std::make_unique<PictureBook>(
            PictureBook::View{
                .listChanged = [] {},
                .changed = [this](PictureEntry& entry) { changed.push_back(&entry); },
                .came = [this](PictureEntry& entry) { came.push_back(entry.Title().toStdString()); },
                .leaves = [this](PictureEntry& entry) { left.push_back(entry.Title().toStdString()); },
                .isShown = [this](const PictureEntry& entry) { return &entry == shown; }},
            mostBytes);
    }
    static PictureMessage Render(int number, const char* state = "done") {
        return PictureMessage("render")
            .Set("desk", "/desk")
            .Set("number", number)
            .Set("name", "ball")
            .Set("state", state)
            .Set("started", int64_t{1000000} * number);
    }
    std::string Write(const std::string& name, const QImage& image) {
        return directory.Write(name, Encoded(image));
    }
    PictureEntry& Entry(int number) {
        PictureEntry* entry = book->Find("/desk", number);
        EXPECT_NE(entry, nullptr) << number;
        static PictureEntry none;
        return entry == nullptr ? none : *entry;
    }
    PictureEntry& TakeWhole(int number, const std::string& file) {
        book->Take(Render(number).Set("file", file));
        EXPECT_TRUE(WaitUntil([&] { return Entry(number).reading == nullptr; }));
        return Entry(number);
    }
    std::vector<std::string> Titles() {
        std::vector<std::string> titles;
        for (const auto& entry : book->Entries()) titles.push_back(entry->Title().toStdString());
        return titles;
    }
    static PictureMessage Live(int id, const std::string& file) {
        return PictureMessage("live").Set("desk", "/desk").Set("id", id).Set("file", file).Set("final", 1);
    }

    test::TempDir directory;
    std::vector<PictureEntry*> changed;
    std::vector<std::string> came, left;
    const PictureEntry* shown = nullptr;
    std::unique_ptr<PictureBook> book;
};

TEST_F(PictureBookTest, ARenderIsAnEntryWithAllThatIsToldOfIt) {
    Make();
    const PictureEntry& entry = TakeWhole(12, Write("a.png", Chart(40, 30)));
    EXPECT_EQ(entry.Title(), "12 ball");
    EXPECT_EQ(entry.started.toMSecsSinceEpoch(), 12000000);
    EXPECT_EQ(entry.picture->Size(), QSize(40, 30));
    EXPECT_EQ(entry.thumbnail.size(), QSize(40, 30));
    book->Take(Render(12).Set("duration", 2500).Set("differs", "Noise_3 scale 2 -> 5"));
    EXPECT_EQ(entry.duration, 2500);
    EXPECT_EQ(entry.differs, "Noise_3 scale 2 -> 5");
    EXPECT_NE(entry.picture, nullptr) << "what is told again is not read again";
    EXPECT_EQ(entry.reading, nullptr);
    EXPECT_THAT(came, ElementsAre("12 ball"));
}

TEST_F(PictureBookTest, TheNewestStandsFirstWhateverIsToldFirst) {
    Make();
    for (const int number : {2, 5, 1, 4}) book->Take(Render(number, "running"));
    EXPECT_THAT(Titles(), ElementsAre("5 ball", "4 ball", "2 ball", "1 ball"));
    book->Take(Live(1, directory / "none.png"));
    EXPECT_EQ(Titles().front(), "Live");
    book->Take(PictureMessage("forget").Set("desk", "/desk").Set("number", 4));
    book->Take(PictureMessage("forget").Set("desk", "/other").Set("number", 5));
    EXPECT_THAT(left, ElementsAre("4 ball"));
    EXPECT_THAT(Titles(), ElementsAre("Live", "5 ball", "2 ball", "1 ball"));
}

TEST_F(PictureBookTest, AGrowingPictureIsFollowedByWhatTheSystemTells) {
    Make();
    const std::string png = Encoded(Noise(300, 200));
    fs::create_directories(directory / "3");
    const std::string path = directory / "3/ball.png";
    book->DeskCame("/desk");
    book->Take(Render(3, "running").Set("file", path));
    EXPECT_EQ(Entry(3).picture, nullptr);
    directory.Write("3/ball.png.part", png.substr(0, png.size() / 2));
    ASSERT_TRUE(WaitUntil([&] { return Entry(3).picture != nullptr; }));
    const int rows = Entry(3).picture->Rows();
    EXPECT_LT(rows, 200);
    Append(path + ".part", png.substr(png.size() / 2));
    ASSERT_TRUE(WaitUntil([&] { return Entry(3).picture->IsWhole(); }));
    EXPECT_EQ(Entry(3).state, EntryState::kRunning) << "the script is still at work";
    fs::rename(path + ".part", path);
    book->Take(Render(3).Set("file", path));
    ASSERT_TRUE(WaitUntil([&] { return Entry(3).reading == nullptr; }));
    EXPECT_EQ(Entry(3).state, EntryState::kDone);
    EXPECT_FALSE(Entry(3).thumbnail.isNull());
}

TEST_F(PictureBookTest, AFailedRenderKeepsWhatWasSeenOfIt) {
    Make();
    book->DeskCame("/desk");
    const std::string png = Encoded(Noise(300, 200));
    directory.Write("it.png.part", png.substr(0, png.size() / 2));
    book->Take(Render(3, "running").Set("file", directory / "it.png"));
    ASSERT_TRUE(WaitUntil([&] { return Entry(3).picture != nullptr; }));
    fs::remove(directory / "it.png.part");
    book->Take(Render(3, "failed").Set("text", "status 2").Set("duration", 90));
    EXPECT_EQ(Entry(3).state, EntryState::kFailed);
    EXPECT_EQ(Entry(3).trouble, "status 2");
    EXPECT_EQ(Entry(3).reading, nullptr);
    EXPECT_NE(Entry(3).picture, nullptr);
    EXPECT_EQ(Entry(3).duration, 90);
}

TEST_F(PictureBookTest, WhatCannotBeShownIsTold) {
    Make();
    EXPECT_THAT(TakeWhole(1, directory / "none.png").trouble, HasSubstr("No such file"));
    EXPECT_THAT(TakeWhole(2, directory.Write("text.png", "a text, and no picture")).trouble,
                HasSubstr("it is no picture"));
    EXPECT_EQ(Entry(1).picture, nullptr);
    EXPECT_EQ(TakeWhole(1, Write("none.png.later", Chart(4, 4))).trouble, "") << "it is there now";
}

TEST_F(PictureBookTest, WhatWasNotLookedAtForLongestIsGivenUpAndReadAgain) {
    Make(3 * 100 * 100 * 4);
    for (int number = 1; number <= 3; ++number)
        TakeWhole(number, Write(std::to_string(number) + ".png", Plain(100, 100, qRgb(number, 0, 0))));
    for (const int number : {1, 3, 2}) book->Show(Entry(number));
    shown = &Entry(1);
    TakeWhole(4, Write("4.png", Plain(100, 100, qRgb(4, 0, 0))));
    EXPECT_NE(Entry(1).picture, nullptr) << "what is shown stays";
    int held = 0;
    for (const auto& entry : book->Entries()) held += entry->picture != nullptr ? 1 : 0;
    EXPECT_EQ(held, 3);
    EXPECT_EQ(Entry(4).picture, nullptr) << "nobody has looked at it ever";
    TakeWhole(5, Write("5.png", Plain(100, 100, qRgb(5, 0, 0))));
    EXPECT_FALSE(Entry(4).thumbnail.isNull());
    shown = &Entry(4);
    book->Show(Entry(4));
    ASSERT_TRUE(WaitUntil([&] { return Entry(4).picture != nullptr; }));
    EXPECT_EQ(Entry(4).picture->At({5, 5}), qRgb(4, 0, 0));
    EXPECT_EQ(Entry(1).picture, nullptr) << "it was looked at before 3 and 2 were";
    EXPECT_NE(Entry(3).picture, nullptr);
    fs::remove(directory / "1.png");
    book->Show(Entry(1));
    ASSERT_TRUE(WaitUntil([&] { return !Entry(1).trouble.empty(); }));
    EXPECT_THAT(Entry(1).trouble, HasSubstr("No such file")) << "and with its file it is gone";
}

TEST_F(PictureBookTest, WhatCameOfADeskStaysWhenThatGoes) {
    Make();
    book->DeskCame("/desk");
    TakeWhole(1, Write("1.png", Chart(10, 10)));
    book->Take(Render(2, "running").Set("file", directory / "2.png"));
    EXPECT_TRUE(book->HasDesk(Entry(1)));
    book->DeskWent("/desk");
    EXPECT_FALSE(book->HasDesk(Entry(1)));
    EXPECT_NE(Entry(1).picture, nullptr);
    ASSERT_TRUE(WaitUntil([&] { return Entry(2).state == EntryState::kStopped; }))
        << "nobody tells of its end";
}

TEST_F(PictureBookTest, TheLivePictureIsOneEntryWhosePictureChanges) {
    Make();
    const std::string one = Write("1.png", Plain(9, 9, qRgb(1, 0, 0)));
    const std::string two = Write("2.png", Plain(9, 9, qRgb(2, 0, 0)));
    book->Take(Live(1, one));
    PictureEntry* live = book->FindLive("/desk");
    ASSERT_TRUE(WaitUntil([&] { return live->id == 1; }));
    EXPECT_EQ(live->picture->At({0, 0}), qRgb(1, 0, 0));
    book->Take(Live(2, two));
    ASSERT_TRUE(WaitUntil([&] { return live->id == 2; }));
    EXPECT_EQ(live->picture->At({0, 0}), qRgb(2, 0, 0));
    EXPECT_THAT(came, ElementsAre("Live"));
    EXPECT_EQ(book->Entries().size(), 1U);
    book->Take(PictureMessage("trouble").Set("desk", "/desk").Set("text", "it hangs"));
    EXPECT_EQ(live->trouble, "it hangs");
    EXPECT_EQ(live->state, EntryState::kFailed);
    EXPECT_EQ(live->picture->At({0, 0}), qRgb(2, 0, 0)) << "the last good one stays";
    book->Take(Live(3, one));
    ASSERT_TRUE(WaitUntil([&] { return live->id == 3; }));
    EXPECT_EQ(live->trouble, "");
    book->Take(PictureMessage("endlive").Set("desk", "/desk"));
    EXPECT_THAT(book->Entries(), IsEmpty());
}

TEST_F(PictureBookTest, OfLivePicturesThatComeFasterThanTheyAreReadTheNewestIsNext) {
    Make();
    std::vector<std::string> files;
    for (int id = 1; id <= 50; ++id)
        files.push_back(Write(std::to_string(id) + ".png", Plain(64, 64, qRgb(id, 0, 0))));
    for (int id = 1; id <= 50; ++id) book->Take(Live(id, files[size_t(id) - 1]));
    const PictureEntry* live = book->FindLive("/desk");
    ASSERT_TRUE(WaitUntil([&] { return live->id == 50; }));
    EXPECT_EQ(live->picture->At({0, 0}), qRgb(50, 0, 0));
    EXPECT_EQ(live->reading, nullptr);
}

TEST_F(PictureBookTest, APictureToCompareWithIsAnEntryForEachFile) {
    Make();
    const auto reference = [&](const std::string& file) {
        return PictureMessage("render")
            .Set("desk", "/d")
            .Set("number", 0)
            .Set("name", "photo")
            .Set("file", file)
            .Set("state", "done");
    };
    const std::string one = Write("1.png", Plain(9, 9, qRgb(1, 0, 0)));
    book->Take(reference(one));
    book->Take(reference(one));
    book->Take(reference(Write("2.png", Plain(9, 9, qRgb(2, 0, 0)))));
    EXPECT_THAT(Titles(), ElementsAre("photo", "photo"));
    EXPECT_EQ(book->Entries().front()->kind, Kind::kReference);
    Write("1.png", Plain(9, 9, qRgb(7, 0, 0)));
    book->Take(reference(one));
    ASSERT_TRUE(WaitUntil([&] {
        for (const auto& entry : book->Entries())
            if (entry->picture != nullptr && entry->picture->At({0, 0}) == qRgb(7, 0, 0)) return true;
        return false;
    })) << "a file that has changed is read again";
}

TEST_F(PictureBookTest, MessagesOfAnybodyBreakNothing) {
    Make();
    book->Take(PictureMessage("render"));
    book->Take(PictureMessage("render").Set("number", -5).Set("state", "odd"));
    book->Take(
        PictureMessage("render").Set("number", INT64_MAX).Set("started", INT64_MAX).Set("duration", -1));
    book->Take(PictureMessage("live"));
    book->Take(PictureMessage("endlive"));
    book->Take(PictureMessage("forget").Set("number", "x"));
    book->Take(PictureMessage("bogus").Set("number", 1));
    for (int number = 1; number <= 1500; ++number)
        book->Take(Render(number, "failed").Set("name", "\xff\x01 <b>"));
    EXPECT_EQ(book->Entries().size(), PictureBook::kMostEntries);
    EXPECT_EQ(book->Find("/desk", 1), nullptr) << "the oldest have gone";
    EXPECT_NE(book->Find("/desk", 1500), nullptr);
}

}  // namespace
}  // namespace tavrin
