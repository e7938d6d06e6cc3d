// SPDX-License-Identifier: Apache-2.0
// What is known of each render, who is told, and for how long.
#include "render/RenderRecords.h"

#include <sys/stat.h>
#include <unistd.h>

#include "render/RendersGround.h"
#include "support/NoRoom.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using std::chrono::system_clock;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using State = RenderRecord::State;

const char* WordFor(State state) {
    switch (state) {
        case State::kRunning:
            return "running";
        case State::kDone:
            return "done";
        case State::kFailed:
            return "failed";
        case State::kStopped:
            break;
    }
    return "stopped";
}

class RenderRecordsTest : public test::RendersTest {
  protected:
    RenderRecordsTest() { Listen(); }
    void Listen() {
        m_tellings = session->records.afterRecord.Add([this](const RenderRecord& record) {
            told.push_back(std::to_string(record.number) + " " + WordFor(record.state) +
                           (record.failure.empty() ? "" : ": " + record.failure));
        });
        m_forgets = session->records.afterForget.Add([this](int number) { forgotten.push_back(number); });
    }
    const RenderRecord& Record(int number) {
        const RenderRecord* record = session->records.Find(number);
        static const RenderRecord kNone;
        EXPECT_NE(record, nullptr) << number;
        return record == nullptr ? kNone : *record;
    }
    std::string PictureOf(int number) { return session->records.PictureOf(number); }
    void Leave(const std::string& name) { host.Directory().Write("work/1/" + name, "x"); }

    std::vector<std::string> told;
    std::vector<int> forgotten;

  private:
    Listeners<const RenderRecord&>::Subscription m_tellings;
    Listeners<int>::Subscription m_forgets;
};

TEST_F(RenderRecordsTest, ARenderIsToldAtItsStartAndAtItsEnd) {
    Launcher(std::string(kUntilStopped) + kPicture);
    const auto before = system_clock::now();
    ASSERT_TRUE(session->RenderIt());
    EXPECT_THAT(told, ElementsAre("1 running"));
    EXPECT_EQ(Record(1).name, "plastic");
    EXPECT_GE(Record(1).started, before);
    EXPECT_LE(Record(1).started, system_clock::now());
    EXPECT_EQ(Record(1).picture, "");
    EXPECT_EQ(session->records.Newest(), &Record(1));
    host.Directory().Write("work/go", "");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(told, ElementsAre("1 running", "1 done"));
    EXPECT_EQ(Record(1).picture, site.WorkPath("1/plastic.png"));
    EXPECT_EQ(Record(1).kept, "");
}

TEST_F(RenderRecordsTest, TheDurationIsThatOfTheChild) {
    Launcher("sleep 0.05\n");
    ASSERT_TRUE(Render());
    EXPECT_GE(Record(1).duration, std::chrono::milliseconds(50));
    EXPECT_LE(Record(1).started + Record(1).duration, system_clock::now() + std::chrono::milliseconds(1));
}

TEST_F(RenderRecordsTest, AScriptThatEndsWithAStatusHasFailed) {
    Launcher(std::string(kPicture) + "exit 3\n");
    ASSERT_TRUE(Render());
    EXPECT_THAT(told, ElementsAre("1 running", "1 failed: status 3"));
    EXPECT_EQ(Record(1).picture, site.WorkPath("1/plastic.png"));
}

TEST_F(RenderRecordsTest, AScriptThatIsStoppedByTheUserHasNotFailed) {
    Launcher(std::string(kUntilStopped) + "exit 9\n");
    ASSERT_TRUE(session->RenderIt());
    session->StopRender();
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(told, ElementsAre("1 running", "1 stopped"));
}

TEST_F(RenderRecordsTest, AScriptThatBreaksALimitHasFailed) {
    site.renderLimits = {std::chrono::seconds(1), 0, "limit.rendertime", ""};
    Launcher("while :; do sleep 0.02; done\n");
    ASSERT_TRUE(Render());
    EXPECT_THAT(told, ElementsAre("1 running", "1 failed: limit exceeded"));
    EXPECT_THAT(Alerts(), ElementsAre(HasSubstr("limit of limit.rendertime")));
}

TEST_F(RenderRecordsTest, ALauncherThatCannotStartHasFailed) {
    fs::remove(host.Directory() / "bin/PerlExec");
    ASSERT_TRUE(Render());
    EXPECT_THAT(told, ElementsAre("1 running", "1 failed: status 127"));
}

TEST_F(RenderRecordsTest, WhereThereIsNoThreadARenderHasFailedAtOnce) {
    session->records.Begin(RecordOf(7), true, 0);
    EXPECT_THAT(told, ElementsAre("7 running", "7 failed: not started"));
}

TEST_F(RenderRecordsTest, RendersThatRunTogetherEndEachForItself) {
    Launcher("[ $3 = 1 ] && " + std::string(kUntilStopped) + "exit $3\n");
    ASSERT_TRUE(session->RenderIt());
    ASSERT_TRUE(session->RenderIt());
    ASSERT_TRUE(session->records.Find(2) != nullptr);
    const auto limit = std::chrono::steady_clock::now() + test::kPatience;
    while (Record(2).state == State::kRunning && std::chrono::steady_clock::now() < limit) host.RunPending();
    EXPECT_THAT(told, ElementsAre("1 running", "2 running", "2 failed: status 2"));
    host.Directory().Write("work/go", "");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(told.back(), "1 failed: status 1");
}

TEST_F(RenderRecordsTest, ChildrenThatAreNoRendersAreNoMatter) {
    site.commands.RunScript({"bin/exportall", "plastic", "5"}, "export");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(told, IsEmpty());
    EXPECT_EQ(session->records.Newest(), nullptr);
}

// Pictures

TEST_F(RenderRecordsTest, ThePictureIsTheFirstOfTheKnownExtensions) {
    ASSERT_TRUE(Render());
    EXPECT_EQ(PictureOf(1), "");
    for (const char* name : {"glass.png", "plastic.txt", "plastic", "plastic.png.part"}) Leave(name);
    EXPECT_EQ(PictureOf(1), "");
    for (const char* extension : {"ppm", "tiff", "tif", "webp", "bmp", "gif", "jpeg", "jpg", "png"}) {
        Leave(std::string("plastic.") + extension);
        EXPECT_EQ(PictureOf(1), site.WorkPath(std::string("1/plastic.") + extension));
    }
    fs::remove(site.WorkPath("1/plastic.png"));
    EXPECT_EQ(PictureOf(1), site.WorkPath("1/plastic.jpg"));
    EXPECT_EQ(PictureOf(2), "");
}

TEST_F(RenderRecordsTest, WhatIsNoFileIsNoPicture) {
    ASSERT_TRUE(Render());
    fs::create_directory(site.WorkPath("1/plastic.png"));
    ASSERT_EQ(::mkfifo(site.WorkPath("1/plastic.jpg").c_str(), 0600), 0);
    fs::create_symlink("/dev/zero", site.WorkPath("1/plastic.gif"));
    fs::create_symlink("nothing", site.WorkPath("1/plastic.bmp"));
    EXPECT_EQ(PictureOf(1), "");
    Leave("plastic.ppm");
    EXPECT_EQ(PictureOf(1), site.WorkPath("1/plastic.ppm"));
}

// What differs

TEST_F(RenderRecordsTest, ARenderTellsWhatDiffersFromTheOneBefore) {
    SetOption("DEPTH", "2");
    ASSERT_TRUE(Render());
    EXPECT_EQ(Record(1).differs, "") << "there is none before";
    SetOption("DEPTH", "4");
    ASSERT_TRUE(Render());
    EXPECT_THAT(Record(2).differs, HasSubstr("DEPTH"));
    ASSERT_TRUE(Render());
    EXPECT_EQ(Record(3).differs, "");
    session->m_keepHistory = false;
    SetOption("DEPTH", "6");
    ASSERT_TRUE(Render());
    EXPECT_THAT(Record(4).differs, HasSubstr("6"));
}

// How long they are known

TEST_F(RenderRecordsTest, ARecordGoesWithTheEntryOfItsRender) {
    site.settings.Store("maxhistory", "2");
    NewSession();
    Listen();
    for (int i = 0; i < 2; ++i) ASSERT_TRUE(Render());
    EXPECT_THAT(forgotten, IsEmpty());
    ASSERT_TRUE(Render());
    EXPECT_THAT(forgotten, ElementsAre(1));
    EXPECT_EQ(session->records.Find(1), nullptr);
    EXPECT_EQ(PictureOf(1), "");
    EXPECT_EQ(Record(2).state, State::kDone);
}

TEST_F(RenderRecordsTest, ARenderWhoseEntryWentWhileItRanIsToldOfNoMore) {
    site.settings.Store("maxhistory", "1");
    NewSession();
    Listen();
    Launcher("[ $3 = 1 ] && " + std::string(kUntilStopped));
    ASSERT_TRUE(session->RenderIt());
    ASSERT_TRUE(session->RenderIt());
    host.Directory().Write("work/go", "");
    ASSERT_TRUE(WaitForEnd());
    EXPECT_THAT(forgotten, ElementsAre(1));
    for (const std::string& telling : told) EXPECT_NE(telling, "1 done");
}

TEST_F(RenderRecordsTest, OfRendersWithoutHistoryTheNewestAreKnown) {
    session->m_keepHistory = false;
    constexpr int kMost = static_cast<int>(RenderRecords::kUnlisted);
    for (int number = 1; number <= kMost + 2; ++number)
        session->records.Begin(RecordOf(number), false, 1000 + number);
    EXPECT_THAT(forgotten, ElementsAre(1, 2));
    EXPECT_EQ(session->records.Find(2), nullptr);
    EXPECT_NE(session->records.Find(3), nullptr);
}

TEST_F(RenderRecordsTest, ARenderWithoutHistoryHasARecordAndNoLine) {
    session->m_keepHistory = false;
    Launcher(kPicture);
    ASSERT_TRUE(Render());
    EXPECT_THAT(session->History().Entries(), IsEmpty());
    EXPECT_EQ(Record(1).state, State::kDone);
    EXPECT_EQ(Record(1).picture, site.WorkPath("1/plastic.png"));
}

TEST_F(RenderRecordsTest, AHistoryOfNothingForgetsNoRenderThatWasTold) {
    site.settings.Store("maxhistory", "0");
    NewSession();
    Listen();
    ASSERT_TRUE(Render());
    EXPECT_THAT(told, ElementsAre("1 running", "1 done"));
    EXPECT_THAT(forgotten, IsEmpty());
}

TEST_F(RenderRecordsTest, WhoIsToldMayStartTheNextRender) {
    bool isFirst = true;
    const auto tellings = session->records.afterRecord.Add([&](const RenderRecord& record) {
        if (record.state != State::kRunning && std::exchange(isFirst, false)) session->RenderIt();
    });
    ASSERT_TRUE(session->RenderIt());
    ASSERT_TRUE(WaitForEnd());
    ASSERT_TRUE(WaitForEnd());
    EXPECT_EQ(Record(1).state, State::kDone);
    EXPECT_EQ(Record(2).state, State::kDone);
}

}  // namespace
}  // namespace tavrin
