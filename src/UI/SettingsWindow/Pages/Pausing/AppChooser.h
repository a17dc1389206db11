#pragma once

#include "Platform/InstalledApplications.h"
#include "UI/Controls/AccessibleControl.h"
#include "UI/Controls/Visuals.h"

#include <QHash>
#include <QPointer>
#include <QWidget>

#include <functional>

class QLineEdit;

namespace pavonel {

class RowList;
class Text;

/// A sheet over the whole window that lists the installed applications. It goes with a choice, with Escape,
/// with its button, and with a click beside it, which a `QDialog`, a window of its own, would not see.
class AppChooser : public QWidget, public AccessibleControl {
public:
    /// Opens over the window of `anchor` and does not outlive that. `choose` is given the identifier.
    static void open(Visuals &visuals, InstalledApplications &applications, QWidget &anchor,
                     std::function<void(const QString &)> choose);

    QAccessibleInterface *makeAccessible() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    AppChooser(Visuals &visuals, InstalledApplications &applications, QWidget &anchor,
               std::function<void(const QString &)> choose);

    QWidget *list();
    QWidget *row(const QString &identifier);
    QRect panel() const;
    void layOut();
    void search(const QString &words);
    void take(const QString &identifier);
    void leave();

    Visuals &visuals_;
    InstalledApplications &applications_;
    QPointer<QWidget> anchor_; ///< Gets the keyboard back.
    std::function<void(const QString &)> choose_;
    std::vector<InstalledApplication> all_;
    QHash<QString, InstalledApplication> byIdentifier_;
    QWidget *body_;
    QLineEdit *search_;
    RowList *rows_;
    Text *nothing_;
};

} // namespace pavonel
