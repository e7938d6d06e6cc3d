// SPDX-License-Identifier: Apache-2.0
// What the picture window consists of.
#include <QActionGroup>
#include <QComboBox>
#include <QSplitter>
#include <QToolBar>
#include <QVBoxLayout>

#include "icons/Icons.h"
#include "view/PictureStrip.h"
#include "view/PictureWindow.h"
#include "view/StatusLine.h"

namespace tavrin {

namespace {

using Mode = PictureCanvas::Mode;

constexpr int kIcon = 20;
constexpr int kGains[] = {1, 2, 4, 8, 16, 32, 64};
constexpr int kStripShare = 3;  // the picture gets so many times the room of the strip

}  // namespace

void PictureWindow::CreateViews() {
    m_canvas = new PictureCanvas(this, {.told =
                                            [this] {
                                                if (m_status != nullptr) m_status->Tell(*m_canvas);
                                            },
                                        .painted = [this] { HasPainted(); }});
    m_strip = new PictureStrip(this, m_book,
                               {.choose = [this](PictureEntry& entry) { Choose(entry); },
                                .restore = [this](PictureEntry& entry) { Restore(entry); },
                                .compare = [this](PictureEntry& entry) { CompareWith(entry); },
                                .menu = [this](PictureEntry& entry, QPoint at) { OpenMenu(entry, at); }});
    m_status = new StatusLine(this);
    m_splitter = new QSplitter(Qt::Vertical, this);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->addWidget(m_canvas);
    m_splitter->addWidget(m_strip);
    m_splitter->setStretchFactor(0, kStripShare);
    m_splitter->setStretchFactor(1, 1);
    auto* central = new QWidget(this);
    auto* column = new QVBoxLayout(central);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_splitter, 1);
    column->addWidget(m_status);
    setCentralWidget(central);
    m_canvas->setFocus();
}

QAction* PictureWindow::AddAction(const QString& icon, const QString& name, const QString& keys,
                                  const std::function<void()>& act) {
    auto* action = new QAction(Icon(icon), name, this);
    action->setShortcuts(QKeySequence::listFromString(keys));
    action->setToolTip(name + " [" + action->shortcut().toString(QKeySequence::NativeText) + "]");
    connect(action, &QAction::triggered, this, act);
    addAction(action);
    return action;
}

void PictureWindow::AddMode(Mode mode, const QString& icon, const QString& name, const QString& keys) {
    QAction* action = AddAction(icon, name, keys, [this, mode] { ChooseMode(mode); });
    action->setCheckable(true);
    action->setData(static_cast<int>(mode));
    m_modes->addAction(action);
}

void PictureWindow::CreateBar() {
    auto* bar = addToolBar("Pictures");
    bar->setObjectName("bar");
    bar->setMovable(false);
    bar->setIconSize({kIcon, kIcon});
    bar->addAction(AddAction("fit-window", "Fit", "F; 0", [this] { m_canvas->Fit(); }));
    bar->addAction(AddAction("zoom-reset", "Actual size", "1", [this] { m_canvas->ActualSize(); }));
    bar->addAction(AddAction("zoom-out", "Zoom out", "-", [this] { m_canvas->ZoomBy(-1); }));
    bar->addAction(AddAction("zoom-in", "Zoom in", "+; =", [this] { m_canvas->ZoomBy(1); }));
    bar->addSeparator();
    m_modes = new QActionGroup(this);
    AddMode(Mode::kSingle, "picture-single", "One picture", "Esc");
    AddMode(Mode::kToggle, "compare-toggle", "Compare: one, then the other", "T");
    AddMode(Mode::kWipe, "compare-wipe", "Compare: wipe", "W");
    AddMode(Mode::kDifference, "compare-difference", "Compare: difference", "D");
    bar->addActions(m_modes->actions());
    AddAction({}, "The other picture", "Space", [this] { Flip(); });
    m_gain = new QComboBox(this);
    m_gain->setObjectName("gain");
    m_gain->setToolTip("How many times the difference is shown");
    for (const int gain : kGains) m_gain->addItem(QString::fromUtf8("\xc3\x97%1").arg(gain), gain);
    connect(m_gain, &QComboBox::currentIndexChanged, this,
            [this] { m_canvas->SetGain(m_gain->currentData().toInt()); });
    m_gainOnBar = bar->addWidget(m_gain);
    auto* space = new QWidget(this);
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    bar->addWidget(space);
    m_save = AddAction("save", "Save a copy", "Ctrl+S", [this] {
        if (m_shown != nullptr) Save(*m_shown);
    });
    m_copy = AddAction("copy", "Copy", "Ctrl+C", [this] { Copy(); });
    m_keep = AddAction("keep-render", "Keep with the document", "K", [this] {
        if (m_shown != nullptr) Keep(*m_shown);
    });
    bar->addActions({m_save, m_copy, m_keep});
    AddAction({}, "Close", "Ctrl+W; Ctrl+Q", [this] { close(); });
    ShowMode(Mode::kSingle);
}

}  // namespace tavrin
