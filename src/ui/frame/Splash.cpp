// SPDX-License-Identifier: Apache-2.0
#include "ui/frame/Splash.h"

#include <QEvent>
#include <QLabel>
#include <QMessageBox>
#include <QVBoxLayout>

#include "app/Version.h"
#include "icons/Icons.h"
#include "ui/base/Text.h"

namespace tavrin {

namespace {

constexpr int kPicture = 128;  // pixels a side
constexpr int kMargin = 32;
constexpr qreal kTitleScale = 1.5;  // of the font that other windows have

}  // namespace

QString ProductText(const std::string& version) {
    return "Tavrin for Linux\nVersion " + Shown(ShortVersion(version));
}

Splash::Splash(QWidget* frame, const std::string& version)
    : QWidget(frame, Qt::SplashScreen | Qt::WindowDoesNotAcceptFocus) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    auto* picture = new QLabel(this);
    picture->setPixmap(ApplicationIcon().pixmap(QSize(kPicture, kPicture), devicePixelRatioF()));
    picture->setAlignment(Qt::AlignCenter);
    auto* text = new QLabel(ProductText(version), this);
    text->setAlignment(Qt::AlignCenter);
    QFont font = text->font();
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    text->setFont(font);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(2 * kMargin, kMargin, 2 * kMargin, kMargin);
    column->setSpacing(kMargin / 2);
    column->addWidget(picture);
    column->addWidget(text);
    adjustSize();
    m_since.start();
}

void Splash::ShowOverFrame() {
    MoveToMiddle();
    parentWidget()->installEventFilter(this);
    show();
}

bool Splash::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) MoveToMiddle();
    return QWidget::eventFilter(object, event);
}

void Splash::MoveToMiddle() { move(parentWidget()->frameGeometry().center() - rect().center()); }

void ShowAboutBox(QWidget* owner, const std::string& version) {
    QMessageBox box(owner);
    box.setWindowTitle("About Tavrin");
    box.setTextFormat(Qt::PlainText);
    box.setText(ProductText(version));
    box.setIconPixmap(ApplicationIcon().pixmap(QSize(kPicture / 2, kPicture / 2), box.devicePixelRatioF()));
    box.exec();
}

}  // namespace tavrin
