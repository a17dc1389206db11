#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QObject>
#include <QRect>

#include <cstdint>
#include <functional>
#include <optional>

namespace pavonel {

/// Our extension of GNOME Shell (gnome/ in the tree), which answers nobody but us. It comes and goes with the
/// Shell, with the lock screen, and as the user switches it. What it tells is checked: anybody may have its
/// name.
class GnomeExtension final : public QObject {
    Q_OBJECT

public:
    static const QString service;

    struct Front {
        std::int32_t processId = 0; ///< 0 where the Shell does not know.
        QString windowClass;
        QString windowInstance;
        QPoint middle; ///< In the Shell's pixels.
        bool isFullscreen = false;
    };

    /// The bus does not need to be there.
    explicit GnomeExtension(const QDBusConnection &session);

    bool isPresent() const { return !owner_.isEmpty() && session_.isConnected(); }

    /// Whether there is a GNOME Shell, which could have it.
    bool isShellThere() const;

    /// What to do for it to be present, as one more sentence; empty where there is no GNOME Shell.
    QString advice() const;

    /// Absent while no window has the focus.
    std::optional<Front> front() const { return isPresent() ? front_ : std::nullopt; }

    /// As the extension last told; asks anew, so that whoever asks often is answered well. In its pixels.
    std::optional<QPoint> pointer();

    /// `done` is given the number by which presses of this combination are told, 0 when it is taken.
    void grab(const QString &accelerator, std::function<void(std::uint32_t)> done);
    void ungrab(std::uint32_t action);

Q_SIGNALS:
    void presenceChanged();
    void pressed(std::uint32_t action);

private Q_SLOTS:
    void noticeFront(const QDBusMessage &message);
    void noticePressed(const QDBusMessage &message);

private:
    void begin(const QString &owner);
    void ask(const char *method, const QVariantList &arguments,
             std::function<void(const QDBusMessage &)> done);

    QDBusConnection session_;
    QDBusServiceWatcher watcher_;
    QString owner_;
    std::optional<Front> front_;
    std::optional<QPoint> pointer_;
    QElapsedTimer sincePointer_;
    bool isAskingPointer_ = false;
};

} // namespace pavonel
