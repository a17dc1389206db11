#pragma once

#include "Platform/Posix/FileLock.h"
#include "Platform/SingleInstance.h"

#include <QDBusConnection>
#include <QObject>

#include <memory>
#include <vector>

namespace pavonel {

class StatusInterface;

/// Our name on the session bus, by which later ones and the desktop reach us, and a lock beside the store for
/// when the other one is not on this bus or there is none.
class BusSingleInstance final : public SingleInstance {
public:
    BusSingleInstance(const QDBusConnection &bus, QString lockPath);
    ~BusSingleInstance() override;

    QString limitation() const override;
    Role claim() override;
    void onReopen(std::function<void()> reopen) override;
    void onAction(std::function<void(OutsideAction)> act) override;
    void afterWaitingCalls(std::function<void()> then) override;
    StatusPublisher &publisher() override;

    void reopen();
    void act(OutsideAction action);

private:
    enum class Name { ours, anothers, unavailable };

    Name takeName();
    enum class Answer { given, gone, none };
    Answer activateOther();
    bool takeLock();

    QDBusConnection bus_;
    QString lockPath_;
    std::unique_ptr<FileLock> lock_;
    QObject exported_;
    StatusInterface *publisher_; ///< Goes with what is exported.
    bool hasName_ = false;
    std::function<void()> reopen_;
    std::function<void(OutsideAction)> act_;
    bool wasReopened_ = false;
    std::vector<OutsideAction> waiting_;
};

} // namespace pavonel
