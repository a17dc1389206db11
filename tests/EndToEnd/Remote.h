#pragma once

#include <QProcessEnvironment>
#include <QStringList>

#include <map>

namespace pavonel::test {

/// The program as others on its session bus reach it: launchers, panels, scripts.
class Remote {
public:
    /// `environment` names the bus.
    explicit Remote(QProcessEnvironment environment) : environment_(std::move(environment)) {}

    /// Until the program can be reached.
    bool waitForIt() const;

    /// Runs a command line as a launcher does, and gives its exit status.
    int run(const QString &commandLine) const;

    /// What its menu in the menu bar says now, top to bottom, submenus included.
    QStringList menu() const;
    QString statusLine() const { return menu().value(0); }

    /// Chooses a command of the menu. Fails the test when it is not there.
    void choose(const QString &label) const;

private:
    QByteArray call(const QStringList &arguments) const;
    std::map<int, QString> labels() const;

    QProcessEnvironment environment_;
};

} // namespace pavonel::test
