#pragma once

#include <QAbstractButton>

namespace pavonel {

/// The capsule that ends a break early. Only a click does: it takes no keyboard focus, so that a space typed
/// when the break appears does not end it.
class SkipButton final : public QAbstractButton {
public:
    explicit SkipButton(QWidget *parent);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
};

} // namespace pavonel
