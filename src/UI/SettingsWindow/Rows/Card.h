#pragma once

#include "UI/SettingsWindow/Rows/Element.h"

#include <QString>

namespace pavonel {

/// A rounded panel with a bold title, a subtitle under it, then the content.
struct Card {
    QString title;
    QString subtitle;
    Elements content;

    QWidget *make(Visuals &visuals) const;
};

} // namespace pavonel
