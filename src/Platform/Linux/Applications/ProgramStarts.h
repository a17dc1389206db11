#pragma once

#include <QByteArrayList>
#include <QSocketNotifier>

#include <map>

namespace pavonel {

/// Tells that certain programs may have been started, by whatever process: their files were opened. It asks
/// nothing of anybody, so it costs nothing while none of them is. Needs a running main loop.
class ProgramStarts {
public:
    /// Looks for the names in the folders, now and as soon as a file of such a name comes there.
    ProgramStarts(QByteArrayList names, const QByteArrayList &folders);
    ProgramStarts(const ProgramStarts &) = delete;
    ProgramStarts &operator=(const ProgramStarts &) = delete;
    ~ProgramStarts();

    /// The folders where a command is looked for.
    static QByteArrayList searchPath();

    /// Whether one was started since the last question.
    bool anyNew();

private:
    void watch(const QByteArray &file) const;
    bool isStart(int watched, std::uint32_t what, const QByteArray &name) const;

    QByteArrayList names_;
    int notices_;
    QSocketNotifier arrival_; ///< Off while notices wait to be read.
    std::map<int, QByteArray> folders_;
};

} // namespace pavonel
