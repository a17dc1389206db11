#pragma once

#include "Core/PlannedBreak.h"

#include <QWidget>

#include <functional>
#include <map>
#include <vector>

class QBoxLayout;
class QHBoxLayout;
class QLineEdit;

namespace pavonel {

class Button;
class PopUpButton;
class Stepper;
class Switch;

/// One planned break to edit: its label, time, weekdays, length and switch, and a button that removes it. On
/// two lines; on four where the page is narrow for the size of the text.
class PlannedRow : public QWidget {
public:
    using Edit = std::function<void(PlannedBreak &)>;

    /// `change` is given what to do to the record, `remove` takes it away; both at once with the user's act.
    PlannedRow(std::function<void(const Edit &)> change, std::function<void()> remove);

    /// Without a report.
    void display(const PlannedBreak &planned);

    /// To its label, all of which the next letter replaces.
    void takeKeyboard();

    /// Of every row that is so wide.
    static int heightAt(int width);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void makeHead();
    void makeTime();
    void makeWeekdays();
    void makeDuration();
    PopUpButton *picker(const QString &name, int count, QString (*text)(int), int PlannedBreak::*field);
    void toggleWeekday(int weekday, bool on);
    void nameAfter(const QString &label);

    std::function<void(const Edit &)> change_;
    QLineEdit *label_;
    PopUpButton *hour_;
    PopUpButton *minute_;
    Switch *enabled_;
    Button *remove_;
    std::map<int, Button *> weekdays_;
    Stepper *duration_;
    // Two lines of two halves; four lines where there is no room.
    QHBoxLayout *head_;
    QHBoxLayout *time_; ///< With the switch and the button.
    QHBoxLayout *days_;
    QHBoxLayout *length_;
    QBoxLayout *first_;
    QBoxLayout *second_;
};

} // namespace pavonel
