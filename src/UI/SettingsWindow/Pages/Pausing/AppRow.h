#pragma once

#include "Platform/InstalledApplications.h"
#include "UI/Controls/Look.h"

#include <QAbstractButton>
#include <QImage>

namespace pavonel {

/// An application to choose: its icon, its name and, behind that, its identifier.
class AppRow : public QAbstractButton {
public:
    AppRow(Look &look, const InstalledApplication &application, const QImage &icon);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Look &look_;
    InstalledApplication application_;
    QImage icon_;
};

} // namespace pavonel
