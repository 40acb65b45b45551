#include "ui/common/stored_text_message.h"

#include <QCoreApplication>

namespace zelvaro {

QString storedTextMessage(SettingsText which, const QString &text, const QString &label)
{
    switch (storedText(which, text)) {
    case StoredText::Whole:
        break;
    case StoredText::TooLong:
        return QCoreApplication::translate("StoredText",
                                           "%1: too long to be saved. Please enter a shorter text.")
            .arg(label);
    case StoredText::Unencodable:
        return QCoreApplication::translate(
                   "StoredText", "%1: has characters that cannot be saved on this system.")
            .arg(label);
    }
    return {};
}

} // namespace zelvaro
