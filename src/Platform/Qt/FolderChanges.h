#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QSet>
#include <QStringList>

#include <memory>

namespace pavonel {

/// The folder, or as much of the way to it as there is.
QString existingPartOf(QString folder);

/// Tells whether some files may have come, gone or been replaced, so that nobody has to look for them again
/// and again. Main thread only; what happens is known once the main loop has turned.
class FolderChanges {
public:
    explicit FolderChanges(const QStringList &files);

    /// Since the last question. At first, and where the system cannot watch, there always are some.
    bool any();

private:
    bool watch();

    QStringList folders_;
    QSet<QString> places_;                        ///< What of them there is, which is watched.
    std::shared_ptr<QFileSystemWatcher> watcher_; ///< From the first question on.
    bool changed_ = true;
    QObject context_; ///< The watcher can outlive us.
};

} // namespace pavonel
