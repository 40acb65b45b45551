#include "ui/manager/motion_window_box.h"

#include "ui/manager/range_validator.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>

namespace zelvaro {

namespace {

struct Field
{
    const char *name;
    const char *label;
    const QValidator *MotionValidators::*validator;
};

constexpr std::array<Field, MotionWindowBox::fieldCount> fields{{
    {"left", QT_TRANSLATE_NOOP("zelvaro::MotionWindowBox", "Left"), &MotionValidators::x},
    {"top", QT_TRANSLATE_NOOP("zelvaro::MotionWindowBox", "Top"), &MotionValidators::y},
    {"right", QT_TRANSLATE_NOOP("zelvaro::MotionWindowBox", "Right"), &MotionValidators::x},
    {"bottom", QT_TRANSLATE_NOOP("zelvaro::MotionWindowBox", "Bottom"), &MotionValidators::y},
    {"thres", QT_TRANSLATE_NOOP("zelvaro::MotionWindowBox", "Threshold"),
     &MotionValidators::percent},
    {"sens", QT_TRANSLATE_NOOP("zelvaro::MotionWindowBox", "Sensitivity"),
     &MotionValidators::percent},
}};

constexpr int fieldsInRow = 2;
constexpr int spacing = 8;
constexpr int leastEditWidth = 64;

} // namespace

MotionWindowBox::MotionWindowBox(QWidget *parent) : QGroupBox(parent)
{
    setCheckable(true);
    auto *grid = new QGridLayout(this);
    grid->setSpacing(spacing);
    for (int i = 0; i < fieldCount; ++i) {
        auto *edit = new QLineEdit;
        edit->setMinimumWidth(leastEditWidth);
        auto *label = new QLabel(tr(fields.at(std::size_t(i)).label));
        label->setBuddy(edit);
        const int row = i / fieldsInRow;
        const int column = 2 * (i % fieldsInRow);
        grid->addWidget(label, row, column);
        grid->addWidget(edit, row, column + 1);
        grid->setColumnStretch(column + 1, 1);
        m_edits.at(std::size_t(i)) = edit;
    }
}

void MotionWindowBox::setUp(int number, const MotionValidators &validators)
{
    setTitle(tr("Detection Window: %1").arg(number));
    for (std::size_t i = 0; i < fields.size(); ++i) {
        m_edits.at(i)->setObjectName(QLatin1String(fields.at(i).name) + QString::number(number));
        m_edits.at(i)->setValidator(validators.*fields.at(i).validator);
        new RangeGuard(m_edits.at(i));
    }
}

QStringList MotionWindowBox::values() const
{
    QStringList values{isChecked() ? QStringLiteral("1") : QStringLiteral("0")};
    for (const QLineEdit *edit : m_edits)
        values << edit->text();
    return values;
}

void MotionWindowBox::setValues(const QStringList &values)
{
    if (values.length() < 1 + fieldCount)
        return;
    setChecked(values.first() == QLatin1String("1"));
    for (int i = 0; i < fieldCount; ++i)
        m_edits.at(std::size_t(i))->setText(values.at(1 + i));
}

} // namespace zelvaro
