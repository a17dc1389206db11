#pragma once

#include "support/ChildProcess.h"

#include <QColor>
#include <QSize>

namespace pavonel::test {

/// A program with one window of one colour, which tells what happens to it. It ends with this object.
class OtherWindow {
public:
    enum class State { normal, fullscreen };

    /// `name` is its title and the name of its desktop file.
    explicit OtherWindow(const QProcessEnvironment &environment,
                         const QString &name = QStringLiteral("other"), State state = State::normal);

    /// Its path, for a test that starts it in a way of its own.
    static QString program();

    static QColor colour() { return Qt::cyan; }
    qint64 processId() { return process_.process().processId(); }

    /// How often a line has come so far: "active", "inactive", "click", "key 65" (of Qt's keys),
    /// "painted 1280x800".
    qsizetype times(const QByteArray &line);

    /// Waits until it has the keyboard, or has lost it.
    bool becomesActive() { return ends("active", "inactive"); }
    bool becomesInactive() { return ends("inactive", "active"); }

    /// Waits until it was painted in this size.
    bool isPainted(QSize size);

private:
    void read();
    bool ends(const char *line, const char *opposite);

    ChildProcess process_;
    QByteArrayList lines_;
};

} // namespace pavonel::test
