#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// One ":/images/..." of a source, form or style sheet.
struct ImageReference
{
    QString file;
    QString name;    ///< as written, below ":/images/", without ".png"; may hold "%1"
    QList<int> cuts; ///< the numbers that follow url(...); empty when there are none
};

/// Every reference in the texts of the program. Neighbouring C++ string literals count as one, so
/// that a style sheet may be broken over lines.
QVector<ImageReference> imageReferences(const QString &sourceFolder);

/// The images that a reference means: itself, or with what the code puts in for "%1". Empty for a
/// name with "%1" that the table in image_references.cpp does not know.
QStringList imagesMeant(const QString &name);
