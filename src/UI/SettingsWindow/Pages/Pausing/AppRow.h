#pragma once

#include "Platform/InstalledApplications.h"
#include "UI/Controls/Visuals.h"

#include <QAbstractButton>
#include <QImage>

namespace pavonel {

/// An application to choose: its icon, its name and, behind that, its identifier.
class AppRow : public QAbstractButton {
public:
    AppRow(Visuals &visuals, const InstalledApplication &application, const QImage &icon);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Visuals &visuals_;
    InstalledApplication application_;
    QImage icon_;
};

} // namespace pavonel
