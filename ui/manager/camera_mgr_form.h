#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class CCameraMgrForm;
}

/// The first page: the registered cameras as tiles that flow with the width of the page.
class CCameraMgrForm : public QWidget
{
    Q_OBJECT

public:
    explicit CCameraMgrForm(QWidget *parent = nullptr);
    ~CCameraMgrForm() override;

    /// Makes a tile for each session that there is. Call once, when the page is in its window: a
    /// page that gets another parent is styled again with all its tiles.
    void fill();

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void tellVisibleRows();

    std::unique_ptr<Ui::CCameraMgrForm> m_ui;
};
