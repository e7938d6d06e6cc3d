// SPDX-License-Identifier: Apache-2.0
#include "view/SaveCopy.h"

#include <QBuffer>

#include "base/Files.h"
#include "base/Paths.h"
#include "base/ReplaceFile.h"

namespace tavrin {

namespace {

QString EndingOf(const QString& path) {
    const qsizetype dot = path.lastIndexOf('.');
    return dot <= path.lastIndexOf('/') ? QString() : path.mid(dot + 1).toLower();
}

std::string AsPng(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? bytes.toStdString() : std::string();
}

}  // namespace

bool SaveCopy(const PictureEntry& entry, std::string path, std::string& error) {
    const QString ending = EndingOf(QString::fromStdString(path));
    std::string bytes;
    const bool isSameKind = ending == EndingOf(QString::fromStdString(entry.file));
    if (!isSameKind || entry.reading != nullptr || !ReadWholeFile(entry.file, bytes, error)) {
        if (entry.picture == nullptr || !entry.picture->IsWhole()) {
            error = "the picture is not there any more: " + entry.file;
            return false;
        }
        bytes = AsPng(entry.picture->Image());
        if (ending != "png") path += ".png";
    }
    return ReplaceFile(path, bytes, error);
}

QString CopyName(const PictureEntry& entry) {
    const QString ending = EndingOf(QString::fromStdString(entry.file));
    QString name = QString::fromStdString(entry.name.empty() ? "picture" : PathFile(entry.name));
    if (entry.kind == PictureEntry::Kind::kRender) name += "-" + QString::number(entry.number);
    if (!ending.isEmpty() && name.endsWith("." + ending)) return name;
    return name + "." + (ending.isEmpty() ? "png" : ending);
}

}  // namespace tavrin
