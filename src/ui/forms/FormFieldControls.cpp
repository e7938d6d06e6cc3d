// SPDX-License-Identifier: Apache-2.0
#include "ui/forms/FormFieldControls.h"

#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/dialogs/FileDialogs.h"
#include "ui/forms/FormEdits.h"
#include "ui/forms/FormSizes.h"

namespace tavrin {

namespace {

constexpr int kGap = 4;  // pixels beside the "Info..." button of a text

QLabel* MakeText(QWidget* parent, const std::string& text) {
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(Decoded(text).text);
    return label;
}

QString NameOf(const std::string& caption, const std::string& envname) {
    return Decoded(caption.empty() ? envname : caption).text;
}

// The widget ends where a control ends.
QSize EndOf(const QWidget& control) {
    return {control.geometry().right() + 1, control.geometry().bottom() + 1};
}

}  // namespace

FormXFieldControl::FormXFieldControl(QWidget* frame, CFormXField& field, const FormNeeds& needs)
    : FormControl(frame, field, needs), m_field(field) {
    const QString name = NameOf(field.presets.Caption(), field.envname);
    m_list = new FormList(this, name, [this](int index) { m_field.ChoosePreset(index, Host()); });
    m_list->SetLines(field.presets.Lines());
    Place(*m_list, form_sizes::xfield::kList);
    m_edit = new FormEdit(
        this, name, [this](const std::string& text) { m_field.Read(text, Host()); }, [this] { Refresh(); });
    Place(*m_edit, form_sizes::xfield::kEdit);
    resize(EndOf(*MakeInfo(form_sizes::xfield::kInfo, field.InfoTitle())));
    Refresh();
}

void FormXFieldControl::Refresh() {
    m_list->Show(m_field.presets);
    m_edit->ShowText(m_field.text);
}

FormXYFieldControl::FormXYFieldControl(QWidget* frame, CFormXYField& field, const FormNeeds& needs)
    : FormControl(frame, field, needs), m_field(field) {
    const QString name = NameOf(field.presets.Caption(), field.envname);
    m_list = new FormList(this, name, [this](int index) { m_field.ChoosePreset(index, Host()); });
    m_list->SetLines(field.presets.Lines());
    Place(*m_list, form_sizes::xyfield::kList);
    const auto read = [this](const std::string&) { Read(); };
    const auto left = [this] { Refresh(); };
    m_first = new FormEdit(this, name + " 1", read, left);
    Place(*m_first, form_sizes::xyfield::kFirst);
    QLabel* separator = MakeText(this, field.separatorLabel);
    separator->setAlignment(Qt::AlignCenter);
    Place(*separator, form_sizes::xyfield::kSeparator);
    m_second = new FormEdit(this, name + " 2", read, left);
    Place(*m_second, form_sizes::xyfield::kSecond);
    resize(EndOf(*MakeInfo(form_sizes::xyfield::kInfo, field.InfoTitle())));
    Refresh();
}

void FormXYFieldControl::Refresh() {
    m_list->Show(m_field.presets);
    m_first->ShowText(m_field.xText);
    m_second->ShowText(m_field.yText);
}

void FormXYFieldControl::Read() { m_field.ReadBoxes(m_first->Text(), m_second->Text(), Host()); }

FormXYZFieldControl::FormXYZFieldControl(QWidget* frame, CFormXYZField& field, const FormNeeds& needs)
    : FormControl(frame, field, needs), m_field(field) {
    namespace sizes = form_sizes::xyzfield;
    auto* box = new QGroupBox(LiteralLabel(Decoded(field.headingLabel).text), this);
    Place(*box, {0, 0, sizes::kWidth, sizes::kHeight});
    for (size_t axis = 0; axis < m_edits.size(); ++axis) {
        const CFormXYZField::Axis& shown = field.axes[axis];
        const QString name = NameOf(shown.presets.Caption(), shown.envname);
        const int shift = static_cast<int>(axis) * sizes::kColumn;
        m_lists[axis] =
            new FormList(this, name, [this, axis](int index) { m_field.ChoosePreset(axis, index, Host()); });
        m_lists[axis]->SetLines(shown.presets.Lines());
        Place(*m_lists[axis],
              {sizes::kList.x + shift, sizes::kList.y, sizes::kList.width, sizes::kList.height});
        m_edits[axis] = new FormEdit(
            this, name, [this](const std::string&) { Read(); }, [this] { Refresh(); });
        Place(*m_edits[axis],
              {sizes::kEdit.x + shift, sizes::kEdit.y, sizes::kEdit.width, sizes::kEdit.height});
    }
    MakeInfo(sizes::kInfo, field.InfoTitle());
    resize(box->size());
    Refresh();
}

void FormXYZFieldControl::Refresh() {
    for (size_t axis = 0; axis < m_edits.size(); ++axis) {
        m_lists[axis]->Show(m_field.axes[axis].presets);
        m_edits[axis]->ShowText(m_field.axes[axis].text);
    }
}

void FormXYZFieldControl::Read() {
    m_field.ReadBoxes({m_edits[0]->Text(), m_edits[1]->Text(), m_edits[2]->Text()}, Host());
}

// A caption that is wider than its place moves all that stands behind it.
FormStringInputControl::FormStringInputControl(QWidget* frame, CFormStringInput& input,
                                               const FormNeeds& needs)
    : FormControl(frame, input, needs), m_input(input) {
    namespace sizes = form_sizes::stringinput;
    QLabel* label = MakeText(this, input.label);
    Place(*label, sizes::kLabel);
    const int shift = std::max(0, label->sizeHint().width() - label->width());
    label->resize(label->width() + shift, label->height());
    m_edit = new FormEdit(
        this, NameOf(input.label, input.envname),
        [this](const std::string& text) { m_input.Read(text, Host()); }, [this] { Refresh(); });
    Place(*m_edit, sizes::kEdit);
    auto* file = new QPushButton("File...", this);
    file->setAutoDefault(false);
    Place(*file, sizes::kFile);
    connect(file, &QPushButton::clicked, this, [this] { ChooseFile(); });
    QWidget* info = MakeInfo(sizes::kInfo, input.InfoTitle());
    for (QWidget* control : {static_cast<QWidget*>(m_edit), static_cast<QWidget*>(file), info})
        control->move(control->x() + shift, control->y());
    if (!input.file) {
        file->hide();
        info->move(info->x() - file->width() - kGap, info->y());
    }
    resize(EndOf(*info) + QSize(kGap, 0));
    Refresh();
}

void FormStringInputControl::Refresh() { m_edit->ShowText(m_input.text); }

void FormStringInputControl::ChooseFile() {
    FileDialogRequest request;
    request.title = "Select File";
    request.filters = {"All Files (*)", "Bitmap Images (*.bmp)", "SGI Images (*.sgi)"};
    request.directory = m_input.lastDir;
    const QPointer<FormStringInputControl> self(this);
    const auto chosen = AskFileToOpen(window(), request);
    if (chosen && self != nullptr) m_input.TakeFile(chosen->path, Host());
}

}  // namespace tavrin
