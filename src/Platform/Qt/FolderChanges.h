#pragma once

#include <QFileSystemWatcher>
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
    std::unique_ptr<QFileSystemWatcher> watcher_; ///< Made with the first question.
    bool changed_ = true;
};

} // namespace pavonel
