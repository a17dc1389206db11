#pragma once

#include "Platform/BackgroundTask.h"
#include "Platform/Qt/StoredJson.h"
#include "Platform/UserDefaults.h"

namespace pavonel {

/// The store as one JSON file for the user's eyes only, kept in memory and written whole.
///
/// A file that cannot be used (damaged, absurdly large, not a regular file, or unreadable for lack of
/// permission or because the disk failed) is renamed to `<name>.broken-<time>` and the store starts empty.
/// Where even the renaming fails, it is tried again before each write: what was never read is never
/// overwritten.
///
/// A disk can take its time or stop answering, so writing goes on a thread that nobody waits for; one write
/// ends before the next begins. Flushing waits for it, but only for some seconds.
///
/// Destroying the store writes nothing, because lazily set values may be gone by then: flush before.
class FileDefaults final : public UserDefaults {
public:
    /// Where writing goes on.
    enum class Writing { aside, onTheCallersThread };

    FileDefaults(QString path, MainLoop &loop, Writing writing = Writing::aside);

    std::optional<StoredValue> value(const QString &key) const override;
    void set(const QString &key, StoredValue value) override;
    void setLazily(const QString &key, Encoder encode) override;
    void noteChange(const QString &key) override;
    void remove(const QString &key) override;
    void save() override;
    void flush() override;

private:
    enum class Urgency { whenConvenient, soon };

    bool read();
    void schedule(Urgency urgency);
    void collectLazyValues();
    void finishWriting(bool isWritten);

    QString path_;
    MainLoop &loop_;
    Writing writing_;
    storedJson::Members members_;
    std::map<QString, Encoder> encoders_;
    bool fileIsOurs_ = false; ///< What lies at the path was read or written by us.
    bool isChanged_ = false;  ///< The members differ from the file, and from what is being written.
    TimerHandle nextWrite_;
    Urgency nextUrgency_ = Urgency::whenConvenient;
    Seconds retryDelay_;
    BackgroundTask write_;
};

} // namespace pavonel
