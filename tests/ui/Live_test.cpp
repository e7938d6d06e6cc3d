// SPDX-License-Identifier: Apache-2.0
// Live in the whole program: what the user does, and the pictures that follow by themselves.
#include <malloc.h>

#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "document/EditHistory.h"
#include "support/Patience.h"
#include "support/Processes.h"
#include "ui/base/Text.h"
#include "ui/commands/LiveWork.h"
#include "ui/desk/DeskPane.h"
#include "ui/frame/StatusBox.h"
#include "ui/sliders/NumberField.h"
#include "ui/sliders/SliderPane.h"
#include "ui/sliders/ValueSlider.h"
#include "ui/support/DeskPointer.h"
#include "ui/support/Hands.h"
#include "ui/support/TestFrame.h"

namespace tavrin {
namespace {

namespace fs = std::filesystem;
using test::BoxesShown;
using test::ReadFile;
using test::WaitUntil;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

// Writes down its process, and answers each state with a copy of its source.
constexpr const char* kLive = R"(#!/usr/bin/perl
use strict;
use warnings;
$| = 1;
my $base = "$ENV{TAVRN_DIR}/..";
open my $list, '>>', "$base/processes" or die;
print $list "$$\n";
close $list;
while (my $dir = <STDIN>) {
    chomp $dir;
    if (-e "$base/broken") { print "error no such thing\n"; next; }
    if (-e "$base/nonsense") { print "hello\n"; next; }
    while (-e "$base/hold") { select undef, undef, undef, 0.01; }
    open my $in, '<', "$dir/codegenfile" or die;
    open my $out, '>', "$dir/picture.png" or die;
    print $out join("", <$in>);
    close $out;
    print "picture $dir/picture.png\n";
}
)";

// What it takes to see a value in what is generated.
constexpr const char* kKnob = R"text(size 64 48
input amount { float { 0.5 0 1 0 "%g" } }
output result { float out }
codegen.main-body append
result = amount;
<<EOT>>
)text";

class LiveTest : public test::FrameTest {
  protected:
    LiveTest() {
        UseScript(kLive);
        directory.Write("tavrin/tiny/menu/0500.Knob", kKnob);
        AddToSite("livecommand bin/live\n");
        environment.Set("TAVRN_VIEW", "");  // no picture window
    }
    ~LiveTest() override {
        fs::remove(directory / "hold");
        m_subscriptions.clear();
        m_troubleSubscription.reset();
        End();
        EXPECT_TRUE(test::SleepUntil([this] {
            const std::vector<int> all = Processes();
            return std::all_of(all.begin(), all.end(), test::IsGone);
        })) << "a live command is left";
    }

    void AddToSite(const std::string& lines) {
        const std::string path = "tavrin/tiny/tavrn.def";
        directory.Write(path, ReadFile(directory / path) + lines);
    }
    void UseScript(const std::string& text) {
        fs::permissions(directory.Write("tavrin/tiny/bin/live", text), fs::perms::owner_all);
    }
    // A frame with such a box on the desk, selected so that its slider stands.
    void StartWithKnob() {
        Start();
        Listen();
        AddBoxes(1, "Knob");
        Desk().SelectAllBoxes();
        Settle();
    }
    void Listen() {
        m_subscriptions = {Frame().Live().afterPicture.Add(
            [this](const LivePicture& picture) { pictures.push_back(picture); })};
        m_troubleSubscription =
            Frame().Live().afterTrouble.Add([this](const std::string& text) { troubles.push_back(text); });
    }
    void SwitchOn() {
        test::ChooseInMenu(Frame(), "Render", Action(CommandId::kLive));
        ASSERT_TRUE(IsChecked(CommandId::kLive));
    }
    void SwitchOnWithPicture() {
        SwitchOn();
        ASSERT_TRUE(WaitForPictures(1)) << (troubles.empty() ? "" : troubles.back()) << Log();
    }
    bool WaitForPictures(size_t count) {
        return WaitUntil([&] { return pictures.size() >= count; });
    }
    // What the last picture was made of.
    std::string Painted() { return pictures.empty() ? "" : ReadFile(pictures.back().path); }
    bool WaitUntilPainted(const std::string& text) {
        return WaitUntil([&] { return Painted().find(text) != std::string::npos; });
    }
    std::vector<int> Processes() {
        std::vector<int> all;
        std::istringstream list(ReadFile(directory / "processes"));
        for (int id = 0; list >> id;) all.push_back(id);
        return all;
    }
    int CountInLog(const std::string& words) {
        const std::string log = Log();
        int count = 0;
        for (size_t at = log.find(words); at != std::string::npos; at = log.find(words, at + 1)) ++count;
        return count;
    }
    std::string Aside() { return Bytes(Frame().StatusBox().Aside()); }
    COpButton& Amount() { return *Document().m_boxes.front()->FindButton("amount"); }

    ValueSlider& Slider() {
        CSliderFrame* frame = Frame().Sliders().BringIntoView(Amount());
        for (QWidget* widget : frame->findChildren<QWidget*>()) {
            if (auto* slider = dynamic_cast<ValueSlider*>(widget)) return *slider;
        }
        throw std::logic_error("no slider");
    }
    static QPoint ThumbAt(ValueSlider& slider, int position) {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = Qt::Horizontal;
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = option.sliderValue = position;
        const QRect thumb =
            slider.style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider);
        return slider.mapTo(slider.window(), thumb.center());
    }
    void TypeAmount(const QString& text) {
        CSliderFrame* frame = Frame().Sliders().BringIntoView(Amount());
        for (QWidget* widget : frame->findChildren<QWidget*>()) {
            auto* field = dynamic_cast<NumberField*>(widget);
            if (field == nullptr || field->accessibleName() != "Value") continue;
            test::GiveFocus(*field);
            field->selectAll();
            QTest::keyClicks(field, text);
            return;
        }
        ADD_FAILURE() << "no field";
    }

    std::vector<LivePicture> pictures;
    std::vector<std::string> troubles;

  private:
    std::vector<Listeners<const LivePicture&>::Subscription> m_subscriptions;
    Listeners<const std::string&>::Subscription m_troubleSubscription;
};

TEST_F(LiveTest, ItIsOffAtFirstAndNothingOfItRuns) {
    StartWithKnob();
    EXPECT_FALSE(IsChecked(CommandId::kLive));
    TypeAmount("0.25");
    Settle();
    EXPECT_THAT(Processes(), IsEmpty());
    EXPECT_FALSE(fs::exists(WorkDir() + "/.live"));
    EXPECT_EQ(Aside(), "");
}

TEST_F(LiveTest, TheMenuSwitchesItOnAndTheToolBarOff) {
    StartWithKnob();
    SwitchOnWithPicture();
    EXPECT_THAT(Painted(), HasSubstr("= 0.5;"));
    EXPECT_TRUE(WaitUntil([this] { return testing::Value(Aside(), MatchesRegex("Live: [0-9]+ ms")); }))
        << Aside();
    test::ClickOnToolBar(Frame(), "MainToolBar", Action(CommandId::kLive));
    EXPECT_FALSE(IsChecked(CommandId::kLive));
    EXPECT_EQ(Aside(), "");
    EXPECT_TRUE(WaitUntil([this] { return !App().GetSite().commands.AnyLineChildLeft(); }));
    TypeAmount("0.25");
    Settle();
    EXPECT_EQ(pictures.size(), 1U);
    EXPECT_TRUE(fs::is_empty(WorkDir() + "/.live"));
}

TEST_F(LiveTest, AValueThatIsTypedIsSeen) {
    StartWithKnob();
    SwitchOnWithPicture();
    TypeAmount("0.125");
    EXPECT_TRUE(WaitUntilPainted("= 0.125;"));
    EXPECT_EQ(Processes().size(), 1U) << "the command stays";
}

// Though the drag is one act, of which all others hear at its end.
TEST_F(LiveTest, PicturesFollowASliderWhileItIsDragged) {
    StartWithKnob();
    SwitchOnWithPicture();
    ValueSlider& slider = Slider();
    QWindow* window = Frame().windowHandle();
    QTest::mousePress(window, Qt::LeftButton, {}, ThumbAt(slider, slider.sliderPosition()));
    for (const int part : {3, 6, 9}) {
        const size_t before = pictures.size();
        QTest::mouseMove(
            window, ThumbAt(slider, slider.minimum() + (slider.maximum() - slider.minimum()) * part / 10));
        ASSERT_TRUE(WaitForPictures(before + 1)) << "at " << part;
        EXPECT_TRUE(Document().edits.IsOpen()) << "the hand has not let go";
    }
    const std::string last = Painted();
    QTest::mouseRelease(window, Qt::LeftButton, {}, ThumbAt(slider, slider.sliderPosition()));
    Settle();
    EXPECT_EQ(Painted(), last);
    EXPECT_THAT(last, Not(HasSubstr("= 0.5;")));
}

TEST_F(LiveTest, SeveralChangesOfOneTurnAreOneState) {
    StartWithKnob();
    SwitchOnWithPicture();
    for (const char* value : {"1", "2", "3"}) App().SetVariable("STEP", value, false);
    ASSERT_TRUE(WaitForPictures(2));
    EXPECT_EQ(pictures[1].id, pictures[0].id + 1);
    EXPECT_EQ(ReadFile(WorkDir() + "/.live/2/render_options"), "setenv STEP \"3\"\r\n");
    Settle();
    EXPECT_EQ(pictures.size(), 2U);
}

TEST_F(LiveTest, AWireThatIsMadeAndItsUndoAreSeen) {
    StartWithKnob();
    Desk().AddOperator("Knob");
    Desk().DropPending();
    COpBox& left = *Document().m_boxes.front();
    COpBox& right = *Document().m_boxes.back();
    Desk().MoveBox(right, 300, 0);
    Do(CommandId::kFitToWindow);
    Settle();
    SwitchOnWithPicture();
    const std::string before = Painted();
    test::DeskPointer pointer(Frame());
    pointer.WireByDrag(pointer.Of(left, "result"), pointer.Of(right, "amount"));
    ASSERT_TRUE(WaitForPictures(2));
    EXPECT_NE(Painted(), before);
    test::PressKeys("Ctrl+Z");
    EXPECT_TRUE(WaitUntil([&] { return Painted() == before; }));
    test::PressKeys("Ctrl+Y");
    EXPECT_TRUE(WaitUntil([&] { return Painted() != before; }));
}

TEST_F(LiveTest, ABoxThatIsMovedOrSelectedGivesNoPicture) {
    StartWithKnob();
    SwitchOnWithPicture();
    test::DeskPointer pointer(Frame());
    const QPoint title = pointer.TitleOf(*Document().m_boxes.front());
    pointer.Press(title);
    pointer.MoveTo(title + QPoint(20, 10), Qt::LeftButton);
    pointer.Release(title + QPoint(20, 10));
    EXPECT_TRUE(Document().History()->CanUndo()) << "it has been moved";
    Do(CommandId::kUnselectAllBoxes);
    Settle();
    App().SetVariable("STEP", "1", false);
    ASSERT_TRUE(WaitForPictures(2));
    EXPECT_EQ(pictures[1].id, pictures[0].id + 1);
}

TEST_F(LiveTest, ItGoesOnOverAnotherDocumentAndANewOne) {
    StartWithKnob();
    SwitchOnWithPicture();
    test::PressWhenBoxComes("Discard");
    ASSERT_TRUE(Frame().OpenDocumentFile(WriteDocument("other", 2)));
    ASSERT_TRUE(WaitForPictures(2));
    EXPECT_EQ(ReadFile(fs::path(pictures.back().path).parent_path() / "name"), "other\n");
    Do(CommandId::kNew);
    ASSERT_TRUE(WaitUntil([this] { return !troubles.empty(); }));
    EXPECT_EQ(troubles.back(), "Live waits: the desk is empty");
    EXPECT_EQ(Aside(), "Live waits: the desk is empty");
    const size_t before = pictures.size();
    AddBoxes(1, "Knob");
    EXPECT_TRUE(WaitForPictures(before + 1));
    EXPECT_EQ(Processes().size(), 1U);
}

TEST_F(LiveTest, ALockedDeskIsWaitedFor) {
    StartWithKnob();
    SwitchOnWithPicture();
    Do(CommandId::kLockDesk);
    ASSERT_TRUE(WaitUntil([this] { return Aside() == "Live waits: the desk is locked"; })) << Aside();
    Do(CommandId::kLockDesk);
    EXPECT_TRUE(WaitForPictures(2));
}

TEST_F(LiveTest, TroubleStandsInTheStatusBoxUntilThereIsAPictureAgain) {
    StartWithKnob();
    SwitchOnWithPicture();
    directory.Write("broken", "");
    TypeAmount("0.25");
    ASSERT_TRUE(WaitUntil([this] { return Aside() == "Live: no such thing"; })) << Aside();
    fs::remove(directory / "broken");
    TypeAmount("0.75");
    EXPECT_TRUE(WaitUntil([this] { return testing::Value(Aside(), MatchesRegex("Live: [0-9]+ ms")); }))
        << Aside();
    EXPECT_THAT(BoxesShown(), IsEmpty());
}

TEST_F(LiveTest, WhenItSwitchesItselfOffTheMenuShowsIt) {
    StartWithKnob();
    SwitchOnWithPicture();
    directory.Write("nonsense", "");
    for (int failure = 1; failure <= 3; ++failure) {
        App().SetVariable("STEP", std::to_string(failure), false);
        ASSERT_TRUE(WaitUntil([&] {
            return CountInLog("The live command was ended: it answered \"hello\"") == failure;
        })) << Log();
    }
    EXPECT_TRUE(WaitUntil([this] { return !Action(CommandId::kLive).isChecked(); }));
    EXPECT_THAT(Log(), HasSubstr("WARNING: Live is switched off after 3 failures in a row\n"));
    EXPECT_THAT(Aside(), HasSubstr("Live is switched off"));
    fs::remove(directory / "nonsense");
    pictures.clear();
    SwitchOnWithPicture();
}

TEST_F(LiveTest, ARenderBesideItFindsItsFilesAndItsHistoryAsEver) {
    StartWithKnob();
    SwitchOnWithPicture();
    QTest::keyClick(&Frame(), Qt::Key_F1);
    ASSERT_TRUE(WaitUntil([this] { return !ChildRuns(); }));
    Settle();
    TypeAmount("0.25");
    ASSERT_TRUE(WaitUntilPainted("= 0.25;"));
    EXPECT_THAT(ReadFile(WorkDir() + "/codegenfile"), HasSubstr("= 0.5;"));
    EXPECT_EQ(Frame().Work().session.m_nextRender, 2);
    EXPECT_EQ(Frame().Work().session.History().Entries().size(), 1U);
    EXPECT_THAT(Log(), HasSubstr("renderit Untitled 1\nrenderit done\n"));
}

TEST_F(LiveTest, ARenderIsNotHeldUpByIt) {
    AddToSite("multiplerenders 0\n");
    StartWithKnob();
    SwitchOnWithPicture();
    HoldScripts();
    TypeAmount("0.25");
    Settle();
    EXPECT_TRUE(IsEnabled(CommandId::kRenderIt));
    EXPECT_TRUE(IsEnabled(CommandId::kExportAll));
    EXPECT_FALSE(IsEnabled(CommandId::kStopRender)) << "Live is no render";
    ReleaseScripts();
    EXPECT_TRUE(WaitUntilPainted("= 0.25;"));
}

TEST_F(LiveTest, StopRenderLeavesItAlone) {
    StartWithKnob();
    SwitchOnWithPicture();
    HoldScripts();
    QTest::keyClick(&Frame(), Qt::Key_F1);
    ASSERT_TRUE(WaitUntil([this] { return Log().find("renderit ") != std::string::npos; }));
    QTest::keyClick(&Frame(), Qt::Key_F4);
    ASSERT_TRUE(WaitUntil([this] { return Log().find("renderit killed") != std::string::npos; }));
    ReleaseScripts();
    TypeAmount("0.25");
    EXPECT_TRUE(WaitUntilPainted("= 0.25;"));
    EXPECT_EQ(Processes().size(), 1U);
}

TEST_F(LiveTest, QuittingWhileItIsAtWorkAsksNothingAndLeavesNothing) {
    StartWithKnob();
    SwitchOnWithPicture();
    HoldScripts();
    const std::string document = directory / "saved.tvn";
    test::ChooseFileWhenDialogComes(document);
    Do(CommandId::kSaveAs);
    App().SetVariable("STEP", "1", false);
    Do(CommandId::kSave);
    Settle();
    const std::string work = WorkDir();
    Frame().close();
    EXPECT_TRUE(Frame().IsClosed());
    EXPECT_THAT(BoxesShown(), IsEmpty());
    EXPECT_FALSE(fs::exists(work));
    ASSERT_EQ(Processes().size(), 1U);
    EXPECT_TRUE(test::SleepUntil([this] { return test::IsGone(Processes()[0]); }));
}

TEST_F(LiveTest, ALibraryWithoutALiveCommandIsRenderedByItsScripts) {
    std::string site = ReadFile(directory / "tavrin/tiny/tavrn.def");
    directory.Write("tavrin/tiny/tavrn.def", site.substr(0, site.find("livecommand")));
    fs::permissions(
        directory.Write(
            "tavrin/tiny/bin/renderit",
            "#!/usr/bin/perl\nmy ($name, $number) = @ARGV;\nmy $work = $ENV{TAVRN_WORKDIR};\n"
            "open my $in, '<', \"$work/$name\" or die;\n"
            "open my $out, '>', \"$work/$number/$name.ppm\" or die;\nprint $out join(\"\", <$in>);\n"),
        fs::perms::owner_all);
    StartWithKnob();
    SwitchOnWithPicture();
    EXPECT_THAT(pictures[0].path, testing::EndsWith("/.live/1/0/Untitled.ppm"));
    TypeAmount("0.25");
    EXPECT_TRUE(WaitUntilPainted("= 0.25;"));
    EXPECT_EQ(Log(), "");
}

TEST_F(LiveTest, AnOutputThatIsShownIsFollowedAlsoWhileLiveIsOff) {
    AddToSite("probe probe/float.tvn\n");
    Start();
    AddBoxes(1, "Paint");
    directory.Write("tavrin/tiny/probe/float.tvn", Document().Store());
    StartWithKnob();
    Frame().Desk().LayoutAll();
    Do(CommandId::kFitToWindow);
    Settle();
    test::DeskPointer pointer(Frame());
    pointer.ChooseAt(pointer.Of(*Document().m_boxes.front(), "result"), {"Show This"});
    ASSERT_TRUE(WaitForPictures(1)) << Log();
    EXPECT_THAT(Painted(), AllOf(HasSubstr("= 0.5;"), HasSubstr("Ci = color(")));
    EXPECT_FALSE(IsChecked(CommandId::kLive));
    TypeAmount("0.25");
    EXPECT_TRUE(WaitUntilPainted("= 0.25;"));
    EXPECT_THAT(Painted(), HasSubstr("Ci = color("));
    test::GiveFocus(Frame().Desk().Desk());
    test::PressKeys("Esc");
    EXPECT_TRUE(WaitUntil([this] { return !App().GetSite().commands.AnyLineChildLeft(); }));
    EXPECT_EQ(Aside(), "");
}

TEST_F(LiveTest, WithLiveOnTheEndOfAProbeShowsTheNetworkAgain) {
    AddToSite("probe probe/float.tvn\n");
    Start();
    AddBoxes(1, "Paint");
    directory.Write("tavrin/tiny/probe/float.tvn", Document().Store());
    StartWithKnob();
    SwitchOnWithPicture();
    const std::string network = Painted();
    Frame().Work().probe.Show(*Document().m_boxes.front()->FindButton("result"));
    ASSERT_TRUE(WaitUntilPainted("Ci = color("));
    Frame().Work().probe.End();
    EXPECT_TRUE(WaitUntil([&] { return Painted() == network; }));
    EXPECT_EQ(Processes().size(), 1U);
}

// An endurance test, as those of Endurance_test.cpp

long ResidentMemory() {
    ::malloc_trim(0);
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) return std::stol(line.substr(6));
    }
    return 0;
}
// As WaitUntil, without its steps: there are thousands of waits.
bool WaitShortly(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + test::kPatience;
    QTimer wakes;  // where nothing comes at all
    wakes.start(100);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit) return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

long Entries(const std::string& directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

TEST_F(LiveTest, FiveThousandChangesLeaveNothingBehind) {
    StartWithKnob();
    SwitchOnWithPicture();
    int step = 0;
    const auto change = [&](int count) {
        for (int i = 0; i < count; ++i) {
            const size_t before = pictures.size();
            App().SetVariable("STEP", std::to_string(++step), false);
            ASSERT_TRUE(WaitShortly([&] { return pictures.size() > before; }));
        }
        pictures.clear();
        pictures.shrink_to_fit();
    };
    change(500);
    const long memory = ResidentMemory();
    const long descriptors = Entries("/proc/self/fd");
    const long threads = Entries("/proc/self/task");
    const long files = Entries(WorkDir());
    change(5000);
    const long grown = ResidentMemory() - memory;
    if (kMemoryTells) {
        EXPECT_LE(grown, 3 * 1024) << "kilobytes";
    }
    RecordProperty("kilobytes", std::to_string(grown));
    EXPECT_LE(Entries("/proc/self/fd"), descriptors);  // the toolkit has some for a while
    EXPECT_LE(Entries("/proc/self/task"), threads);
    EXPECT_EQ(Entries(WorkDir()), files);
    EXPECT_LE(Entries(WorkDir() + "/.live"), 4);
    EXPECT_EQ(Processes().size(), 1U);
    EXPECT_EQ(Log(), "");
}

}  // namespace
}  // namespace tavrin
