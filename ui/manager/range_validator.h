#pragma once

#include <QIntValidator>

class QLineEdit;

namespace zelvaro {

/// Takes whole numbers from bottom (0 or more) to top and nothing that leads beyond them: a key
/// that would make the number too large, and a lone 0 where 0 is too small, are refused. Empty is
/// on the way to a number.
class RangeValidator : public QIntValidator
{
public:
    using QIntValidator::QIntValidator;

    State validate(QString &input, int &position) const override;
};

/// QLineEdit takes every key while its text is refused by its validator. This guards one whose
/// text comes from elsewhere and may be outside the range: an edit that leaves it outside is
/// undone, unless it removes characters.
class RangeGuard : public QObject
{
public:
    /// Belongs to the edit.
    explicit RangeGuard(QLineEdit *edit);

private:
    QString m_shown;
};

} // namespace zelvaro
