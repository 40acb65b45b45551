#include "ui/manager/add_button_form.h"

#include "ui_add_button_form.h"

CAddButtonForm::CAddButtonForm(QWidget *parent)
    : QWidget(parent)
    , m_ui(std::make_unique<Ui::CAddButtonForm>())
{
    m_ui->setupUi(this);
    // In the tab order, the tile is represented by its button.
    setFocusPolicy(m_ui->btnAdd->focusPolicy());
    setFocusProxy(m_ui->btnAdd);
    connect(m_ui->btnAdd, &QToolButton::clicked, this, &CAddButtonForm::slotClicked);
}

CAddButtonForm::~CAddButtonForm() = default;

void CAddButtonForm::slotClicked()
{
    emit clicked();
}
