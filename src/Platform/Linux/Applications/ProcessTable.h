#pragma once

#include "Platform/Applications.h"
#include "Platform/Linux/Applications/ProcessFolder.h"

#include <QByteArray>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace pavonel {

/// The applications among this user's processes. The kernel gives numbers in a row and tells the last one, so
/// only the numbers given since the last time are tried, and it is enough to see whether those that count are
/// still there. The folder is read as a whole at the start, when the numbers begin anew or leap, and seldom
/// besides; what is found then is taken up in slices, newest first.
class ProcessTable {
public:
    /// Gives the bundle identifier of a process, empty for none.
    using Identify = std::function<QString(const ProcessFolder &)>;

    /// Whether a program, known by its path, is identified in the moment of its birth. All others wait for
    /// the next time: most of what is born on a busy machine has ended by then.
    using IsUrgent = std::function<bool(const QByteArray &executable)>;

    /// Processes as the folder at `root` shows them. A folder that cannot be read is one without processes.
    ProcessTable(const QByteArray &root, Identify identify, IsUrgent isUrgent);
    ProcessTable(const ProcessTable &) = delete;
    ProcessTable &operator=(const ProcessTable &) = delete;
    ~ProcessTable();

    /// Brings the table up to date. Processes that it cannot open within the budget wait for the next time.
    void refresh(std::chrono::milliseconds budget);

    /// Whether a refresh now could find an application that the last one did not.
    bool mayHaveMore();

    /// Looks for urgent programs among all processes: some turn into one late in their life.
    void searchUrgent();

    /// Opens every process once more, because identifiers are given by other rules now.
    void reconsider();

    /// One process for each application, the oldest.
    std::vector<Application> applications() const;

    /// All processes of an application.
    std::vector<ProcessId> processesOf(const QString &identifier) const;

    ProcessFolder folder(ProcessId process) const { return {root_, process}; }

    /// How many processes were identified so far, and how often the whole folder was read.
    std::size_t opened() const { return opened_; }
    std::size_t walks() const { return walks_; }

private:
    struct Known {
        ProcessId id;
        std::uint64_t inode; ///< Of its folder: a process that got the number of an ended one has another.
        bool isPending;
    };
    struct Member {
        ProcessId id;
        QByteArray executable;
    };
    /// Seen a moment ago, and so perhaps not yet the program that it is going to be.
    struct RecentProcess {
        std::optional<QByteArray> executable; ///< Absent while it is not identified.
        unsigned age = 0;                     ///< In refreshes.
    };

    void dropEnded();
    void recheckRecent();
    ProcessId lastBorn();
    bool mustWalk(ProcessId last) const;
    void walk(ProcessId last);
    std::vector<Known> list() const;
    void merge(std::vector<Known> listed);
    void meetNewborn(ProcessId last);
    void meet(ProcessId process);
    void open(std::chrono::milliseconds budget);
    void take(ProcessId process);
    void place(const ProcessFolder &process, const QByteArray &executable);
    void release(ProcessId process);

    int root_;
    int loadAverage_ = -1; ///< Kept open, since it is read every second.
    Identify identify_;
    IsUrgent isUrgent_;
    ProcessId newest_ = 0; ///< The last number given, when we looked.
    ProcessId met_ = 0;    ///< Numbers up to this one will not be tried any more.
    int looksSinceWalk_ = 0;
    bool isOutdated_ = true;
    bool hasPending_ = false;
    std::vector<Known> known_; ///< What the last walk found, in the order of the numbers.
    std::map<ProcessId, RecentProcess> recent_;
    std::map<QString, std::vector<Member>> members_;
    std::size_t opened_ = 0;
    std::size_t walks_ = 0;
};

} // namespace pavonel
