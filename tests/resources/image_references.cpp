#include "image_references.h"

#include <QDirIterator>
#include <QFile>
#include <QMap>
#include <QRegularExpression>

namespace {

const QStringList programFolders{QStringLiteral("app"), QStringLiteral("camera"),
                                 QStringLiteral("settings"), QStringLiteral("ui"),
                                 QStringLiteral("resources")};

QString textOf(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    static const QRegularExpression joint(QStringLiteral("\"\\s*\\n\\s*\""));
    return text.remove(joint);
}

void addReferences(const QString &file, QVector<ImageReference> &references)
{
    static const QRegularExpression named(
        QStringLiteral(":/images/([\\w/%]+)\\.png(?:\\)((?:\\s+\\d+)+))?"));
    const QString text = textOf(file);
    auto matches = named.globalMatch(text);
    while (matches.hasNext()) {
        const auto match = matches.next();
        ImageReference reference{file, match.captured(1), {}};
        for (const QString &cut : match.captured(2).simplified().split(' ', Qt::SkipEmptyParts))
            reference.cuts.append(cut.toInt());
        references.append(reference);
    }
}

/// What the code puts in for "%1", by the name as written.
const QMap<QString, QStringList> &builtNames()
{
    static const QMap<QString, QStringList> names{
        {"appicon/%1", {"16", "24", "32", "48", "64", "128"}},
        {"panelbtn/%1", {"volumebtn_checked", "volumebtn_unchecked"}},
        {"panelbtn/%1hover", {"volumebtn_checked", "volumebtn_unchecked"}},
        {"sysbtn/%1_default", {"menubtn", "minbtn", "maxbtn", "restorebtn", "closebtn"}},
        {"sysbtn/%1_hover", {"menubtn", "minbtn", "maxbtn", "restorebtn", "closebtn"}},
        {"sysbtn/%1_focus", {"menubtn", "minbtn", "maxbtn", "restorebtn", "closebtn"}},
        {"sysbtn/%1_down", {"menubtn", "minbtn", "maxbtn", "restorebtn", "closebtn"}},
        {"cameraitem/cameraitemframe_%1", {"default", "hover"}},
        {"multilive/multiliveitemframe_%1", {"default", "hover"}},
    };
    return names;
}

} // namespace

QVector<ImageReference> imageReferences(const QString &sourceFolder)
{
    QVector<ImageReference> references;
    for (const QString &folder : programFolders) {
        QDirIterator files(sourceFolder + QLatin1Char('/') + folder,
                           {QStringLiteral("*.cpp"), QStringLiteral("*.h"), QStringLiteral("*.ui"),
                            QStringLiteral("*.qss")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            addReferences(files.next(), references);
    }
    return references;
}

QStringList imagesMeant(const QString &name)
{
    if (!name.contains(QLatin1Char('%')))
        return {name};
    QStringList images;
    for (const QString &argument : builtNames().value(name))
        images.append(name.arg(argument));
    return images;
}
