#include "Core/Characters.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace pavonel {

QString beginning(const QString &text, qsizetype characters) {
    const auto points = text.left(2 * characters).toUcs4();
    return QString::fromUcs4(reinterpret_cast<const char32_t *>(points.data()),
                             std::min(characters, points.size()));
}

QStringList charactersOf(const QString &text) {
    QStringList characters;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    for (qsizetype from = 0, to = finder.toNextBoundary(); to >= 0; from = to, to = finder.toNextBoundary())
        characters.append(text.sliced(from, to - from));
    return characters;
}

} // namespace pavonel
