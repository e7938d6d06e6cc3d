// SPDX-License-Identifier: Apache-2.0
// The context menus of the desk as data: what they offer for a box or a button, and what is done when
// something is chosen.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desk/DeskGestures.h"

namespace tavrin {

class BoxMarks;

class TypeTables;

// The commands of the context menus.
namespace desk_command {
inline constexpr int kNone = 0;  // of titles: nothing is done
inline constexpr int kCopyBox = 36865;
inline constexpr int kDeleteBox = 36866;
inline constexpr int kCopyButtonAbove = 36867;
inline constexpr int kCopyButtonBelow = 36868;
inline constexpr int kDeleteButton = 36869;
inline constexpr int kDeleteConnections = 36870;
inline constexpr int kEditFile = 36871;
inline constexpr int kArgument = 36872;
inline constexpr int kShowThis = 36873;
inline constexpr int kEditFrame = 36880;
inline constexpr int kDeleteFrame = 36881;
// One for each colour of frames and notes.
inline constexpr int kFirstFrameColor = 36890;
// One for each cast of a button, by its index. Casts beyond the last are not offered.
inline constexpr int kFirstCast = 53248;
inline constexpr int kLastCast = 53504;
}  // namespace desk_command

// A line of a menu.
struct DeskMenuEntry {
    enum class Kind { kCommand, kSeparator, kSubmenu, kHelp };

    Kind kind = Kind::kCommand;
    std::string text = {};  // as it is to be shown; of kHelp the whole help text
    int id = desk_command::kNone;
    bool enabled = true;
    bool checkable = false;
    bool checked = false;
    std::vector<DeskMenuEntry> entries = {};  // of kSubmenu
};
using DeskMenuEntries = std::vector<DeskMenuEntry>;

// What is offered for a box outside its buttons, and for a button. The texts are copies: boxes may go while a
// menu is open. `marks` are what the help begins with, `isShown` tells of an output whether it stands for the
// picture; nothing where none can.
DeskMenuEntries BoxMenu(const COpBox& box, const BoxMarks* marks = nullptr);
DeskMenuEntries ButtonMenu(const COpButton& button, const TypeTables& types,
                           std::optional<bool> isShown = std::nullopt, const BoxMarks* marks = nullptr);

// For a frame or a note.
DeskMenuEntries FrameMenu(const DeskFrame& frame);

// The lines of the help text of a box or a button. Each CR LF ends a line, a CR or LF alone as well; what
// ends the last line begins no further one. The empty text has no lines.
std::vector<std::string_view> HelpTextLines(std::string_view help);

// Opens menus and does what is chosen in them. While a menu is open the document may change, also under the
// menu's own box: commands whose box or button is gone, or whose document is locked by now, do nothing.
// Owned by the pane; all that it is given outlives it. What fails is alerted by the desk or the hook.
class DeskMenu {
  public:
    struct Needs {
        CTvDoc& document;
        COpDesk& desk;
        DeskGestures& gestures;
        DeskView& windows;
        const TypeTables& types;
        // Opens the file of an operator in the user's editor.
        std::function<void(const std::string& operatorName)> editFile;
        // Which output stands for the picture, null for none, and lets one do so, or no more. Without them
        // that is not offered.
        std::function<const COpButton*()> shownOutput = {};
        std::function<void(COpButton& output)> toggleShown = {};
        // Lets the user edit the text of a frame or note. Without it that does nothing.
        std::function<void(int number)> editFrame = {};
        // What the last run says of boxes; null for nothing.
        const BoxMarks* marks = nullptr;
    };
    explicit DeskMenu(Needs needs) : m_needs(std::move(needs)) {}

    // The menu for what lies there, which the commands then act on. Nothing where there is no box and no hold
    // of a frame, while a gesture runs and while the document is locked.
    std::optional<DeskMenuEntries> Open(DeskPoint at);
    // Does the command of an entry.
    void Choose(int id);

  private:
    std::optional<DeskMenuEntries> OpenForFrame(DeskPoint at);
    bool TargetStands() const;
    void ChooseForBox(int id, COpBox& box);
    void ChooseForButton(int id);
    void ChooseForFrame(int id);

    Needs m_needs;
    // Of what the menu was opened on. An address alone may belong to another object by now.
    uint64_t m_boxSerial = 0;
    uint64_t m_buttonSerial = 0;  // 0 without a button
    int m_frame = 0;              // number of the frame or note; 0 without one
};

}  // namespace tavrin
