#pragma once

#include "Platform/Linux/Applications/WindowSource.h"
#include "Platform/Linux/KWin/KWinScript.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

namespace pavonel {

/// The window in front as KWin tells of it: a script of ours inside KWin calls us whenever it changes. The
/// first question brings the script there.
class KWinWindows final : public QObject, protected QDBusContext, public WindowSource {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.pavonel.KWin")

public:
    explicit KWinWindows(const QDBusConnection &bus);
    ~KWinWindows() override;

    /// Whether there is a KWin.
    bool isTelling() override { return !kwin_.isEmpty(); }
    std::optional<FrontWindow> front() override;
    std::vector<FullscreenWindow> fullscreen() override;

public Q_SLOTS:
    /// For the script. Whoever else calls is refused.
    Q_NOREPLY void Front(const QString &json);

private:
    void follow(const QString &owner);
    void subscribe();

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    QString kwin_; ///< Its unique name on the bus; empty while there is none.
    std::unique_ptr<KWinScript> script_;
    std::optional<FrontWindow> front_;
    std::optional<FullscreenWindow> fullscreen_; ///< The same window, if it is.
};

} // namespace pavonel
