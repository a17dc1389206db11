#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QTemporaryFile>
#include <QTimer>

class QDBusMessage;

namespace pavonel {

/// A script of ours that runs inside KWin, until this goes or the program quits. One of the same name that an
/// earlier run left behind is taken out before. Nobody waits for KWin.
class KWinScript final : public QObject {
public:
    /// `name` is what KWin calls it.
    KWinScript(const QDBusConnection &bus, QString name, const QByteArray &text);
    ~KWinScript() override;

    /// Once for each KWin.
    void load();

    static const QString service;

private:
    QDBusMessage scripting(const char *method) const;
    void insert();
    void run(int number);
    void unload();

    QDBusConnection bus_;
    QString name_;
    QTemporaryFile file_; ///< KWin reads it some time later.
    QTimer again_;
    int attempts_ = 0;
};

} // namespace pavonel
