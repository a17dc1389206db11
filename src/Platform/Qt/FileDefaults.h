#pragma once

#include "Platform/MainLoop.h"
#include "Platform/Qt/StoredJson.h"
#include "Platform/UserDefaults.h"

#include <future>

namespace pavonel {

/// The store as one JSON file for the user's eyes only, kept in memory and written whole.
///
/// A file that cannot be used (damaged, absurdly large, not a regular file, or unreadable for lack of
/// permission or because the disk failed) is renamed to `<name>.broken-<time>` and the store starts empty.
/// Where even the renaming fails, it is tried again before each write: what was never read is never
/// overwritten.
///
/// A disk can take its time, so writing goes on a thread of its own; one write ends before the next begins.
/// Flushing waits for it.
///
/// Destroying the store writes nothing, because lazily set values may be gone by then: flush before.
class FileDefaults final : public UserDefaults {
public:
    /// `threads` as for std::async: deferred keeps all of it on the caller's thread.
    FileDefaults(QString path, MainLoop &loop,
                 std::launch threads = std::launch::async | std::launch::deferred);

    std::optional<StoredValue> value(const QString &key) const override;
    void set(const QString &key, StoredValue value) override;
    void setLazily(const QString &key, Encoder encode) override;
    void remove(const QString &key) override;
    void flush() override;

private:
    enum class Urgency { whenConvenient, soon };

    bool read();
    void schedule(Urgency urgency);
    void collectLazyValues();
    void save();
    void startWriting(std::launch threads);
    void finishWriting();

    QString path_;
    MainLoop &loop_;
    std::launch threads_;
    storedJson::Members members_;
    std::map<QString, Encoder> encoders_;
    bool fileIsOurs_ = false; ///< What lies at the path was read or written by us.
    bool isChanged_ = false;  ///< The members differ from the file, and from what is being written.
    TimerHandle nextWrite_;
    Urgency nextUrgency_ = Urgency::whenConvenient;
    Seconds retryDelay_;
    std::future<bool> write_;       ///< Valid until its outcome was taken.
    std::shared_ptr<bool> writing_; ///< Goes when its outcome was taken, so that late news of it are none.
};

} // namespace pavonel
