#pragma once

#include "Platform/Applications.h"
#include "Platform/IdleTime.h"
#include "Platform/Pointer.h"
#include "Platform/StatusItem.h"

#include <utility>

/// Answers for services that cannot work here: each harmless, each with the reason.
namespace pavonel::unavailable {

template <class Interface> class Unavailable : public Interface {
public:
    explicit Unavailable(QString reason) : reason_(std::move(reason)) {}
    QString limitation() const final { return reason_; }

private:
    QString reason_;
};

class IdleTime final : public Unavailable<pavonel::IdleTime> {
public:
    using Unavailable::Unavailable;
    Seconds idleSeconds() override { return 0; }
};

class Applications final : public Unavailable<pavonel::Applications> {
public:
    using Unavailable::Unavailable;
    std::vector<Application> running() override { return {}; }
    std::optional<Application> frontmost() override { return {}; }
    bool mayRunMore() override { return false; }
};

class Pointer final : public Unavailable<pavonel::Pointer> {
public:
    using Unavailable::Unavailable;
    std::optional<QPointF> position() override { return {}; }
};

class StatusItem final : public Unavailable<pavonel::StatusItem> {
public:
    using Unavailable::Unavailable;
    void setIcon(const QString &, const std::vector<QImage> &) override {}
    void setTitle(const QString &) override {}
    void setMenu(std::function<Menu()>) override {}
};

} // namespace pavonel::unavailable
