// SPDX-License-Identifier: Apache-2.0
// What a file dialog offered, looked at before it is answered.
#pragma once

#include <gtest/gtest.h>

#include <QComboBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>
#include <string>

#include "base/Paths.h"
#include "ui/base/Text.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

struct SeenDialog {
    std::string title;
    std::string directory;  // with a separator at the end
    std::string name;       // in the field of the file's name
    QStringList filters;
    std::string filter;  // the one that is chosen
};

// As if typed over what is there. A text that is only set would count less than the row that is selected.
inline void EnterName(QLineEdit& field, const std::string& name) {
    field.setFocus();
    field.selectAll();
    field.insert(Shown(name));
}

// Looks at the next dialog that comes up. Then enters the path and accepts, or cancels where it is empty.
// `chooseFilter` is chosen before that, unless it is empty.
inline void AnswerFileDialog(SeenDialog& seen, const std::string& path, const QString& chooseFilter = {}) {
    WhenDialogComes([&seen, path, chooseFilter](QDialog& dialog) {
        auto* files = qobject_cast<QFileDialog*>(&dialog);
        auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
        if (files == nullptr || name == nullptr) {
            ADD_FAILURE() << "not a file dialog: " << Bytes(dialog.windowTitle());
            dialog.reject();
            return;
        }
        seen = {Bytes(files->windowTitle()), Bytes(files->directory().absolutePath()) + "/",
                Bytes(name->text()), files->nameFilters(), Bytes(files->selectedNameFilter())};
        if (!chooseFilter.isEmpty()) {
            auto* filters = dialog.findChild<QComboBox*>("fileTypeCombo");
            filters->setCurrentIndex(filters->findText(chooseFilter));
        }
        if (path.empty()) {
            dialog.reject();
            return;
        }
        EnterName(*name, path);
        QTest::keyClick(name, Qt::Key_Return);
        EXPECT_FALSE(dialog.isVisible()) << "the file dialog does not take " << path;
        if (dialog.isVisible()) dialog.reject();
    });
}

}  // namespace tavrin::test
