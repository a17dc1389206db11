#include "support/OtherWindow.h"

#include "support/waitUntil.h"

namespace pavonel::test {

namespace {

QStringList words(const QString &name, OtherWindow::State state) {
    QStringList words{name};
    if (state == OtherWindow::State::fullscreen)
        words.append(QStringLiteral("fullscreen"));
    return words;
}

} // namespace

OtherWindow::OtherWindow(const QProcessEnvironment &environment, const QString &name, State state)
    : process_(program(), words(name, state), environment) {}

QString OtherWindow::program() {
    return QStringLiteral(PAVONEL_OTHER_WINDOW);
}

void OtherWindow::read() {
    while (process_.process().canReadLine())
        lines_.append(process_.process().readLine().trimmed());
}

qsizetype OtherWindow::times(const QByteArray &line) {
    read();
    return lines_.count(line);
}

/// Whether of these two lines this one came last.
bool OtherWindow::ends(const char *line, const char *opposite) {
    return waitUntil([&] {
        read();
        return lines_.lastIndexOf(line) > lines_.lastIndexOf(opposite);
    });
}

bool OtherWindow::isPainted(QSize size) {
    const QByteArray line =
        "painted " + QByteArray::number(size.width()) + 'x' + QByteArray::number(size.height());
    return waitUntil([&] { return times(line) > 0; });
}

} // namespace pavonel::test
