#include "ui/manager/range_validator.h"

#include <QLineEdit>

#include <algorithm>

namespace zelvaro {

QValidator::State RangeValidator::validate(QString &input, int &) const
{
    if (input.isEmpty())
        return Intermediate;
    const auto isDigit = [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); };
    const int digits = QString::number(top()).length();
    if (input.length() > digits || !std::all_of(input.cbegin(), input.cend(), isDigit))
        return Invalid;
    const int number = input.toInt();
    if (number >= bottom() && number <= top())
        return Acceptable;
    // More digits only make it larger, so what is too small may still grow.
    return number > top() || number == 0 ? Invalid : Intermediate;
}

RangeGuard::RangeGuard(QLineEdit *edit) : QObject(edit), m_shown(edit->text())
{
    connect(edit, &QLineEdit::textEdited, this, [this, edit](QString text) {
        int position = 0;
        if (text.length() >= m_shown.length() &&
            edit->validator()->validate(text, position) == QValidator::Invalid)
            edit->setText(m_shown);
    });
    // What it shows now: the text of the signal may just have been undone.
    connect(edit, &QLineEdit::textChanged, this, [this, edit] { m_shown = edit->text(); });
}

} // namespace zelvaro
