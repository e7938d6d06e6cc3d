// SPDX-License-Identifier: Apache-2.0
// Every command by each of its ways: from the menu, by its keys, from the toolbar.
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <filesystem>

#include "desk/FrameGeometry.h"
#include "ui/commands/SearchWork.h"
#include "ui/desk/Minimap.h"
#include "ui/library/MenuFinder.h"
#include "ui/library/OperatorToolBar.h"
#include "ui/library/TestLibrary.h"
#include "ui/search/SearchPopup.h"
#include "ui/support/CommandBench.h"

namespace tavrin {
namespace {

using test::Bench;
namespace fs = std::filesystem;
using test::BoxesShown;
using test::ChooseFileWhenDialogComes;
using test::PressWhenBoxComes;
using test::WaitUntil;
using testing::EndsWith;
using testing::HasSubstr;

// What stands before, what the user does in between by one way, what has come of it.
struct Effect {
    const char* name;
    CommandId id;
    const char* menus;  // whose items do it, joined by blanks
    const char* keys;   // joined by blanks
    bool onToolBar;
    void (*setUp)(Bench&);
    void (*check)(Bench&);
};

using Id = CommandId;

void Nothing(Bench&) {}

void OpensSaved(Bench& t) {
    ASSERT_TRUE(t.Frame().OpenDocumentFile(t.WriteDocument("mine")));
    t.Document().customshaderhelp = "changed";
    t.Document().SetModified();
    t.Settle();
}

// By their numbers.
std::vector<COpBox*> Boxes(Bench& t) {
    std::vector<COpBox*> boxes;
    for (const auto& box : t.Document().m_boxes) boxes.push_back(box.get());
    std::sort(boxes.begin(), boxes.end(),
              [](const COpBox* left, const COpBox* right) { return left->wid < right->wid; });
    return boxes;
}

// Three that are selected, none of them in line with another, each feeding the next.
void MakesAChain(Bench& t) {
    t.AddSelectedBoxes(3);
    const std::vector<COpBox*> boxes = Boxes(t);
    {
        const EditScope edit(t.Document(), "Chain");  // so that the way back stops here
        for (size_t i = 0; i < boxes.size(); ++i) {
            t.Document().edits.BoxMoved(*boxes[i]);
            boxes[i]->xypos[0] = static_cast<float>(130 * i * (i + 1));
            boxes[i]->xypos[1] = static_cast<float>(70 * i * (i + 1));
            if (i != 0) t.Desk().Connect(*boxes[i - 1]->outputs.at(0), *boxes[i]->inputs.at(0));
        }
        t.Frame().Desk().LayoutAll();
    }
    t.Settle();
}

void SelectsOnly(Bench& t, COpBox& box) {
    t.Desk().SelectBox(box.BoxTitleWid());
    t.Settle();
}

// That all three have the same of it, which they had not before.
void ExpectInLine(Bench& t, float (*measure)(const DeskRect&)) {
    for (const COpBox* box : Boxes(t)) {
        EXPECT_NEAR(measure(BoxRect(*box)), measure(BoxRect(*Boxes(t).front())), 0.01F) << box->wid;
    }
    t.Desk().Undo();
    EXPECT_GT(std::abs(measure(BoxRect(*Boxes(t).at(1))) - measure(BoxRect(*Boxes(t).front()))), 1.0F);
}

void ExpectEvenlySpread(Bench& t, float (*from)(const DeskRect&), float (*to)(const DeskRect&)) {
    const auto rect = [&t](size_t i) { return BoxRect(*Boxes(t).at(i)); };
    EXPECT_NEAR(from(rect(1)) - to(rect(0)), from(rect(2)) - to(rect(1)), 0.01F);
    t.Desk().Undo();
    EXPECT_GT(std::abs(from(rect(2)) - to(rect(1)) - (from(rect(1)) - to(rect(0)))), 1.0F);
}

// Where the title of a new frame, or the text of a new note, is typed.
QPlainTextEdit& FrameEditorOf(Bench& t) {
    auto* editor = t.Frame().Desk().findChild<QPlainTextEdit*>();
    EXPECT_TRUE(editor->isVisible());
    return *editor;
}

// Starts an export of one kind, of which the script is told by a place of its own.
void ChoosesTarget(Bench& t) {
    t.AddBoxes(1);
    ChooseFileWhenDialogComes(t.directory / "target.out");
}

const std::vector<Effect>& Effects() {
    static const std::vector<Effect> effects = {
        // File
        {"New", Id::kNew, "File", "Ctrl+N", true,
         [](Bench& t) {
             t.AddBoxes(1);
             PressWhenBoxComes("Discard");
         },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 0);
             EXPECT_THAT(t.Document().Path(), EndsWith("/untitled.tvn"));
             EXPECT_THAT(Bytes(BoxesShown().join('|')), HasSubstr("Save changes to "));
         }},
        {"Open", Id::kOpen, "File", "Ctrl+O", true,
         [](Bench& t) { ChooseFileWhenDialogComes(t.WriteDocument("two", 2)); },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 2);
             EXPECT_EQ(t.Document().Path(), t.directory / "two.tvn");
             EXPECT_THAT(Bytes(t.Frame().windowTitle()), HasSubstr("two.tvn"));
         }},
        {"Merge", Id::kMerge, "File", "", false,
         [](Bench& t) {
             ChooseFileWhenDialogComes(t.WriteDocument("two", 2));
             PressWhenBoxComes("OK");
         },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 0);
             EXPECT_EQ(t.Desk().m_pendingBoxes.size(), 2U);
             EXPECT_EQ(BoxesShown().join('|'),
                       "Warning: Freezing slider desk to prevent mass slider creation");
             EXPECT_TRUE(t.IsChecked(Id::kFreezeSliders));
         }},
        {"Save", Id::kSave, "File", "Ctrl+S", true, OpensSaved,
         [](Bench& t) {
             EXPECT_THAT(test::ReadFile(t.directory / "mine.tvn"), HasSubstr("changed"));
             EXPECT_FALSE(t.Document().IsModified());
             EXPECT_THAT(t.Log(), HasSubstr("saved " + t.directory / "mine.tvn at "));
         }},
        {"SaveAs", Id::kSaveAs, "File", "", false,
         [](Bench& t) {
             OpensSaved(t);
             ChooseFileWhenDialogComes(t.directory / "other.tvn");
         },
         [](Bench& t) {
             EXPECT_THAT(test::ReadFile(t.directory / "other.tvn"), HasSubstr("changed"));
             EXPECT_EQ(t.Document().Path(), t.directory / "other.tvn");
             EXPECT_THAT(Bytes(t.Frame().windowTitle()), HasSubstr("other.tvn"));
             EXPECT_FALSE(t.Document().IsModified());
         }},
        {"ExportOptions", Id::kExportOptions, "File", "", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Export Options")); }},
        {"ExportShaderSource", Id::kExportShaderSource, "File", "", false, ChoosesTarget,
         [](Bench& t) {
             EXPECT_TRUE(t.LogComesTo("exportall Untitled " + t.directory / "target.out - - - -\n"));
         }},
        {"ExportCompiledShader", Id::kExportCompiledShader, "File", "", false, ChoosesTarget,
         [](Bench& t) {
             EXPECT_TRUE(t.LogComesTo("exportall Untitled - " + t.directory / "target.out - - -\n"));
         }},
        {"ExportRenderInterface", Id::kExportRenderInterface, "File", "", false, ChoosesTarget,
         [](Bench& t) {
             EXPECT_TRUE(t.LogComesTo("exportall Untitled - - - " + t.directory / "target.out -\n"));
         }},
        {"ExportShaderInterface", Id::kExportShaderInterface, "File", "", false, ChoosesTarget,
         [](Bench& t) {
             EXPECT_TRUE(t.LogComesTo("exportall Untitled - - " + t.directory / "target.out - -\n"));
         }},
        {"ExportAll", Id::kExportAll, "File", "F7", true, [](Bench& t) { t.AddBoxes(1); },
         [](Bench& t) { EXPECT_TRUE(t.LogComesTo("exportall done")); }},
        {"RunScript", Id::kRunScript, "File", "", false,
         [](Bench& t) {
             ChooseFileWhenDialogComes(t.directory.Write("it.tvx", "form system \"echo\"\nsing loud\n"));
         },
         [](Bench& t) {
             EXPECT_THAT(t.Log(), HasSubstr("unknown action: sing loud"));
             EXPECT_FALSE(t.Frame().ActionDispatch().ScriptRunning());
         }},
        {"Exit", Id::kExit, "File", "Ctrl+Q", false, Nothing,
         [](Bench& t) {
             EXPECT_TRUE(t.Frame().IsClosed());
             EXPECT_FALSE(t.Frame().isVisible());
         }},

        // Edit
        {"Undo", Id::kUndo, "Edit", "Ctrl+Z", true, [](Bench& t) { t.AddBoxes(2); },
         [](Bench& t) { EXPECT_EQ(t.BoxCount(), 1); }},
        {"Redo", Id::kRedo, "Edit", "Ctrl+Shift+Z Ctrl+Y", true,
         [](Bench& t) {
             t.AddBoxes(2);
             t.Do(Id::kUndo);
             t.Settle();
         },
         [](Bench& t) { EXPECT_EQ(t.BoxCount(), 2); }},
        {"UndoHistory", Id::kUndoHistory, "Edit", "", false, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Undo History")); }},
        {"RenderHistory", Id::kRenderHistory, "Edit Render", "F6", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Render History")); }},
        {"Cut", Id::kCut, "Edit", "Ctrl+X Shift+Delete", true, [](Bench& t) { t.AddSelectedBoxes(2); },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 0);
             EXPECT_EQ(t.Desk().m_clipboardBoxes.size(), 2U);
         }},
        {"Copy", Id::kCopy, "Edit", "Ctrl+C", true, [](Bench& t) { t.AddSelectedBoxes(2); },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 2);
             EXPECT_EQ(t.Desk().m_clipboardBoxes.size(), 2U);
         }},
        {"Paste", Id::kPaste, "Edit", "Ctrl+V Shift+Insert", true,
         [](Bench& t) {
             t.AddSelectedBoxes(2);
             t.Do(Id::kCopy);
             t.Settle();
         },
         [](Bench& t) { EXPECT_EQ(t.Desk().m_pendingBoxes.size(), 2U); }},
        {"Delete", Id::kDelete, "Edit", "Delete", false, [](Bench& t) { t.AddSelectedBoxes(2); },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 0);
             EXPECT_TRUE(t.Desk().m_clipboardBoxes.empty());
         }},
        {"DeleteAndJoin", Id::kDeleteKeepingFlow, "Edit", "", false,
         [](Bench& t) {
             MakesAChain(t);
             SelectsOnly(t, *Boxes(t).at(1));
         },
         [](Bench& t) {
             ASSERT_EQ(t.BoxCount(), 2);
             EXPECT_EQ(Boxes(t).at(1)->inputs.at(0)->connections.First(), Boxes(t).at(0)->outputs.at(0).get());
             EXPECT_TRUE(t.Desk().m_clipboardBoxes.empty());
         }},
        {"MuteBoxes", Id::kMuteBoxes, "Edit", "Ctrl+Shift+M", false,
         [](Bench& t) {
             MakesAChain(t);
             SelectsOnly(t, *Boxes(t).at(1));
         },
         [](Bench& t) {
             EXPECT_EQ(Boxes(t).at(0)->muted, 0);
             EXPECT_EQ(Boxes(t).at(1)->muted, 1);
             EXPECT_TRUE(t.Document().IsModified());
         }},
        {"Tidy", Id::kTidy, "Edit", "Ctrl+Shift+T", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.bottom; });
         }},
        {"TidyOfOneSelected", Id::kTidy, "Edit", "Ctrl+Shift+T", false,
         [](Bench& t) {
             MakesAChain(t);
             SelectsOnly(t, *Boxes(t).at(1));
         },
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.bottom; });
         }},
        {"AlignLeft", Id::kAlignLeft, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.left; });
         }},
        {"AlignCentre", Id::kAlignCentre, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.Middle().x; });
         }},
        {"AlignRight", Id::kAlignRight, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.Right(); });
         }},
        {"AlignTop", Id::kAlignTop, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.Top(); });
         }},
        {"AlignMiddle", Id::kAlignMiddle, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.Middle().y; });
         }},
        {"AlignBottom", Id::kAlignBottom, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectInLine(t, [](const DeskRect& rect) { return rect.bottom; });
         }},
        {"DistributeAcross", Id::kDistributeAcross, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectEvenlySpread(
                 t, [](const DeskRect& rect) { return rect.left; },
                 [](const DeskRect& rect) { return rect.Right(); });
         }},
        {"DistributeDown", Id::kDistributeDown, "Edit", "", false, MakesAChain,
         [](Bench& t) {
             ExpectEvenlySpread(
                 t, [](const DeskRect& rect) { return rect.bottom; },
                 [](const DeskRect& rect) { return rect.Top(); });
         }},
        {"FrameSelectedBoxes", Id::kAddFrame, "Edit", "", false, [](Bench& t) { t.AddSelectedBoxes(2); },
         [](Bench& t) {
             ASSERT_EQ(t.Document().frames.size(), 1U);
             const DeskRect rect = FrameRect(t.Document().frames.begin()->second);
             for (const COpBox* box : Boxes(t)) EXPECT_TRUE(rect.Encloses(BoxRect(*box)));
             EXPECT_EQ(FrameEditorOf(t).toPlainText(), "Frame");
         }},
        {"FrameOfNoBox", Id::kAddFrame, "Edit", "", false, Nothing,
         [](Bench& t) {
             ASSERT_EQ(t.Document().frames.size(), 1U);
             const DeskRect rect = FrameRect(t.Document().frames.begin()->second);
             EXPECT_TRUE(t.Frame().Desk().View().Visible().Encloses(rect));
         }},
        {"AddNote", Id::kAddNote, "Edit", "", false, Nothing,
         [](Bench& t) {
             ASSERT_EQ(t.Document().frames.size(), 1U);
             EXPECT_EQ(t.Document().frames.begin()->second.kind, DeskFrame::Kind::kNote);
             EXPECT_EQ(FrameEditorOf(t).toPlainText(), "Note");
             EXPECT_TRUE(FrameEditorOf(t).hasFocus());
         }},
        {"SelectAllBoxes", Id::kSelectAllBoxes, "Edit", "Ctrl+A", true,
         [](Bench& t) {
             t.AddBoxes(3);
             t.Desk().UnselectAllBoxes();
             t.Settle();
         },
         [](Bench& t) { EXPECT_EQ(t.Selected(), 3); }},
        {"UnselectAllBoxes", Id::kUnselectAllBoxes, "Edit", "", true,
         [](Bench& t) { t.AddSelectedBoxes(3); }, [](Bench& t) { EXPECT_EQ(t.Selected(), 0); }},

        // Find
        {"BoxFinder", Id::kBoxFinder, "Find", "Ctrl+B", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Box Finder")); }},
        {"MenuFinder", Id::kMenuFinder, "Find", "Ctrl+M", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Menu Finder")); }},
        {"Search", Id::kSearch, "Find", "", false, Nothing,
         [](Bench& t) {
             EXPECT_TRUE(WaitUntil([&] {
                 return t.Frame().Search().Popup() != nullptr && t.Frame().Search().Popup()->isVisible();
             }));
         }},

        // View
        {"FitToWindow", Id::kFitToWindow, "View", "Ctrl+F", true,
         [](Bench& t) {
             t.AddBoxes(1);
             for (int step = 0; step < 3; ++step) t.Do(Id::kZoomOut);
             t.Document().offset[0] = 5000;
             t.Settle();
         },
         [](Bench& t) {
             EXPECT_EQ(t.Document().zoomFactor, 1);
             const WindowPoint middle = t.Frame().Desk().View().ToWindow(
                 BoxRect(*t.Document().m_boxes.front()).Middle());
             EXPECT_NEAR(middle.x, float(t.Frame().Desk().Desk().width()) / 2, 1);
             EXPECT_NEAR(middle.y, float(t.Frame().Desk().Desk().height()) / 2, 1);
         }},
        {"ZoomReset", Id::kZoomReset, "View", "Escape", true,
         [](Bench& t) {
             t.AddBoxes(1);
             t.Do(Id::kZoomIn);
             t.Settle();
         },
         [](Bench& t) { EXPECT_EQ(t.Document().zoomFactor, 1); }},
        {"ZoomIn", Id::kZoomIn, "View", "Up", true, [](Bench& t) { t.AddBoxes(1); },
         [](Bench& t) { EXPECT_FLOAT_EQ(t.Document().zoomFactor, 1.1F); }},
        {"ZoomOut", Id::kZoomOut, "View", "Down", true, [](Bench& t) { t.AddBoxes(1); },
         [](Bench& t) { EXPECT_FLOAT_EQ(t.Document().zoomFactor, 1 / 1.1F); }},
        {"Minimap", Id::kMinimap, "View", "", false,
         [](Bench& t) {
             t.AddBoxes(1);
             t.Document().offset[0] = 5000;
         },
         [](Bench& t) { EXPECT_TRUE(t.Frame().Desk().Map().isVisible()); }},
        {"HideMinimap", Id::kMinimap, "View", "", false,
         [](Bench& t) {
             t.AddBoxes(1);
             t.Document().offset[0] = 5000;
             t.Do(Id::kMinimap);
             EXPECT_TRUE(t.Frame().Desk().Map().isVisible());
             t.Settle();
         },
         [](Bench& t) { EXPECT_FALSE(t.Frame().Desk().Map().isVisible()); }},

        // Options
        {"FreezeSliders", Id::kFreezeSliders, "Options", "F3", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsChecked(Id::kFreezeSliders)); }},
        {"DisplayIcons", Id::kDisplayIcons, "Options", "", true,
         [](Bench& t) { t.Document().showiconimages = 0; },
         [](Bench& t) {
             EXPECT_EQ(t.Document().showiconimages, 1);
             EXPECT_TRUE(t.Document().IsModified());
         }},
        {"StraightTraceLines", Id::kStraightTraceLines, "Options", "Ctrl+T", true,
         [](Bench& t) { t.Document().linetype = 0; },
         [](Bench& t) {
             EXPECT_EQ(t.Document().linetype, 1);
             EXPECT_TRUE(t.Document().IsModified());
         }},
        {"LinesDrawOverBoxes", Id::kLinesOverBoxes, "Options", "", true,
         [](Bench& t) { t.Document().drawlinesoverboxes = 0; },
         [](Bench& t) {
             EXPECT_EQ(t.Document().drawlinesoverboxes, 1);
             EXPECT_TRUE(t.Document().IsModified());
         }},
        {"ShowVarnames", Id::kShowVarnames, "Options", "", true,
         [](Bench& t) { t.Document().showvarnames = 0; },
         [](Bench& t) {
             EXPECT_EQ(t.Document().showvarnames, 1);
             EXPECT_TRUE(t.Document().IsModified());
         }},
        {"LockDesk", Id::kLockDesk, "Options", "Ctrl+L", true, Nothing,
         [](Bench& t) {
             EXPECT_EQ(t.Document().lock, 1);
             EXPECT_TRUE(t.Document().IsModified());
             EXPECT_FALSE(t.Frame().Desk().isEnabled());
         }},
        {"UnlockDesk", Id::kLockDesk, "Options", "Ctrl+L", true,
         [](Bench& t) {
             t.Do(Id::kLockDesk);
             t.Settle();
         },
         [](Bench& t) {
             EXPECT_EQ(t.Document().lock, 0);
             EXPECT_TRUE(t.Frame().Desk().isEnabled());
         }},
        {"StatusBar", Id::kStatusBar, "Options", "", false, Nothing,
         [](Bench& t) { EXPECT_FALSE(t.Frame().StatusBox().isVisible()); }},
        {"ScrollBars", Id::kScrollBars, "Options", "", false, Nothing,
         [](Bench& t) {
             const auto bars = t.Frame().Desk().findChildren<QScrollBar*>();
             EXPECT_EQ(bars.size(), 2);
             for (const QScrollBar* bar : bars) EXPECT_FALSE(bar->isVisible());
         }},
        {"KeepHistory", Id::kKeepHistory, "Options", "", false, [](Bench& t) { t.AddBoxes(1); },
         [](Bench& t) {
             t.Do(Id::kRenderIt);
             EXPECT_TRUE(t.LogComesTo("renderit done"));
             EXPECT_TRUE(t.Frame().Work().session.History().Entries().empty());
         }},
        {"SoundEffects", Id::kSoundEffects, "Options", "", false, Nothing,
         [](Bench& t) {
             EXPECT_TRUE(t.App().GetSite().quietMode);
             EXPECT_EQ(t.App().GetSite().environment.Get("TAVRN_QUIET"), "1");
         }},
        {"DebugMode", Id::kDebugMode, "Options", "", false, Nothing,
         [](Bench& t) {
             EXPECT_TRUE(t.App().GetSite().debugMode);
             EXPECT_EQ(t.App().GetSite().environment.Get("TAVRN_DEBUG"), "1");
         }},
        {"RenderOptions", Id::kRenderOptions, "Options", "F2", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Render Options")); }},
        {"ArgumentEditor", Id::kArgumentEditor, "Options", "F5", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Argument Editor")); }},
        {"HideArgumentEditor", Id::kArgumentEditor, "Options", "F5", true,
         [](Bench& t) {
             t.Do(Id::kArgumentEditor);
             t.Settle();
         },
         [](Bench& t) { EXPECT_FALSE(t.IsUp("Argument Editor")); }},
        {"ShowWallpaper", Id::kShowWallpaper, "Options", "", false,
         [](Bench& t) {
             t.SetRedWallpaper();
             EXPECT_EQ(t.RedPixels(), 60 * 40);
         },
         [](Bench& t) { EXPECT_EQ(t.RedPixels(), 0); }},
        {"TileWallpaper", Id::kTileWallpaper, "Options", "", false,
         [](Bench& t) {
             t.SetRedWallpaper();
             EXPECT_EQ(t.RedPixels(), 60 * 40);
         },
         [](Bench& t) {
             const QSize size = t.DeskPicture().size();
             EXPECT_EQ(t.RedPixels(), size.width() * size.height());
         }},
        {"SetWallpaper", Id::kSetWallpaper, "Options", "", false,
         [](Bench& t) {
             const auto file = test::SgiTestFile::Plain(60, 40, 3, {255, 0, 0, 255});
             ChooseFileWhenDialogComes(t.directory.Write("red.sgi", file.Bytes()));
         },
         [](Bench& t) { EXPECT_EQ(t.RedPixels(), 60 * 40); }},
        {"ReloadOperators", Id::kReloadOperators, "Options", "", false,
         [](Bench& t) {
             t.AddBoxes(1, "Disc");
             const std::string menu = t.directory / "tavrin/tiny/menu/";
             t.directory.Write("tavrin/tiny/menu/0500.More/0010.Extra",
                               test::ReadFile(menu + "0100.Constant"));
             fs::remove(menu + "0400.Shapes/0010.Disc");
             t.Document().toolbar = {"Extra"};
         },
         [](Bench& t) {
             EXPECT_EQ(t.BoxCount(), 1) << "a box on the desk goes with its operator";
             EXPECT_EQ(t.App().Registry().FindByName("Disc"), nullptr);
             EXPECT_NE(t.App().Registry().FindByName("Extra"), nullptr);
             const QStringList operators = test::RowsOf(t.Frame().Windows().Get<MenuFinder>());
             EXPECT_TRUE(operators.contains("Extra"));
             EXPECT_FALSE(operators.contains("Disc"));
             EXPECT_EQ(t.Frame().menuBar()->actions().last()->text(), "More");
             const auto* button = t.Frame().OperatorBar().findChild<QPushButton*>("operator");
             ASSERT_NE(button, nullptr);
             EXPECT_EQ(button->text(), "Extra");
             EXPECT_EQ(t.Frame().StatusBox().Status(),
                       "Operators reloaded: " + QString::number(t.App().Registry().Entries().size()));
             EXPECT_FALSE(t.Frame().IsClosed());
         }},

        // Render
        {"RenderIt", Id::kRenderIt, "Render", "F1", true, [](Bench& t) { t.AddBoxes(1); },
         [](Bench& t) {
             EXPECT_TRUE(t.LogComesTo("renderit done"));
             EXPECT_EQ(t.Frame().Work().session.m_nextRender, 2);
         }},
        {"StopRender", Id::kStopRender, "Render", "F4", true,
         [](Bench& t) {
             t.AddBoxes(1);
             t.HoldScripts();
             t.Do(Id::kRenderIt);
             EXPECT_TRUE(t.LogComesTo("renderit "));
             t.Settle();
         },
         [](Bench& t) {
             EXPECT_TRUE(WaitUntil([&] { return !t.ChildRuns(); }));
             EXPECT_TRUE(t.LogComesTo("renderit killed"));
         }},
        {"Live", Id::kLive, "Render", "", true, Nothing, [](Bench& t) { EXPECT_TRUE(t.IsChecked(Id::kLive)); }},
        {"LiveThatIsOn", Id::kLive, "Render", "", true, [](Bench& t) { t.Do(Id::kLive); },
         [](Bench& t) { EXPECT_FALSE(t.IsChecked(Id::kLive)); }},
        {"CompareRenders", Id::kCompareRenders, "Render", "", false, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Compare Renders")); }},
        {"Check", Id::kCheck, "Render", "", false, Nothing, [](Bench& t) { EXPECT_TRUE(t.IsUp("Check")); }},
        {"Source", Id::kSource, "Render", "", false, Nothing, [](Bench& t) { EXPECT_TRUE(t.IsUp("Source")); }},
        {"PictureWindow", Id::kPictureWindow, "Render", "", false,
         [](Bench& t) {
             t.environment.Set("TAVRN_VIEW", test::BuildPath("bin/tavrin-view"));
             std::filesystem::create_directory(t.directory / "runtime");
             t.environment.Set("XDG_RUNTIME_DIR", t.directory / "runtime");
             t.Start();
         },
         [](Bench& t) {
             EXPECT_TRUE(WaitUntil([&] { return t.IsChecked(Id::kPictureWindow); }));
             t.Do(Id::kPictureWindow);
             EXPECT_TRUE(WaitUntil([&] { return !t.IsChecked(Id::kPictureWindow); }));
         }},
        {"KeepRender", Id::kKeepRender, "Render", "", false,
         [](Bench& t) {
             EXPECT_TRUE(t.Frame().OpenDocumentFile(t.WriteDocument("keep")));
             t.Do(Id::kRenderIt);
             const RenderRecords& records = t.Frame().Work().session.records;
             EXPECT_TRUE(
                 WaitUntil([&] { return records.Newest()->state != RenderRecord::State::kRunning; }));
             t.Settle();
         },
         [](Bench& t) { EXPECT_TRUE(std::filesystem::exists(t.directory / "keep-1.tvn")); }},
        {"DisplayLog", Id::kDisplayLog, "Render", "F8", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Log")); }},
        {"DisplayLogThatIsUp", Id::kDisplayLog, "Render", "F8", true,
         [](Bench& t) {
             t.Do(Id::kDisplayLog);
             test::ShowActive(t.Frame());
         },
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Log")); }},
        {"ClearLog", Id::kClearLog, "Render", "Ctrl+Delete", true,
         [](Bench& t) {
             t.App().GetSite().report.LogLine("a line");
             EXPECT_THAT(t.Log(), HasSubstr("a line"));
         },
         [](Bench& t) { EXPECT_EQ(t.Log(), ""); }},
        {"ViewShaderSource", Id::kViewShaderSource, "Render", "F9", true, [](Bench& t) { t.AddBoxes(1); },
         [](Bench& t) { EXPECT_THAT(t.Edited("Untitled"), HasSubstr("surface Untitled")); }},
        {"ViewRenderInterface", Id::kViewRenderInterface, "Render", "F10", false,
         [](Bench& t) { t.AddBoxes(1); }, [](Bench& t) { EXPECT_THAT(t.Edited("Untitled.tmp"), HasSubstr("/renderiface\n")); }},
        {"ViewShaderInterface", Id::kViewShaderInterface, "Render", "F11", false,
         [](Bench& t) { t.AddBoxes(1); }, [](Bench& t) { EXPECT_THAT(t.Edited("Untitled.tmp"), HasSubstr("/guiprefilter\n")); }},

        // Help
        {"ShaderHelp", Id::kShaderHelp, "Help", "", true, Nothing,
         [](Bench& t) { EXPECT_TRUE(t.IsUp("Help Editor")); }},
        {"OnlineDocumentation", Id::kOnlineDocumentation, "Help", "", false, Nothing,
         [](Bench& t) {
             EXPECT_TRUE(WaitUntil([&] { return fs::exists(t.directory / "documentation"); }));
             EXPECT_EQ(test::ReadFile(t.directory / "documentation"), "https://example.org/tavrin\n");
         }},
        {"About", Id::kAbout, "Help", "", true, [](Bench&) { PressWhenBoxComes("OK"); },
         [](Bench&) { EXPECT_THAT(Bytes(BoxesShown().join('|')), HasSubstr("About Tavrin: ")); }},
    };
    return effects;
}

struct Way {
    enum class Kind { kMenu, kKey, kToolBar } kind;
    QString name;  // the menu's title, the keys
};

struct EffectByWay {
    const Effect* effect;
    Way way;
};

std::vector<EffectByWay> AllWays() {
    std::vector<EffectByWay> all;
    for (const Effect& effect : Effects()) {
        for (const QString& menu : QString(effect.menus).split(' ', Qt::SkipEmptyParts))
            all.push_back({&effect, {Way::Kind::kMenu, menu}});
        for (const QString& key : QString(effect.keys).split(' ', Qt::SkipEmptyParts))
            all.push_back({&effect, {Way::Kind::kKey, key}});
        if (effect.onToolBar) all.push_back({&effect, {Way::Kind::kToolBar, "MainToolBar"}});
    }
    return all;
}

std::string NameOf(const testing::TestParamInfo<EffectByWay>& info) {
    const Way& way = info.param.way;
    const std::string effect = info.param.effect->name;
    if (way.kind == Way::Kind::kMenu) return effect + "_FromMenu" + Bytes(way.name);
    if (way.kind == Way::Kind::kToolBar) return effect + "_FromToolBar";
    return effect + "_By" + Bytes(QString(way.name).remove('+'));
}

// Extensions for each kind of file, documentation to be opened, and a program that opens it.
class CommandEffects : public Bench, public testing::WithParamInterface<EffectByWay> {
  protected:
    CommandEffects() {
        const std::string site = "tavrin/tiny/tavrn.def";
        directory.Write(site, test::ReadFile(directory / site) +
                                  "ext.shadersource .src\next.compiledshader .cmp\next.renderiface .rif\n");
        directory.Write("tavrin/Readme.url", "[InternetShortcut]\nURL=https://example.org/tavrin\n");
        fs::permissions(directory.Write("programs/xdg-open",
                                        "#!/bin/sh\nprintf '%s\\n' \"$1\" >\"$TAVRN_DIR/../opened\"\n"
                                        "mv \"$TAVRN_DIR/../opened\" \"$TAVRN_DIR/../documentation\"\n"),
                        fs::perms::owner_all);
        environment.Set("PATH", directory / "programs:" + environment.Get("PATH").value_or(""));
    }

    void Go() {
        QAction& action = Action(GetParam().effect->id);
        const Way& way = GetParam().way;
        switch (way.kind) {
            case Way::Kind::kMenu:
                return test::ChooseInMenu(Frame(), way.name, action);
            case Way::Kind::kKey:
                return test::PressKeys(way.name);
            case Way::Kind::kToolBar:
                return test::ClickOnToolBar(Frame(), "MainToolBar", action);
        }
    }
};

TEST_P(CommandEffects, Come) {
    Start();
    GetParam().effect->setUp(*this);
    ASSERT_FALSE(HasFatalFailure());
    Go();
    ASSERT_FALSE(HasFatalFailure());
    Settle();
    GetParam().effect->check(*this);
}

INSTANTIATE_TEST_SUITE_P(Commands, CommandEffects, testing::ValuesIn(AllWays()), NameOf);

TEST(CommandEffectsTable, EveryCommandThatAMenuHoldsHasARow) {
    std::set<CommandId> missing = {Id::kHaltScript};
    const auto collect = [&](const auto& self, const std::vector<Slot>& places) -> void {
        for (const Slot& place : places) {
            if (place.kind == Slot::Kind::kCommand) missing.insert(place.id);
            self(self, place.items);
        }
    };
    for (const MenuSpec& menu : MenuBarLayout()) collect(collect, menu.slots);
    for (const Effect& effect : Effects()) missing.erase(effect.id);
    // Halt Script and Examples have tests of their own; the sliders' need panels, and stand with those.
    EXPECT_THAT(missing,
                testing::UnorderedElementsAre(Id::kHaltScript, Id::kExamples, Id::kStowAllSliders,
                                              Id::kUnstowAllSliders, Id::kPinAllSliders, Id::kUnpinAllSliders,
                                              Id::kLockAllSliders, Id::kUnlockAllSliders));
}

}  // namespace
}  // namespace tavrin
