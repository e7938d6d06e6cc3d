// SPDX-License-Identifier: Apache-2.0
#include "ui/library/MenuFinder.h"

#include <QMetaObject>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "library/OpRegistry.h"
#include "text/Tokens.h"
#include "ui/windows/FinderList.h"

namespace tavrin {

namespace {

constexpr QRgb kBackground = qRgb(250, 240, 240);
constexpr QRgb kText = qRgb(0, 0, 0);
constexpr char kBeforeLetter[] = "------------ ";
constexpr char kAfterLetter[] = " -------------------------------";
constexpr int kRowsShown = 24;

std::string HeadingOf(const std::string& character) { return kBeforeLetter + character + kAfterLetter; }

// The first character in upper case, with all its bytes. As everywhere, letters outside ASCII have no case.
std::string FirstCharacter(const std::string& name) {
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    size_t length = 1;
    while (length < name.size() && continues(name[length])) ++length;
    std::string character = name.substr(0, length);
    if (character[0] >= 'a' && character[0] <= 'z') character[0] = char(character[0] - 'a' + 'A');
    return character;
}

}  // namespace

MenuFinder::MenuFinder(QWidget* frame, const COpRegistry& registry, OperatorChooser choose)
    : ToolWindow("Menu Finder", frame), m_registry(registry), m_choose(std::move(choose)) {
    m_list = new FinderList(this, {QColor(kBackground), QColor(kText)},
                            [this](const std::string& name) { Choose(name); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    const QFontMetrics metrics = m_list->fontMetrics();
    resize(metrics.horizontalAdvance(QString::fromStdString(HeadingOf("WWW"))) +
               style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this),
           kRowsShown * metrics.height());
}

void MenuFinder::Refresh() {
    std::vector<std::pair<std::string, std::string>> sorted;  // lower case, name
    for (std::string& name : m_registry.Names()) {
        std::string key = ToLower(name);
        sorted.emplace_back(std::move(key), std::move(name));
    }
    std::sort(sorted.begin(), sorted.end());
    std::vector<FinderRow> rows;
    std::string last;
    for (auto& [key, name] : sorted) {
        std::string character = FirstCharacter(name);
        if (character != last) {
            last = std::move(character);
            rows.push_back({HeadingOf(last), true});
        }
        rows.push_back({std::move(name), false});
    }
    m_list->SetRows(std::move(rows));
}

void MenuFinder::TakeKeys() {
    m_list->TakeKeys();
    activateWindow();
}

void MenuFinder::Choose(const std::string& name) {
    const COpEntry* entry = m_registry.FindByName(name);
    if (entry == nullptr) return;
    QMetaObject::invokeMethod(
        this, [this, id = entry->id] { SendOperatorCommand(id, m_choose); }, Qt::QueuedConnection);
}

}  // namespace tavrin
