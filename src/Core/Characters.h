#pragma once

#include <QString>
#include <QStringList>

namespace pavonel {

/// The beginning of a text: at most this many characters, none of them halved.
QString beginning(const QString &text, qsizetype characters);

/// The characters of a text one by one, as a reader counts them.
QStringList charactersOf(const QString &text);

} // namespace pavonel
