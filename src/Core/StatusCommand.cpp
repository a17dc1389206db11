#include "Core/StatusCommand.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace pavonel {

namespace {

using Facts = Status::Facts;

QString oneLine(const QJsonObject &object) {
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QJsonValue orNull(const std::optional<qint64> &number) {
    return number ? QJsonValue(*number) : QJsonValue();
}

QJsonValue orNull(const QString &text) {
    return text.isEmpty() ? QJsonValue() : QJsonValue(text);
}

QJsonValue json(const std::optional<Facts::Next> &next, qint64 now) {
    if (!next)
        return {};
    return QJsonObject{{QStringLiteral("kind"), next->kind},
                       {QStringLiteral("title"), next->title},
                       {QStringLiteral("due"), orNull(next->due)},
                       {QStringLiteral("remaining"),
                        next->due ? std::max<qint64>(0, *next->due - now) : next->remaining.value_or(0)}};
}

QJsonValue json(const std::optional<Facts::Running> &running, qint64 now) {
    if (!running)
        return {};
    return QJsonObject{{QStringLiteral("kind"), running->kind},
                       {QStringLiteral("title"), running->title},
                       {QStringLiteral("ends"), running->ends},
                       {QStringLiteral("remaining"), std::max<qint64>(0, running->ends - now)}};
}

} // namespace

QString statusJson(const Status &status, Instant now) {
    const Facts &facts = status.facts;
    const auto seconds = std::chrono::round<std::chrono::seconds>(now).time_since_epoch().count();
    return oneLine(
        {{QStringLiteral("running"), true},
         {QStringLiteral("line"), status.line},
         {QStringLiteral("phase"), facts.phase},
         {QStringLiteral("hold"), orNull(facts.hold)},
         {QStringLiteral("next"), json(facts.next, seconds)},
         {QStringLiteral("break"), json(facts.running, seconds)},
         {QStringLiteral("pauseEnds"), orNull(facts.pauseEnds)},
         {QStringLiteral("today"), QJsonObject{{QStringLiteral("micro"), facts.today.micro},
                                               {QStringLiteral("long"), facts.today.long_},
                                               {QStringLiteral("planned"), facts.today.planned},
                                               {QStringLiteral("skipped"), facts.today.skipped},
                                               {QStringLiteral("screenSeconds"), status.screenSeconds},
                                               {QStringLiteral("breakSeconds"), status.breakSeconds}}}});
}

StatusCommand::StatusCommand(MainLoop &loop, RunningPavonel &running, Form form, Print print, Print complain)
    : loop_(loop), running_(running), form_(form), print_(std::move(print)), complain_(std::move(complain)) {}

int StatusCommand::tell() {
    return std::visit([this](const auto &answer) { return print(answer); }, running_.status());
}

void StatusCommand::follow() {
    running_.follow([this] { tellChange(); });
    loop_.post([this] { tellChange(); }); // the loop has to run before it can end
}

void StatusCommand::tellChange() {
    const RunningPavonel::Answer answer = running_.status();
    const auto *status = std::get_if<Status>(&answer);
    if (status && status->facts == told_)
        return;
    told_ = status ? std::optional(status->facts) : std::nullopt;
    if (const int exitStatus = std::visit([this](const auto &known) { return print(known); }, answer))
        loop_.quit(exitStatus);
}

int StatusCommand::print(const Status &status) {
    const QString line = form_ == Form::json ? statusJson(status, loop_.now()) : status.line.simplified();
    return print_(line) ? EXIT_SUCCESS : EXIT_FAILURE;
}

int StatusCommand::print(RunningPavonel::Failure failure) {
    if (failure == RunningPavonel::Failure::noAnswer) {
        complain_(QStringLiteral("the Pavonel that runs does not tell its status"));
        return EXIT_FAILURE;
    }
    print_(form_ == Form::json ? oneLine({{QStringLiteral("running"), false}})
                               : QStringLiteral("Pavonel is not running"));
    return notRunning;
}

} // namespace pavonel
