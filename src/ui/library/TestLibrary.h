// SPDX-License-Identifier: Apache-2.0
// What the tests of this room share: a small library on disk, and a user's hands on a finder.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractItemModel>
#include <QListView>
#include <QStringList>
#include <QTest>
#include <QWidget>
#include <initializer_list>

#include "library/OpRegistry.h"
#include "support/TestSite.h"
#include "ui/support/Windows.h"

namespace tavrin::test {

// Scanned anew by each Scan.
struct TestLibrary {
    TestLibrary(std::initializer_list<const char*> files) {
        report.SetSink(&sink);
        Add(files);
    }
    void Add(std::initializer_list<const char*> files) {
        for (const char* file : files) directory.Write(file, "");
        Scan();
    }
    void Scan() {
        registry.Clear();
        registry.AddDirectory(directory.Path());
    }
    uint32_t IdOf(const std::string& name) const { return registry.FindByName(name)->id; }

    TempDir directory;
    CollectingSink sink;
    Report report;
    COpRegistry registry{report};
};

inline QListView& ListOf(const QWidget& window) { return *window.findChild<QListView*>("list"); }

inline QStringList RowsOf(const QWidget& window) {
    const QAbstractItemModel& model = *ListOf(window).model();
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) rows << model.index(row, 0).data().toString();
    return rows;
}

// A tool window need not be active for a user's hands to reach it.
inline void ShowUp(QWidget& window) {
    window.show();
    ASSERT_TRUE(WaitUntilSeen(window));
}

// What a list does by itself when it gets the focus.
inline void MakeCurrentUnselected(const QWidget& window, int row) {
    const QListView& list = ListOf(window);
    list.selectionModel()->setCurrentIndex(list.model()->index(row, 0), QItemSelectionModel::NoUpdate);
}

// The text of the selected row, or a null string.
inline QString SelectedIn(const QWidget& window) {
    const QModelIndexList selected = ListOf(window).selectionModel()->selectedIndexes();
    return selected.isEmpty() ? QString() : selected.front().data().toString();
}

// A place on the row of that text, in the coordinates of the window.
inline QPoint PlaceOf(const QWidget& window, const QString& text) {
    QListView& list = ListOf(window);
    const QModelIndex index = list.model()->index(int(RowsOf(window).indexOf(text)), 0);
    list.scrollTo(index);
    return list.viewport()->mapTo(&window, list.visualRect(index).center());
}

inline void ClickRow(const QWidget& window, const QString& text) {
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, PlaceOf(window, text));
}

inline void DoubleClickRow(const QWidget& window, const QString& text,
                           Qt::MouseButton button = Qt::LeftButton) {
    QTest::mouseDClick(window.windowHandle(), button, {}, PlaceOf(window, text));
}

}  // namespace tavrin::test
