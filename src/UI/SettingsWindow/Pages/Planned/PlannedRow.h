#pragma once

#include "Core/PlannedBreak.h"
#include "UI/Controls/CardRow.h"
#include "UI/SettingsWindow/Rows/Rows.h"

class QBoxLayout;
class QHBoxLayout;

namespace pavonel {

/// One planned break to edit: its label, time, weekdays, length and switch, and a button that removes it. On
/// two lines; on four where the page is narrow for the size of the text.
class PlannedRow : public CardRow {
public:
    /// `remove` takes it away, and the row with it.
    PlannedRow(const ValueBinding<PlannedBreak> &planned, std::function<void()> remove);

    /// To its label, all of which the next letter replaces.
    void takeKeyboard();

    /// Of every row that is so wide.
    static int heightAt(int width);

    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QLineEdit *label_;
    // Two lines of two halves; four lines where there is no room.
    QHBoxLayout *head_;
    QHBoxLayout *time_; ///< With the switch and the button.
    QHBoxLayout *days_;
    QHBoxLayout *length_;
    QBoxLayout *first_;
    QBoxLayout *second_;
};

} // namespace pavonel
