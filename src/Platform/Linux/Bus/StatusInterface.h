#pragma once

#include "Platform/StatusPublisher.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariantMap>

#include <functional>

namespace pavonel {

/// The status and the commands on the bus, as docs/bus.md describes them. A property that is not stored is
/// one that passes with every second: no signal tells of it.
class StatusInterface final : public QDBusAbstractAdaptor, public StatusPublisher {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.pavonel.Pavonel1")
    Q_CLASSINFO("D-Bus Introspection",
                "<interface name=\"org.pavonel.Pavonel1\">\n"
                "<method name=\"TakeMicroBreak\"/>\n"
                "<method name=\"TakeLongBreak\"/>\n"
                "<method name=\"Skip\"/>\n"
                "<method name=\"Postpone\"><arg name=\"seconds\" type=\"u\" direction=\"in\"/></method>\n"
                "<method name=\"Pause\"><arg name=\"seconds\" type=\"u\" direction=\"in\"/></method>\n"
                "<method name=\"PauseIndefinitely\"/>\n"
                "<method name=\"Resume\"/>\n"
                "<property name=\"Phase\" type=\"s\" access=\"read\"/>\n"
                "<property name=\"Hold\" type=\"s\" access=\"read\"/>\n"
                "<property name=\"NextKind\" type=\"s\" access=\"read\"/>\n"
                "<property name=\"NextTitle\" type=\"s\" access=\"read\"/>\n"
                "<property name=\"NextDue\" type=\"x\" access=\"read\"/>\n"
                "<property name=\"NextRemaining\" type=\"x\" access=\"read\"/>\n"
                "<property name=\"BreakKind\" type=\"s\" access=\"read\"/>\n"
                "<property name=\"BreakTitle\" type=\"s\" access=\"read\"/>\n"
                "<property name=\"BreakEnds\" type=\"x\" access=\"read\"/>\n"
                "<property name=\"PauseEnds\" type=\"x\" access=\"read\"/>\n"
                "<property name=\"TodayMicro\" type=\"i\" access=\"read\"/>\n"
                "<property name=\"TodayLong\" type=\"i\" access=\"read\"/>\n"
                "<property name=\"TodayPlanned\" type=\"i\" access=\"read\"/>\n"
                "<property name=\"TodaySkipped\" type=\"i\" access=\"read\"/>\n"
                "<property name=\"Line\" type=\"s\" access=\"read\">\n"
                "<annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" value=\"false\"/>\n"
                "</property>\n"
                "<property name=\"TodayScreenSeconds\" type=\"x\" access=\"read\">\n"
                "<annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" value=\"false\"/>\n"
                "</property>\n"
                "<property name=\"TodayBreakSeconds\" type=\"x\" access=\"read\">\n"
                "<annotation name=\"org.freedesktop.DBus.Property.EmitsChangedSignal\" value=\"false\"/>\n"
                "</property>\n"
                "</interface>\n")
    Q_PROPERTY(QString Phase READ phase)
    Q_PROPERTY(QString Hold READ hold)
    Q_PROPERTY(QString NextKind READ nextKind)
    Q_PROPERTY(QString NextTitle READ nextTitle)
    Q_PROPERTY(qlonglong NextDue READ nextDue)
    Q_PROPERTY(qlonglong NextRemaining READ nextRemaining)
    Q_PROPERTY(QString BreakKind READ breakKind)
    Q_PROPERTY(QString BreakTitle READ breakTitle)
    Q_PROPERTY(qlonglong BreakEnds READ breakEnds)
    Q_PROPERTY(qlonglong PauseEnds READ pauseEnds)
    Q_PROPERTY(int TodayMicro READ todayMicro)
    Q_PROPERTY(int TodayLong READ todayLong)
    Q_PROPERTY(int TodayPlanned READ todayPlanned)
    Q_PROPERTY(int TodaySkipped READ todaySkipped)
    Q_PROPERTY(QString Line READ line STORED false)
    Q_PROPERTY(qlonglong TodayScreenSeconds READ todayScreenSeconds STORED false)
    Q_PROPERTY(qlonglong TodayBreakSeconds READ todayBreakSeconds STORED false)

public:
    /// `path` is where `exported` is on the bus.
    StatusInterface(QObject *exported, const QDBusConnection &bus, QString path);

    static const QString name;

    void serve(RemoteControl *control) override;
    void tellChange() override;

    QString phase() const { return facts().phase; }
    QString hold() const { return facts().hold; }
    QString nextKind() const { return next().kind; }
    QString nextTitle() const { return next().title; }
    qlonglong nextDue() const { return next().due.value_or(0); }
    qlonglong nextRemaining() const { return next().remaining.value_or(0); }
    QString breakKind() const { return running().kind; }
    QString breakTitle() const { return running().title; }
    qlonglong breakEnds() const { return running().ends; }
    qlonglong pauseEnds() const { return facts().pauseEnds.value_or(0); }
    int todayMicro() const { return facts().today.micro; }
    int todayLong() const { return facts().today.long_; }
    int todayPlanned() const { return facts().today.planned; }
    int todaySkipped() const { return facts().today.skipped; }
    QString line() const { return status().line; }
    qlonglong todayScreenSeconds() const { return status().screenSeconds; }
    qlonglong todayBreakSeconds() const { return status().breakSeconds; }

public Q_SLOTS:
    void TakeMicroBreak(const QDBusMessage &call);
    void TakeLongBreak(const QDBusMessage &call);
    void Skip(const QDBusMessage &call);
    void Postpone(uint by, const QDBusMessage &call);
    void Pause(uint length, const QDBusMessage &call);
    void PauseIndefinitely(const QDBusMessage &call);
    void Resume(const QDBusMessage &call);

private:
    using Next = Status::Facts::Next;
    using Running = Status::Facts::Running;

    Status status() const { return control_ ? control_->status() : Status(); }
    Status::Facts facts() const { return status().facts; }
    Next next() const { return facts().next.value_or(Next()); }
    Running running() const { return facts().running.value_or(Running()); }

    using Wish = std::function<RemoteControl::Outcome(RemoteControl &)>;
    void fulfil(const QDBusMessage &call, const QString &signature, const Wish &wish);
    QVariantMap toldProperties() const;

    QDBusConnection bus_;
    QString path_;
    RemoteControl *control_ = nullptr;
    QVariantMap told_;
};

} // namespace pavonel
