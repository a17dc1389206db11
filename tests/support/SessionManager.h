#pragma once

#include <QString>

#include <memory>

namespace pavonel::test {

/// An X session manager with which programs can register, and which ends the session when a test says so. It
/// works while the main loop runs. One at a time.
class SessionManager {
public:
    /// Fails the test when there is none to be had.
    SessionManager();
    SessionManager(const SessionManager &) = delete;
    SessionManager &operator=(const SessionManager &) = delete;
    ~SessionManager();

    /// For the variable SESSION_MANAGER.
    QString address() const;

    /// Has every program save and then end, as when the user logs out. At least one must have registered.
    void end();

private:
    struct Server;
    std::unique_ptr<Server> server_;
};

} // namespace pavonel::test
