#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class CAddButtonForm;
}

/// The tile at the end of the camera page whose button adds a camera.
class CAddButtonForm : public QWidget
{
    Q_OBJECT

public:
    explicit CAddButtonForm(QWidget *parent = nullptr);
    ~CAddButtonForm() override;

signals:
    void clicked();

private slots:
    void slotClicked();

private:
    std::unique_ptr<Ui::CAddButtonForm> m_ui;
};
