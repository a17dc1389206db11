#pragma once

#include "Core/BreakVocabulary.h"
#include "Core/Observable.h"

#include <QString>
#include <QStringList>

#include <ostream>

#include <gtest/gtest.h>

/// How GoogleTest shows values of ours in the message of a failed test. Found by argument-dependent lookup,
/// so each stands in the namespace of its type.

inline void PrintTo(const QString &text, std::ostream *out) {
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QByteArray &bytes, std::ostream *out) {
    *out << '"' << bytes.toStdString() << '"';
}

inline void PrintTo(const QStringList &texts, std::ostream *out) {
    for (const QString &text : texts)
        *out << "\n    " << text.toStdString();
}

namespace pavonel {

inline void PrintTo(BreakKind kind, std::ostream *out) {
    *out << defaultTitle(kind).toStdString();
}

inline void PrintTo(Phase phase, std::ostream *out) {
    constexpr std::array names{"counting", "headsUp", "breaking", "paused"};
    *out << names.at(static_cast<std::size_t>(phase));
}

inline void PrintTo(PauseReason reason, std::ostream *out) {
    *out << rawValue(reason).toStdString();
}

inline void PrintTo(const NextBreak &next, std::ostream *out) {
    *out << next.title.toStdString() << " in " << next.remaining << " s";
}

template <class T> void PrintTo(const Published<T> &field, std::ostream *out) {
    testing::internal::UniversalPrint(field.get(), out);
}

} // namespace pavonel
