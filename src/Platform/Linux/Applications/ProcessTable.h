#pragma once

#include "Platform/Applications.h"
#include "Platform/Linux/Applications/ProcessFolder.h"

#include <QByteArray>
#include <QDeadlineTimer>

#include <functional>
#include <map>
#include <vector>

namespace pavonel {

/// The applications among this user's processes. Only processes that are new are opened; between births it is
/// enough to see whether those that count are still there. Many at once are taken up in slices, newest first.
class ProcessTable {
public:
    /// Gives the bundle identifier of a process, empty for none.
    using Identify = std::function<QString(const ProcessFolder &)>;

    /// Processes as the folder at `root` shows them. A folder that cannot be read is one without processes.
    ProcessTable(const QByteArray &root, Identify identify);
    ProcessTable(const ProcessTable &) = delete;
    ProcessTable &operator=(const ProcessTable &) = delete;
    ~ProcessTable();

    /// Brings the table up to date. What is left at the deadline waits for the next time.
    void refresh(QDeadlineTimer deadline);

    /// Opens every process once more, because identifiers are given by other rules now.
    void reconsider();

    /// One process for each application, the oldest.
    std::vector<Application> applications() const;

    /// All processes of an application.
    std::vector<ProcessId> processesOf(const QString &identifier) const;

    ProcessFolder folder(ProcessId process) const { return {root_, process}; }

    /// How many processes were opened so far.
    std::size_t opened() const { return opened_; }

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
    struct Young {
        Member member;
        int looksLeft;
    };

    bool dropEnded();
    void lookAgainAtYoung();
    bool wereBorn();
    void walk();
    void merge(std::vector<Known> listed);
    void open(QDeadlineTimer deadline);
    void take(ProcessId process);
    void place(const ProcessFolder &process, const QByteArray &executable);
    void release(ProcessId process);

    int root_;
    Identify identify_;
    QByteArray lastBorn_;
    bool hasPending_ = true;
    std::vector<Known> known_; ///< In the order of their numbers.
    std::vector<Young> young_;
    std::map<QString, std::vector<Member>> members_;
    std::size_t opened_ = 0;
};

} // namespace pavonel
