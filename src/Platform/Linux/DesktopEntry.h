#pragma once

#include <QByteArray>
#include <QStringList>

#include <optional>

namespace pavonel {

/// The "[Desktop Entry]" group of a desktop entry file. Other groups, comments and keys that nobody asked to
/// change stay in the file as they are.
class DesktopEntry {
public:
    DesktopEntry();

    /// Absent when the content has no such group.
    static std::optional<DesktopEntry> parse(const QByteArray &content);

    /// Absent also when there is no such file or it cannot be read.
    static std::optional<DesktopEntry> read(const QString &path);

    QByteArray content() const;

    /// A text with its escapes undone; empty when the key is missing.
    QString text(const QByteArray &key) const;
    bool has(const QByteArray &key) const { return find(key) >= 0; }
    bool isTrue(const QByteArray &key) const { return text(key) == u"true" || text(key) == u"1"; }
    bool isFalse(const QByteArray &key) const { return text(key) == u"false" || text(key) == u"0"; }
    QStringList list(const QByteArray &key) const;

    /// The program to start and its arguments, without those for files; empty when there is no valid one.
    QStringList command() const;

    void setText(const QByteArray &key, const QString &value);
    void setCommand(const QStringList &command);
    void remove(const QByteArray &key);

private:
    DesktopEntry(QByteArrayList lines, qsizetype groupBegin);

    qsizetype find(const QByteArray &key) const;

    QByteArrayList lines_;
    qsizetype groupBegin_ = 0; ///< The line behind the group's header.
    qsizetype groupEnd_ = 0;
};

} // namespace pavonel
