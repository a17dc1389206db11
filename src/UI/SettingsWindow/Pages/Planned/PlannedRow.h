#pragma once

#include "Core/PlannedBreak.h"
#include "UI/Controls/Visuals.h"

#include <QWidget>

#include <functional>
#include <vector>

class QLineEdit;

namespace pavonel {

class Button;
class PopUpButton;
class Stepper;
class Switch;
class WeekdayToggle;

/// One planned break to edit: its label, time, weekdays, length and switch, and a button that removes it. On
/// two lines; on four where the page is narrow for the size of the text.
class PlannedRow : public QWidget {
public:
    using Edit = std::function<void(PlannedBreak &)>;

    /// `change` is given what to do to the record, `remove` takes it away; both at once with the user's act.
    PlannedRow(Visuals &visuals, std::function<void(const Edit &)> change, std::function<void()> remove);

    /// Without a report.
    void display(const PlannedBreak &planned);

    /// To its label, all of which the next letter replaces.
    void takeKeyboard();

    /// Of every row that is so wide.
    static int heightAt(int width, const Visuals &visuals);

    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;

private:
    void addFirstLine();
    void addWeekdays();
    void addDuration();
    void arrange();
    PopUpButton *picker(const QString &name, int count, QString (*text)(int), int PlannedBreak::*field);
    void toggleWeekday(int weekday, bool on);
    void nameAfter(const QString &label);

    Visuals &visuals_;
    std::function<void(const Edit &)> change_;
    QLineEdit *label_;
    QWidget *time_;
    PopUpButton *hour_;
    PopUpButton *minute_;
    Switch *enabled_;
    Button *remove_;
    std::vector<WeekdayToggle *> weekdays_;
    QWidget *days_;
    QWidget *length_;
    Stepper *duration_;
};

} // namespace pavonel
