// SPDX-License-Identifier: Apache-2.0
#include "ui/sliders/TextPanels.h"

#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <algorithm>

#include "base/Files.h"
#include "base/Paths.h"
#include "site/Site.h"
#include "ui/base/Text.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/windows/OneLineField.h"

namespace tavrin {

namespace {

constexpr const char* kSeparatorOption = "_SEPARATOR_";

std::string WithSlashes(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

}  // namespace

void TextPanel::MakeControls(const UnitRect& field, const UnitRect& options) {
    m_field = new OneLineField(this, [this](const std::string& text) { Store(text); });
    m_field->setAccessibleName("Value");
    m_field->setGeometry(Units().Pixels(field));
    m_options = new QPushButton("Options...", this);
    m_options->setAutoDefault(false);
    m_options->setGeometry(Units().Pixels(options));
    connect(m_options, &QPushButton::clicked, this, [this] { OpenOptions(); });
}

void TextPanel::Refresh() {
    const Text text = Find();
    if (text.value == nullptr) return;
    m_field->setEnabled(!text.noEdit);
    m_options->setEnabled(!text.options->empty());
    m_field->ShowText(*text.value);
}

bool TextPanel::Read() {
    if (Find().value == nullptr) return false;
    Store(m_field->Text());
    return true;
}

void TextPanel::Store(const std::string& text) {
    if (Find().value != nullptr) Edit([&] { *Find().value = text; });
}

// What is chosen here leaves the document unmodified.
void TextPanel::OpenOptions() {
    const Text text = Find();
    if (text.value == nullptr) return;
    QMenu menu;  // nobody's child: the panel may go while it is open
    for (const std::string& option : *text.options) {
        if (option == kSeparatorOption) {
            menu.addSeparator();
        } else {
            menu.addAction(LiteralLabel(Shown(option)))->setData(QByteArray::fromStdString(option));
        }
    }
    menu.setSeparatorsCollapsible(false);
    const QPointer<TextPanel> self(this);
    const QAction* chosen = menu.exec(QCursor::pos());
    if (self == nullptr || chosen == nullptr || Find().value == nullptr) return;
    EditUnmarked([&] { *Find().value = chosen->data().toByteArray().toStdString(); });
    Refresh();
}

CStringPanel::CStringPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : TextPanel(frame, button, needs) {
    auto* file = new QPushButton("File...", this);
    MakeControls({1, 1, 88, 12}, {46, 14, 43, 12});
    file->setAutoDefault(false);
    file->setGeometry(Units().Pixels({1, 14, 43, 12}));
    const auto* value = FindValue<COpValueString>(type_words::kString);
    file->setEnabled(value != nullptr && value->fileflag != 0);
    connect(file, &QPushButton::clicked, this, [this] { ChooseFile(); });
    Refresh();
}

TextPanel::Text CStringPanel::Find() const {
    auto* value = FindValue<COpValueString>(type_words::kString);
    if (value == nullptr) return {};
    return {&value->value, value->noedit != 0, &value->options};
}

void CStringPanel::ChooseFile() {
    const Text text = Find();
    if (text.value == nullptr) return;
    const std::string path = WithSlashes(*text.value);
    FileDialogRequest request;
    request.title = "Select";
    request.filters = {"All Files (*)", "PIC Images (*.pic)", "SGI Images (*.sgi)", "Bitmap Images (*.bmp)"};
    request.file = PathFile(path);
    request.directory = PathDir(path);
    if (request.directory.empty() || !IsDirectory(request.directory)) {
        std::string directory;
        Needs().site.settings.GetSettingToken("stringbrowser_dir", directory);
        request.directory = Needs().site.LibraryPath(directory);
    }
    request.filterIndex = m_filterIndex;
    const QPointer<CStringPanel> self(this);
    request.filterLeft = [this, self](int filter) {
        if (self != nullptr) m_filterIndex = filter;
    };
    const auto chosen = AskFileToOpen(window(), request);
    if (!chosen || self == nullptr || Find().value == nullptr || IsDirectory(chosen->path)) return;
    Store(WithSlashes(chosen->path));
    Refresh();
}

CGenericPanel::CGenericPanel(QWidget* frame, COpButton& button, const SliderNeeds& needs)
    : TextPanel(frame, button, needs) {
    MakeControls({1, 1, 88, 12}, {23, 14, 43, 12});
    Refresh();
}

TextPanel::Text CGenericPanel::Find() const {
    COpButton* button = Button();
    if (button == nullptr || button->currentcast >= button->values.size()) return {};
    COpValue* value = button->values.at(button->currentcast).get();
    if (!COpValueGeneric::Bears(value->type)) return {};
    auto* text = static_cast<COpValueGeneric*>(value);
    return {&text->value, text->noedit != 0, &text->options};
}

}  // namespace tavrin
