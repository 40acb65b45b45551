#pragma once

#include <QTextDocument>

/// What a tool tip shows, which guesses whether its text is markup.
inline QString shownByToolTip(const QString &tip)
{
    if (!Qt::mightBeRichText(tip))
        return tip;
    QTextDocument document;
    document.setHtml(tip);
    return document.toRawText().replace(QChar::ParagraphSeparator, QLatin1Char('\n'));
}
