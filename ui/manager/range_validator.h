#pragma once

#include <QIntValidator>

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

} // namespace zelvaro
