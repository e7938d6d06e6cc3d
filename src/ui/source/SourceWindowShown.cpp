// SPDX-License-Identifier: Apache-2.0
// What the window "Source" shows, and when.
#include <QGuiApplication>
#include <QLabel>
#include <algorithm>
#include <unordered_set>

#include "document/TvDoc.h"
#include "render/RenderSession.h"
#include "site/Site.h"
#include "text/StoredText.h"
#include "ui/base/Text.h"
#include "ui/source/SourceColumn.h"
#include "ui/source/SourceWindow.h"

namespace tavrin {

namespace {

// From the library on, where it is of the library.
std::string PathInLibrary(const std::string& path, const Site& site) {
    const std::string library = site.directories.libDir + "/";
    return path.starts_with(library) ? path.substr(library.size()) : path;
}

// As messages of scripts have it.
std::string TemplateOf(const LinePlace& place, const Site& site) {
    const std::string path = PathInLibrary(place.file, site);
    return place.line > 0 ? path + " line " + std::to_string(place.line) : path;
}

std::string TextOf(const LinePlace& place, const Site& site) {
    std::string text;
    const auto add = [&text](const char* what, const std::string& part) {
        if (!part.empty()) text.append(text.empty() ? "" : ", ").append(what).append(part);
    };
    add("box ", place.box);
    add("operator ", place.operatorName);
    add("button ", place.button);
    add("", TemplateOf(place, site));
    add("", place.clause);
    return text;
}

// Whether the text holds these words, and no digit behind them.
bool Names(const std::string& text, const std::string& words) {
    for (size_t at = text.find(words); at != std::string::npos; at = text.find(words, at + 1)) {
        const size_t behind = at + words.size();
        if (behind == text.size() || text[behind] < '0' || text[behind] > '9') return true;
    }
    return false;
}

}  // namespace

void SourceWindow::Follow(const Change& change) {
    if (change.HasBoxes() || !change.buttons.empty() || !change.tuned.empty() || change.wires ||
        change.options || change.settings)
        DeskChanged();
    if (change.selection && IsUp()) Light();
}

void SourceWindow::LibraryChanged() {
    m_words.reset();
    for (SourceColumn* column : m_columns) column->ForgetWords();
    m_maker.Forget();
    DeskChanged();
}

void SourceWindow::DeskChanged() {
    m_isStale = true;
    if (IsUp()) m_pause.start();
}

void SourceWindow::showEvent(QShowEvent* event) {
    ToolWindow::showEvent(event);
    m_isStale = true;
    m_pause.start(0);
}

void SourceWindow::RefreshWhenIdle() {
    m_pause.setInterval(kPause);
    const bool isBusy = QGuiApplication::mouseButtons() != Qt::NoButton || m_needs.document.edits.IsOpen();
    if (isBusy) {
        ++m_delays;
        m_pause.start();
    } else if (IsUp() && m_isStale) {
        Refresh();
    }
}

void SourceWindow::Refresh() {
    ++m_refreshes;
    m_pause.stop();
    m_isStale = false;
    ReadWords();
    if (!m_chosen) ArrangeColumns();
    std::vector<SourceKind> kinds;
    for (const SourceColumn* column : m_columns) kinds.push_back(column->Kind());
    m_maker.Make(kinds);
    for (SourceColumn* column : m_columns) {
        if (m_maker.Find(column->Kind()) == nullptr) column->Show(nullptr, *m_words);
    }
}

// Told once for each reading, in the log and for as long as it stands.
void SourceWindow::ReadWords() {
    if (m_words) return;
    const HeldAlerts alerts(m_needs.site.report);
    m_words = SourceWords::Of(m_needs.site);
    const std::string problem = alerts.All().empty() ? std::string() : alerts.All().back().text;
    m_remark->setText(Shown(problem));
    m_remark->setToolTip("<qt>" + Shown(problem).toHtmlEscaped() + "</qt>");
    if (!problem.empty()) m_needs.site.report.LogLine("WARNING: %s", problem.c_str());
}

void SourceWindow::ShowMade(const SourceKind& kind) {
    SourceColumn* column = ColumnOf(kind);
    if (column == nullptr) return;
    column->Show(m_maker.Find(kind), *m_words);
    Light();
    Mark();
}

void SourceWindow::Light() {
    std::unordered_set<std::string> selected;
    for (const auto& box : m_needs.document.m_boxes) {
        if (box->selected != 0) selected.insert(box->BoxTitleWid());
    }
    for (SourceColumn* column : m_columns) {
        const MadeSource* source = m_maker.Find(column->Kind());
        if (source == nullptr || !source->isThere) continue;
        std::vector<size_t> lit = source->lines.LinesOf(selected);
        const bool isOther = lit != column->View().Lit();
        column->View().Light(std::move(lit));
        if (isOther) column->View().ShowLit();
    }
}

// What the last run says of the line. Words that name lines of its template mean these alone.
std::string SourceWindow::ErrorAt(const LinePlace& place) const {
    const std::string* said = place.box.empty() ? nullptr : m_needs.session.marks.Find(place.box);
    if (said == nullptr) return {};
    const std::string file = PathInLibrary(place.file, m_needs.site) + " line ";
    const bool isAbout = place.file.empty() || said->find(file) == std::string::npos ||
                         Names(*said, file + std::to_string(place.line));
    return isAbout ? *said : std::string();
}

void SourceWindow::Mark() {
    std::unordered_set<std::string> named;
    if (!m_needs.session.marks.IsEmpty()) {
        for (const auto& box : m_needs.document.m_boxes) {
            const std::string title = box->BoxTitleWid();
            if (m_needs.session.marks.Find(title) != nullptr) named.insert(title);
        }
    }
    for (SourceColumn* column : m_columns) {
        const MadeSource* source = m_maker.Find(column->Kind());
        if (source == nullptr || !source->isThere) continue;
        std::vector<size_t> lines = named.empty() ? std::vector<size_t>() : source->lines.LinesOf(named);
        std::erase_if(lines, [&](size_t line) {
            return ErrorAt(source->lines.Find(line).value_or(LinePlace())).empty();
        });
        column->View().Mark(std::move(lines));
    }
}

bool SourceWindow::IsOnDesk(const std::string& box) const {
    const auto& boxes = m_needs.document.m_boxes;
    return std::any_of(boxes.begin(), boxes.end(),
                       [&box](const auto& each) { return each->BoxTitleWid() == box; });
}

void SourceWindow::TellPlace(const SourceKind& kind, size_t line) {
    const MadeSource* source = m_maker.Find(kind);
    const auto place = source == nullptr ? std::nullopt : source->lines.Find(line);
    std::string text = place ? TextOf(*place, m_needs.site) : std::string();
    if (text.empty()) text = "no box";
    if (place) {
        if (const std::string error = ErrorAt(*place); !error.empty()) text += " - " + OneLine(error);
    }
    const QString shown = Shown("Line " + std::to_string(line) + ": " + text);
    m_place->setText(shown);
    m_place->setToolTip("<qt>" + shown.toHtmlEscaped() + "</qt>");
}

void SourceWindow::GoTo(const SourceKind& kind, size_t line) {
    TellPlace(kind, line);
    const MadeSource* source = m_maker.Find(kind);
    const auto place = source == nullptr ? std::nullopt : source->lines.Find(line);
    if (!place || place->box.empty()) return;
    if (IsOnDesk(place->box)) return m_needs.goToBox(place->box);
    m_place->setText(m_place->text() + ", which is not on the desk any more");
}

}  // namespace tavrin
