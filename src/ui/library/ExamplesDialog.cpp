// SPDX-License-Identifier: Apache-2.0
#include "ui/library/ExamplesDialog.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QVBoxLayout>

#include "app/Examples.h"
#include "ui/base/DocumentText.h"
#include "ui/base/Text.h"
#include "ui/library/ExampleTiles.h"
#include "ui/render/RenderThumbnails.h"

namespace tavrin {

namespace {

constexpr int kColumns = 3;  // of tiles in a dialog that has room for them
constexpr int kRows = 2;
constexpr int kSpace = 6;   // pixels round each tile
constexpr int kSlack = 80;  // of the screen, left round the dialog

QStandardItem* MakeTile(const Example& example) {
    const QString summary = Shown(example.summary);
    auto* tile = new QStandardItem(Shown(example.title).simplified());
    tile->setEditable(false);
    tile->setData(QByteArray::fromStdString(example.path), ExampleTiles::kPath);
    tile->setData(summary, ExampleTiles::kSummary);
    tile->setData(QByteArray::fromStdString(example.picture), ExampleTiles::kPicture);
    tile->setToolTip(PlainToolTip(Shown(example.description.empty() ? example.path : example.description)));
    tile->setData(summary, Qt::AccessibleDescriptionRole);
    return tile;
}

// Enter opens, also where no button has the focus.
class TileList : public QListView {
  public:
    using QListView::QListView;

    // With room for so many tiles.
    QSize RoomFor(int columns, int rows) const {
        QStyleOptionViewItem option;
        option.font = font();
        option.fontMetrics = fontMetrics();
        const QSize tile = itemDelegate()->sizeHint(option, {}) + QSize(spacing(), spacing());
        const int bar = verticalScrollBar()->sizeHint().width();
        const int edge = 2 * (frameWidth() + spacing());
        return {columns * (tile.width() + spacing()) + bar + edge, rows * (tile.height() + spacing()) + edge};
    }
    QSize sizeHint() const override { return RoomFor(kColumns, kRows); }
    QSize minimumSizeHint() const override { return RoomFor(1, 1); }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isEnter && currentIndex().isValid()) {
            Q_EMIT clicked(currentIndex());
        } else {
            QListView::keyPressEvent(event);
        }
    }
};

}  // namespace

ExamplesDialog::ExamplesDialog(QWidget* owner) : QDialog(owner) {
    setWindowTitle("Examples");
    setModal(true);
}

ExamplesDialog::ExamplesDialog(QWidget* owner, const std::vector<Example>& examples) : ExamplesDialog(owner) {
    auto* told = new QLabel(
        "Choose one to begin with: it opens as a document of your own, and the example stays"
        " as it is.");
    told->setWordWrap(true);
    QListView* list = MakeList(examples);
    auto* column = new QVBoxLayout(this);
    column->addWidget(told);
    column->addWidget(list, 1);
    column->addWidget(MakeButtons(list));
    resize(column->sizeHint().boundedTo(screen()->availableSize() - QSize(kSlack, kSlack)));
    list->setFocus();
}

ExamplesDialog::ExamplesDialog(QWidget* owner, const std::string& directory) : ExamplesDialog(owner) {
    auto* told = new QLabel;
    told->setTextFormat(Qt::PlainText);
    told->setTextInteractionFlags(Qt::TextSelectableByMouse);
    told->setText(Shown("There are no examples in " + directory +
                        ",\nwhich \"examples\" in the library's tavrn.def names."));
    auto* column = new QVBoxLayout(this);
    column->addWidget(told);
    column->addWidget(MakeButtons(nullptr));
}

QListView* ExamplesDialog::MakeList(const std::vector<Example>& examples) {
    auto* list = new TileList(this);
    auto* thumbnails = new RenderThumbnails(
        list, [list] { list->viewport()->update(); }, ExampleTiles::kPictureSize);
    auto* tiles = new ExampleTiles(list, *thumbnails);
    auto* model = new QStandardItemModel(list);
    for (const Example& example : examples) model->appendRow(MakeTile(example));
    list->setObjectName("list");
    list->setAccessibleName("Examples");
    list->setItemDelegate(tiles);
    list->setModel(model);
    list->setFlow(QListView::LeftToRight);
    list->setWrapping(true);
    list->setResizeMode(QListView::Adjust);
    list->setUniformItemSizes(true);
    list->setSpacing(kSpace);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setMouseTracking(true);  // the tile under the pointer lights up
    list->setCurrentIndex(model->index(0, 0));
    connect(list, &QListView::clicked, this, [this](const QModelIndex& index) { Choose(index); });
    return list;
}

QWidget* ExamplesDialog::MakeButtons(QListView* list) {
    auto* buttons = new QDialogButtonBox(this);
    if (list != nullptr) {
        QPushButton* open = buttons->addButton("&Open", QDialogButtonBox::ActionRole);
        open->setDefault(true);
        connect(open, &QPushButton::clicked, this, [this, list] { Choose(list->currentIndex()); });
    }
    buttons->addButton(list != nullptr ? QDialogButtonBox::Cancel : QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { reject(); });
    return buttons;
}

void ExamplesDialog::Choose(const QModelIndex& index) {
    if (!index.isValid()) return;
    m_chosen = index.data(ExampleTiles::kPath).toByteArray().toStdString();
    accept();
}

std::string AskExample(QWidget* owner, const std::string& directory, const std::string& extension) {
    std::vector<Example> examples;
    const bool isListed = ListExamples(directory, extension, examples);
    if (!isListed || examples.empty()) {
        ExamplesDialog(owner, directory).exec();
        return {};
    }
    ExamplesDialog dialog(owner, examples);
    dialog.exec();
    return dialog.Chosen();
}

}  // namespace tavrin
