#include "EndToEnd/Remote.h"

#include "support/ChildProcess.h"
#include "support/waitUntil.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

const QString service = QStringLiteral("org.pavonel.Pavonel");
const QString menuPath = QStringLiteral("/MenuBar");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu.");

} // namespace

QByteArray Remote::call(const QStringList &arguments) const {
    const auto result =
        ChildProcess::run(QStringLiteral("gdbus"),
                          QStringList{QStringLiteral("call"), QStringLiteral("--session"),
                                      QStringLiteral("--dest"), service, QStringLiteral("--object-path")} +
                              arguments,
                          environment_);
    return result.status == 0 ? result.output : QByteArray();
}

bool Remote::waitForIt() const {
    return waitUntil([this] {
        return !call({QStringLiteral("/org/pavonel/Pavonel"), QStringLiteral("--method"),
                      QStringLiteral("org.freedesktop.DBus.Peer.Ping")})
                    .isEmpty();
    });
}

int Remote::run(const QString &commandLine) const {
    QStringList words = QProcess::splitCommand(commandLine);
    const QString program = words.takeFirst();
    return ChildProcess::run(program, words, environment_).status;
}

std::map<int, QString> Remote::labels() const {
    const QString layout = QString::fromUtf8(
        call({menuPath, QStringLiteral("--method"), menuInterface + QStringLiteral("GetLayout"),
              QStringLiteral("0"), QStringLiteral("--"), QStringLiteral("-1"), QStringLiteral("[]")}));
    static const QRegularExpression entry(QStringLiteral(R"(\((\d+), \{[^}]*'label': <'([^']*)'>)"));
    std::map<int, QString> labels;
    for (auto match = entry.globalMatch(layout); match.hasNext();) {
        const auto found = match.next();
        labels.emplace(found.captured(1).toInt(), found.captured(2));
    }
    return labels;
}

QStringList Remote::menu() const {
    QStringList menu;
    for (const auto &[id, label] : labels())
        menu.append(label);
    return menu;
}

void Remote::choose(const QString &label) const {
    for (const auto &[id, found] : labels()) {
        if (found != label)
            continue;
        call({menuPath, QStringLiteral("--method"), menuInterface + QStringLiteral("Event"),
              QString::number(id), QStringLiteral("clicked"), QStringLiteral("<0>"), QStringLiteral("0")});
        return;
    }
    ADD_FAILURE() << "The menu has no \"" << label.toStdString() << "\" but "
                  << menu().join(u'|').toStdString();
}

} // namespace pavonel::test
