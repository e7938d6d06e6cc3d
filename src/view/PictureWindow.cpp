// SPDX-License-Identifier: Apache-2.0
#include "view/PictureWindow.h"

#include <QActionGroup>
#include <QClipboard>
#include <QComboBox>
#include <QFileDialog>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>
#include <QSettings>
#include <QSplitter>
#include <algorithm>
#include <utility>

#include "base/Files.h"
#include "icons/Icons.h"
#include "view/PictureStrip.h"
#include "view/SaveCopy.h"
#include "view/StatusLine.h"

namespace tavrin {

namespace {

using Kind = PictureEntry::Kind;
using EntryState = PictureEntry::State;
using Mode = PictureCanvas::Mode;

constexpr QSize kFirstSize(520, 760);

}  // namespace

PictureWindow::PictureWindow(QSettings& settings, Tell tell)
    : m_tell(std::move(tell)),
      m_book(
          {.listChanged =
               [this] {
                   m_strip->ListChanged();
                   RefreshActions();
               },
           .changed = [this](PictureEntry& entry) { Changed(entry); },
           .came = [this](PictureEntry& entry) { Came(entry); },
           .leaves = [this](PictureEntry& entry) { Leaves(entry); },
           .isShown = [this](const PictureEntry& entry) { return &entry == m_shown || &entry == m_other; }}),
      m_dock(*this, settings) {
    setObjectName("PictureWindow");
    setWindowTitle("Pictures");
    setWindowIcon(ApplicationIcon());
    setAttribute(Qt::WA_ShowWithoutActivating);
    setContextMenuPolicy(Qt::NoContextMenu);
    resize(kFirstSize);
    CreateViews();
    CreateBar();
    m_dock.Restore();
    Refresh();
}

PictureWindow::~PictureWindow() = default;

void PictureWindow::ShowInPlace(std::chrono::milliseconds most, std::function<void()> givenUp) {
    m_givenUp = std::move(givenUp);
    m_show.setSingleShot(true);
    m_show.callOnTimeout([this] { show(); });
    m_show.start(m_dock.IsSettled() ? std::chrono::milliseconds(0) : most);
}

void PictureWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    // The strip stands where there is room.
    constexpr double kWide = 1.25;
    m_splitter->setOrientation(width() > height() * kWide ? Qt::Horizontal : Qt::Vertical);
}

void PictureWindow::Take(const PictureMessage& message) {
    const std::string& verb = message.Verb();
    const std::string desk = message.Text("desk");
    if (verb == "comeup") return ComeUp();
    if (verb == "close") return GoAway();
    if (verb == "compare") return CompareRenders(message);
    if (verb == "frame") {
        constexpr int64_t kMost = 1 << 20;
        const auto word = [&](const char* key) {
            return static_cast<int>(std::clamp<int64_t>(message.Number(key).value_or(0), -kMost, kMost));
        };
        const QRect frame(word("x"), word("y"), word("w"), word("h"));
        if (!frame.isEmpty()) m_dock.FrameMoved(desk, frame);
        if (m_show.isActive()) m_show.start(0);
        return;
    }
    m_book.Take(message);
}

void PictureWindow::DeskCame(const std::string& desk) {
    m_book.DeskCame(desk);
    RefreshActions();
}

void PictureWindow::DeskWent(const std::string& desk) {
    m_dock.DeskWent(desk);
    m_book.DeskWent(desk);
    Refresh();
}

// The book

void PictureWindow::Came(PictureEntry& entry) {
    if (entry.kind == Kind::kReference && m_shown != nullptr) return SetOther(&entry);
    if (entry.kind == Kind::kRender && &entry != NewestRender()) return;
    m_returnsToLive = m_returnsToLive || (m_shown != nullptr && m_shown->kind == Kind::kLive);
    // What was shown is what one will want to compare with.
    if (m_other == &entry) m_other = nullptr;
    Show(&entry);
}

void PictureWindow::Changed(PictureEntry& entry) {
    m_strip->EntryChanged(entry);
    const bool isLive = entry.kind == Kind::kLive && entry.id != m_toldShown && entry.picture != nullptr;
    if (isLive && m_returnsToLive && &entry != m_shown) return Show(&entry);
    if (&entry == m_shown || &entry == m_other) Refresh();
}

void PictureWindow::Leaves(PictureEntry& entry) {
    if (&entry == m_other) m_other = nullptr;
    if (&entry == m_shown) {
        m_shown = nullptr;
        const auto& all = m_book.Entries();
        const auto next =
            std::find_if(all.begin(), all.end(), [&](const auto& known) { return known.get() != &entry; });
        if (next != all.end()) m_shown = next->get();
        if (m_shown != nullptr) m_book.Show(*m_shown);
    }
    Refresh();
}

// The user

void PictureWindow::Choose(PictureEntry& entry) {
    m_returnsToLive = false;
    Show(&entry);
    if (CanTell(entry)) m_tell(entry.desk, PictureMessage("select").Set("number", entry.number));
}

void PictureWindow::Restore(PictureEntry& entry) {
    if (CanTell(entry)) m_tell(entry.desk, PictureMessage("restore").Set("number", entry.number));
}

void PictureWindow::Keep(const PictureEntry& entry) {
    if (CanTell(entry)) m_tell(entry.desk, PictureMessage("keep").Set("number", entry.number));
}

void PictureWindow::CompareWith(PictureEntry& entry) {
    if (&entry == m_shown) return;
    if (&entry == m_other) {
        ShowMode(Mode::kSingle);
        return SetOther(nullptr);
    }
    SetOther(&entry);
    if (m_canvas->ModeShown() == Mode::kSingle) ShowMode(Mode::kWipe);
}

void PictureWindow::OpenMenu(PictureEntry& entry, QPoint at) {
    QMenu menu(this);
    const auto add = [&](const char* icon, const char* text, bool isEnabled) {
        QAction* action = menu.addAction(Icon(icon), text);
        action->setEnabled(isEnabled);
        return action;
    };
    const QAction* compare = add("compare-wipe", "&Compare with This", &entry != m_shown);
    const QAction* restore = add("render-history", "&Restore", CanTell(entry));
    const QAction* keep = add("keep-render", "&Keep", CanTell(entry) && entry.state == EntryState::kDone);
    const QAction* save = add("save", "&Save a Copy...", entry.picture != nullptr || PathExists(entry.file));
    const PictureEntry* const asked = &entry;
    const QAction* chosen = menu.exec(at);
    // It may have left the book meanwhile.
    PictureEntry* now = OwnOf(asked);
    if (chosen == nullptr || now == nullptr) return;
    if (chosen == compare) CompareWith(*now);
    if (chosen == restore) Restore(*now);
    if (chosen == keep) Keep(*now);
    if (chosen == save) Save(*now);
}

PictureEntry* PictureWindow::OwnOf(const PictureEntry* entry) const {
    const auto& all = m_book.Entries();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto& known) { return known.get() == entry; });
    return found == all.end() ? nullptr : found->get();
}

void PictureWindow::ChooseMode(Mode mode) {
    if (mode != Mode::kSingle && m_other == nullptr) SetOther(OlderThanShown());
    if (mode == Mode::kToggle && m_canvas->ModeShown() == mode) return m_canvas->Flip();
    ShowMode(mode);
}

void PictureWindow::Flip() {
    if (m_canvas->ModeShown() != Mode::kToggle) ChooseMode(Mode::kToggle);
    m_canvas->Flip();
}

void PictureWindow::ShowMode(Mode mode) {
    for (QAction* action : m_modes->actions()) {
        if (action->data().toInt() == static_cast<int>(mode)) action->setChecked(true);
    }
    m_gainOnBar->setVisible(mode == Mode::kDifference);
    m_canvas->SetMode(mode);
}

void PictureWindow::CompareRenders(const PictureMessage& message) {
    const std::string desk = message.Text("desk");
    const auto find = [&](const char* key) {
        const int64_t number = message.Number(key).value_or(0);
        return number > 0 && number < INT_MAX ? m_book.Find(desk, static_cast<int>(number)) : nullptr;
    };
    PictureEntry* first = find("first");
    PictureEntry* second = find("second");
    if (first == nullptr || second == nullptr || first == second) return;
    m_returnsToLive = false;
    Show(first);
    SetOther(second);
    if (m_canvas->ModeShown() == Mode::kSingle) ShowMode(Mode::kWipe);
    ComeUp();
}

bool PictureWindow::CanTell(const PictureEntry& entry) const {
    return entry.kind == Kind::kRender && m_book.HasDesk(entry);
}

void PictureWindow::Save(const PictureEntry& entry) {
    const PictureEntry* const asked = &entry;
    const QString path =
        QFileDialog::getSaveFileName(this, "Save a Copy", QDir::homePath() + "/" + CopyName(entry));
    // It may have left the book meanwhile.
    if (path.isEmpty() || OwnOf(asked) == nullptr) return;
    std::string error;
    if (SaveCopy(*asked, path.toStdString(), error)) return;
    QMessageBox box(QMessageBox::Warning, "Save a Copy", {}, QMessageBox::Ok, this);
    box.setTextFormat(Qt::PlainText);
    box.setText("cannot save " + path + ": " + QString::fromStdString(error));
    box.exec();
}

void PictureWindow::Copy() {
    if (m_shown == nullptr || m_shown->picture == nullptr) return;
    // A copy of its own: what is shown may still grow.
    QGuiApplication::clipboard()->setImage(m_shown->picture->Image().copy());
}

// What is shown

PictureEntry* PictureWindow::NewestRender() const {
    const auto& all = m_book.Entries();
    const auto found =
        std::find_if(all.begin(), all.end(), [](const auto& entry) { return entry->kind == Kind::kRender; });
    return found == all.end() ? nullptr : found->get();
}

PictureEntry* PictureWindow::OlderThanShown() const {
    const auto& all = m_book.Entries();
    const auto begin =
        std::find_if(all.begin(), all.end(), [&](const auto& e) { return e.get() == m_shown; });
    const auto hasPicture = [&](const auto& e) {
        return e.get() != m_shown && (e->picture != nullptr || !e->thumbnail.isNull());
    };
    auto found = std::find_if(begin, all.end(), hasPicture);
    if (found == all.end()) found = std::find_if(all.begin(), begin, hasPicture);
    return found == all.end() ? nullptr : found->get();
}

void PictureWindow::Show(PictureEntry* entry) {
    if (entry->kind == Kind::kLive) m_returnsToLive = false;
    // Chosen as the first, what was the second changes places with it.
    if (entry == m_other) m_other = m_shown;
    m_shown = entry;
    m_book.Show(*entry);
    Refresh();
}

void PictureWindow::SetOther(PictureEntry* entry) {
    m_other = entry;
    if (entry != nullptr) m_book.Show(*entry);
    Refresh();
}

void PictureWindow::Refresh() {
    PicturePtr first = m_shown == nullptr ? nullptr : m_shown->picture;
    // Until something of it is there, what was seen before is.
    const bool isComing =
        m_shown != nullptr && (m_shown->reading != nullptr || m_shown->state == EntryState::kRunning);
    if (first == nullptr && isComing) first = m_canvas->First();
    m_canvas->ShowPictures(first, m_other == nullptr ? nullptr : m_other->picture);
    m_canvas->SetTitles(m_shown == nullptr ? QString() : m_shown->Title(),
                        m_other == nullptr ? QString() : m_other->Title());
    m_canvas->SetTrouble(first == nullptr || m_shown == nullptr ? QString()
                                                                : QString::fromStdString(m_shown->trouble));
    m_canvas->SetHint(m_shown == nullptr ? "Pictures come here as they are rendered"
                      : isComing         ? "rendering " + m_shown->Title()
                                         : m_shown->Title() + "\n" + SecondLineOf(*m_shown));
    m_strip->SetShown(m_shown, m_other);
    RefreshActions();
}

void PictureWindow::RefreshActions() {
    const bool hasPicture = m_shown != nullptr && m_shown->picture != nullptr;
    m_save->setEnabled(hasPicture && m_shown->picture->IsWhole());
    m_copy->setEnabled(hasPicture);
    m_keep->setEnabled(m_shown != nullptr && CanTell(*m_shown) && m_shown->state == EntryState::kDone);
}

void PictureWindow::HasPainted() {
    if (m_shown == nullptr || m_shown->kind != Kind::kLive || m_shown->picture == nullptr) return;
    if (m_canvas->First() != m_shown->picture || m_shown->id == m_toldShown) return;
    m_toldShown = m_shown->id;
    m_tell(m_shown->desk, PictureMessage("shown").Set("id", static_cast<int64_t>(m_shown->id)));
}

// One that was never shown is not closed by the toolkit, and the program would go on without it.
void PictureWindow::GoAway() {
    const bool isToCome = m_show.isActive();
    m_show.stop();
    isToCome ? m_givenUp() : static_cast<void>(close());
}

void PictureWindow::ComeUp() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
}

}  // namespace tavrin
