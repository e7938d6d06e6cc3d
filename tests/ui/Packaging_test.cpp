// SPDX-License-Identifier: Apache-2.0
// The files that tell a desktop about the program and its documents agree with each other and with the
// documents.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QXmlStreamReader>

namespace tavrin {
namespace {

const QString kSource = QStringLiteral(TAVRIN_SOURCE_DIR "/");
const QString kPackaging = kSource + QStringLiteral("packaging/");

QByteArray Content(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

struct DocumentType {
    QString name, glob;
    QByteArray magic;
    qsizetype magicFrom = -1, magicTo = -1;  // offsets, both included
};

DocumentType ReadDocumentType() {
    DocumentType type;
    QXmlStreamReader reader(Content(kPackaging + QStringLiteral("tavrin.xml")));
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        if (reader.name() == QLatin1String("mime-type"))
            type.name = attributes.value(QLatin1String("type")).toString();
        if (reader.name() == QLatin1String("glob"))
            type.glob = attributes.value(QLatin1String("pattern")).toString();
        if (reader.name() != QLatin1String("match")) continue;
        type.magic = attributes.value(QLatin1String("value")).toUtf8();
        const QStringList offsets =
            attributes.value(QLatin1String("offset")).toString().split(QLatin1Char(':'));
        type.magicFrom = offsets.first().toLongLong();
        type.magicTo = offsets.last().toLongLong();
    }
    EXPECT_FALSE(reader.hasError()) << reader.errorString().toStdString();
    return type;
}

TEST(Packaging, EveryExampleIsKnownByItsNameAndByItsContent) {
    const DocumentType type = ReadDocumentType();
    ASSERT_FALSE(type.magic.isEmpty());
    const QFileInfoList all = QDir(kSource + QStringLiteral("examples")).entryInfoList(QDir::Files);
    const QFileInfoList known =
        QDir(kSource + QStringLiteral("examples")).entryInfoList({type.glob}, QDir::Files);
    EXPECT_FALSE(known.isEmpty());
    // The others are their pictures.
    const QFileInfoList pictures =
        QDir(kSource + QStringLiteral("examples")).entryInfoList({"*.jpg"}, QDir::Files);
    EXPECT_EQ(known.size() + pictures.size(), all.size());
    for (const QFileInfo& example : known) {
        const auto place = Content(example.filePath()).indexOf(type.magic, type.magicFrom);
        EXPECT_GE(place, type.magicFrom) << example.fileName().toStdString();
        EXPECT_LE(place, type.magicTo) << example.fileName().toStdString();
    }
}

TEST(Packaging, TheDesktopEntryOpensThatTypeWithTheProgramAndItsIcon) {
    QSettings entry(kPackaging + QStringLiteral("tavrin.desktop"), QSettings::IniFormat);
    entry.beginGroup(QStringLiteral("Desktop Entry"));
    EXPECT_EQ(entry.value(QStringLiteral("Exec")).toString().toStdString(), "tavrin %f");
    EXPECT_EQ(entry.value(QStringLiteral("GenericName")).toString().toStdString(), "Shader Builder");
    const QByteArray text = Content(kPackaging + QStringLiteral("tavrin.desktop"));
    EXPECT_TRUE(text.contains("\nMimeType=" + ReadDocumentType().name.toUtf8() + ";\n"));
    const QString icon = entry.value(QStringLiteral("Icon")).toString();
    EXPECT_TRUE(QFile::exists(kPackaging + icon + QStringLiteral(".svg"))) << icon.toStdString();
}

TEST(Packaging, TheDescriptionForSoftwareCentresNamesTheSameEntryAndType) {
    const QByteArray text = Content(kPackaging + QStringLiteral("tavrin.metainfo.xml"));
    EXPECT_TRUE(text.contains("<launchable type=\"desktop-id\">tavrin.desktop</launchable>"));
    EXPECT_TRUE(text.contains("<mediatype>" + ReadDocumentType().name.toUtf8() + "</mediatype>"));
}

}  // namespace
}  // namespace tavrin
