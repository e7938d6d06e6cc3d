// SPDX-License-Identifier: Apache-2.0
#include "ui/render/SelectLocation.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>

#include "base/Paths.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

// The path's directory, or the nearest above it that is there.
QString StartDirectory(const std::string& path) {
    QString directory = Shown(PathDir(FullPath(path)));
    while (!QDir(directory).exists() && !QDir(directory).isRoot()) {
        directory = QFileInfo(QDir::cleanPath(directory)).path();
    }
    return directory;
}

// The toolkit's own dialog, since the platform's would neither change its labels nor stay open on demand.
class LocationDialog : public QFileDialog {
  public:
    LocationDialog(const std::string& path, QWidget* owner)
        : QFileDialog(owner, "Select Location", StartDirectory(path)), m_name(Shown(PathFile(path))) {
        setOption(QFileDialog::DontUseNativeDialog);
        setAcceptMode(QFileDialog::AcceptOpen);
        setFileMode(QFileDialog::AnyFile);
        setLabelText(QFileDialog::FileName, "Location:");
        for (const char* control : {"fileTypeLabel", "fileTypeCombo"}) {
            if (auto* widget = findChild<QWidget*>(control)) widget->hide();
        }
        // The toolkit changes the text of the button it made itself, and disables it, as names are typed.
        auto* buttons = findChild<QDialogButtonBox*>("buttonBox");
        buttons->setStandardButtons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        buttons->button(QDialogButtonBox::Ok)->setText("OK");
        buttons->button(QDialogButtonBox::Ok)->setDefault(true);
        m_field = findChild<QLineEdit*>("fileNameEdit");
        m_list = findChild<QListView*>("listView");
        m_field->setText(m_name);
        m_field->selectAll();
        connect(this, &QFileDialog::directoryEntered, this, [this] { PutBackName(); });
    }

    const QString& Chosen() const { return m_chosen; }  // a directory

  protected:
    void accept() override {
        const QString typed = TypedPath();
        if (m_name.isEmpty() && QDir(typed) == directory()) {
            Take(typed);
        } else if (QFileInfo(typed).isDir()) {
            GoTo(typed);
        } else if (const QString selected = SelectedDirectory(); !selected.isEmpty()) {
            GoTo(selected);
        } else {
            TakeOrRefuse(QFileInfo(typed));
        }
    }

  private:
    QString TypedPath() const {
        QString text = m_field->text();
        if (text == "~" || text.startsWith("~/")) text.replace(0, 1, QDir::homePath());
        return QDir::cleanPath(directory().absoluteFilePath(text));
    }

    QString SelectedDirectory() const {
        for (const QModelIndex& row : m_list->selectionModel()->selectedRows()) {
            const QString path = row.data(QFileSystemModel::FilePathRole).toString();
            if (QFileInfo(path).isDir()) return path;
        }
        return {};
    }

    void GoTo(const QString& path) {
        setDirectory(path);
        PutBackName();
    }

    void TakeOrRefuse(const QFileInfo& typed) {
        if (typed.fileName().compare(m_name, Qt::CaseInsensitive) == 0 && typed.dir().exists()) {
            Take(typed.path());
        } else {
            QApplication::beep();
            PutBackName();
        }
    }

    void Take(const QString& folder) {
        m_chosen = folder;
        QDialog::accept();
    }

    void PutBackName() {
        m_list->selectionModel()->clear();  // a file chosen again is to be seen again
        m_field->setText(Shown(JoinPath(Bytes(directory().absolutePath()), Bytes(m_name))));
        m_field->selectAll();
    }

    const QString m_name;
    QLineEdit* m_field;
    QListView* m_list;
    QString m_chosen;
};

}  // namespace

bool SelectLocation(std::string& path, QWidget* owner) {
    LocationDialog dialog(path, owner);
    if (dialog.exec() != QDialog::Accepted) return false;
    path = JoinPath(Bytes(dialog.Chosen()), PathFile(path));
    return true;
}

bool SelectFile(std::string& path, QWidget* owner, FilePurpose purpose) {
    QFileDialog dialog(owner, "Select File", StartDirectory(path), "All Files (*)");
    dialog.setAcceptMode(purpose == FilePurpose::kWrite ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::AnyFile);
    if (const std::string name = PathFile(path); !name.empty()) dialog.selectFile(Shown(name));
    // A row that the user did not select would be taken rather than what is typed.
    if (auto* list = dialog.findChild<QListView*>("listView")) list->selectionModel()->clear();
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return false;
    path = Bytes(dialog.selectedFiles().first());
    return true;
}

}  // namespace tavrin
