#pragma once

#include <QObject>

class QKeyEvent;

namespace pavonel {

/// What keys do to every control: they lead to it, which its ring shows and what scrolls brings in sight, and
/// Return acts on a button as Space does, once however long it is held. Arrow keys that lead nowhere are left
/// to what the button lies in.
class Keyboard final : public QObject {
public:
    bool eventFilter(QObject *watched, QEvent *event) override;
};

/// Besides the space bar, which buttons know by themselves.
bool isReturn(const QKeyEvent &event);

} // namespace pavonel
