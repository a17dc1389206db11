#pragma once

#include "Platform/StoredEntry.h"

#include <QByteArray>
#include <QStringList>

namespace pavonel {

/// The statistics for other programs to read.
struct StatsExport {
    enum class Format { csv, json };

    /// The days in their order. What is damaged is left out and complained of, a sentence each.
    static StatsExport of(const StoredEntry &stored, Format format);

    QByteArray text;
    QStringList complaints;
};

} // namespace pavonel
