// SPDX-License-Identifier: Apache-2.0
// What the tests of the Argument Editor share: a document with its editor, and a user's hands on its rows.
#pragma once

#include <QCheckBox>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>
#include <string>

#include "support/TestHost.h"
#include "ui/base/Text.h"
#include "ui/sliders/ArgumentEditor.h"
#include "ui/sliders/ArgumentRow.h"
#include "ui/support/Windows.h"
#include "ui/windows/OneLineField.h"

namespace tavrin::test {

// The editor hears of changes as it does in the frame.
class ArgumentTest : public DocumentTest {
  protected:
    using Field = ArgumentField;

    // A box in the network with that many free inputs, i0, i1 and so on, and an output.
    COpBox& AddBox(const std::string& name, int wid, size_t inputs) {
        std::string definition = "output out { float out }\n";
        for (size_t i = 0; i < inputs; ++i)
            definition += "input i" + std::to_string(i) + " { float { 0 0 1 0 %g } }\n";
        const EditScope edit(document, "Add");
        COpBox& box = Add(MakeBox(name, definition, wid));
        document.edits.BoxDropped(box);
        return box;
    }
    void RemoveBox(const COpBox& box) {
        const EditScope edit(document, "Remove");
        document.edits.BoxWent(box, Edits::Stood::kInNetwork);
        document.m_boxes.remove_if([&box](const auto& known) { return known.get() == &box; });
    }
    void Connect(COpBox& from, COpButton& input) {
        const EditScope edit(document, "Wire");
        document.edits.WiresChanged();
        input.Connect(*from.outputs.at(0));
    }
    void Cut(COpButton& input) {
        const EditScope edit(document, "Cut");
        document.edits.WiresChanged();
        input.Disconnect();
    }
    // As another window does it.
    template <typename Work>
    void Tune(COpButton& button, Work work) {
        const EditScope edit(document, "Tune");
        document.edits.ButtonTuned(button);
        work(button);
    }
    void SetArg(COpButton& button, int arg) {
        const EditScope edit(document, "Argument");
        document.edits.ButtonTouched(button);
        button.arg = arg;
    }

    CArgumentRow& RowAt(size_t row) { return *editor.RowWindows().at(row); }
    CArgumentRow* RowOf(const COpButton& button) {
        for (const auto& [row, window] : editor.RowWindows()) {
            if (window->Button() == &button) return window;
        }
        return nullptr;
    }
    QCheckBox& Flag(size_t row) { return static_cast<QCheckBox&>(RowAt(row).Control(Field::kFlag)); }
    OneLineField& Name(size_t row) { return static_cast<OneLineField&>(RowAt(row).Control(Field::kName)); }
    OneLineField& Comment(size_t row) {
        return static_cast<OneLineField&>(RowAt(row).Control(Field::kComment));
    }
    // The captions of all rows that have a window, as they are read.
    QStringList Captions() {
        QStringList captions;
        for (const auto& [row, window] : editor.RowWindows()) captions << Flag(row).text().replace("&&", "&");
        return captions;
    }
    QScrollBar& Bar() { return *editor.findChild<QScrollBar*>(); }
    const QWidget& Client() { return *RowAt(editor.RowWindows().begin()->first).parentWidget(); }
    void ClickFlag(size_t row) {
        QTest::mouseClick(&Flag(row), Qt::LeftButton, {}, {Flag(row).height() / 2, Flag(row).height() / 2});
    }
    void TurnWheel(QWidget& over, int notches) {
        const QPointF at = over.rect().center();
        QWheelEvent wheel(at, over.mapToGlobal(at), {}, {0, -120 * notches}, Qt::NoButton, {},
                          Qt::NoScrollPhase, false);
        QSpontaneKeyEvent::setSpontaneous(&wheel);  // others are not passed on to parents
        qApp->notify(&over, &wheel);
    }
    // A height at which the client area shows that many rows.
    void ShowRows(int rows) {
        editor.resize(editor.width(), rows * editor.Rows().RowHeight());
        ShowActive(editor);
        ASSERT_TRUE(WaitUntil([&] { return editor.height() == rows * editor.Rows().RowHeight(); }));
    }
    void ExpectInStep();

    CArgumentEditor editor{nullptr, document};
    Edits::Subscription listener =
        document.edits.Observe([this](const Change& change) { editor.Follow(change); });
};

// Rows, document and windows say the same, and only what is in view has windows.
inline void ArgumentTest::ExpectInStep() {
    const auto buttons = document.CollectUnconnectedInputs();
    const ArgumentRows& rows = editor.Rows();
    ASSERT_EQ(rows.Count(), buttons.size());
    for (size_t row = 0; row < buttons.size(); ++row) ASSERT_EQ(rows.ButtonAt(row), buttons[row]) << row;
    for (const auto& [row, window] : editor.RowWindows()) {
        const COpButton& button = *buttons.at(row);
        EXPECT_EQ(window->Button(), &button);
        EXPECT_TRUE(window->isVisible());
        EXPECT_EQ(window->pos(), QPoint(0, rows.TopOf(row)));
        EXPECT_EQ(Bytes(Flag(row).accessibleName()), button.VariableName({document.preparedVariables}));
        EXPECT_EQ(Flag(row).isChecked(), button.arg != 0);
        EXPECT_EQ(Bytes(Name(row).text()), button.argname);
        EXPECT_EQ(Bytes(Comment(row).text()), button.comments);
        EXPECT_EQ(Flag(row).isEnabled(), button.disableargflag == 0);
        EXPECT_EQ(Name(row).isEnabled(), button.arg != 0);
        EXPECT_EQ(Comment(row).isEnabled(), button.arg != 0);
    }
    const ArgumentRows::Span seen = rows.InView(0);
    for (size_t row = seen.begin; row < seen.end; ++row)
        EXPECT_TRUE(editor.RowWindows().contains(row)) << "nothing is seen of row " << row;
    EXPECT_LE(editor.RowWindows().size(), seen.end - seen.begin + 3)
        << "those beside, and the one with the focus";
    EXPECT_EQ(Bar().maximum(), rows.LastScrollTop());
    EXPECT_EQ(Bar().value(), rows.ScrollTop());
}

}  // namespace tavrin::test
