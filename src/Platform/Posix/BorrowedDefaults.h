#pragma once

#include "Platform/MainLoop.h"
#include "Platform/UserDefaults.h"

#include <map>

namespace pavonel {

/// The store as seen by a process that may run beside the one to which it belongs. It is opened anew for each
/// use, and only while nobody else holds its lock: otherwise every key reads as missing, and what is set is
/// dropped.
class BorrowedDefaults final : public UserDefaults {
public:
    BorrowedDefaults(QString path, QString lockPath, MainLoop &loop);

    std::optional<StoredValue> value(const QString &key) const override;
    void set(const QString &key, StoredValue value) override;
    void setLazily(const QString &key, Encoder encode) override;
    void noteChange(const QString &key) override;
    void remove(const QString &key) override;
    void save() override {} ///< Nothing is ever pending.
    void flush() override {}

private:
    template <class Use> void borrow(Use use) const;

    QString path_;
    QString lockPath_;
    MainLoop &loop_;
    std::map<QString, Encoder> encoders_;
};

} // namespace pavonel
