#pragma once

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

namespace pavonel {

/// What of a desktop file tells which running program is meant.
struct DesktopFile {
    QByteArray program; ///< As `programName` gives it; empty for one that only hands over to another.
    bool withArguments =
        false;           ///< The command has arguments of its own, as one of several faces of a program.
    QString windowClass; ///< StartupWMClass.
};

/// Absent for what is no application, is hidden, runs in a terminal or makes no sense.
std::optional<DesktopFile> parseDesktopFile(const QByteArray &contents);

/// The installed applications by what can be seen of them when they run. The identifiers are those of the
/// desktop files, without the suffix ".desktop".
class DesktopFileIndex {
public:
    /// The first file added under an identifier holds; absent for one that hides those after it.
    void add(const QString &identifier, const std::optional<DesktopFile> &file);

    bool contains(const QString &identifier) const { return applications_.contains(identifier); }

    /// Empty when there is none.
    QString forProgram(const QByteArray &program) const { return byProgram_.value(program).identifier; }

    /// By the two strings of WM_CLASS. Of several that declare the same class the one that was found by the
    /// window's process holds, else the first by name.
    QString forWindow(const QString &windowClass, const QString &instance, const QString &ofProcess) const;

private:
    struct Owner {
        QString identifier;
        int rank = 0; ///< How well the file fits the program; 0 is the best.
    };

    QString declaring(const QString &windowClass, const QString &ofProcess) const;
    QString named(const QString &windowClass) const;

    QSet<QString> seen_;
    QSet<QString> applications_;
    QHash<QByteArray, Owner> byProgram_;
    QMultiHash<QString, QString> byWindowClass_; ///< In lower case: toolkits disagree about the first letter.
};

} // namespace pavonel
