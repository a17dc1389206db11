#include "support/SessionManager.h"

#include "support/waitUntil.h"

#include <QSocketNotifier>

#include <cstdlib>
#include <vector>

#include <X11/SM/SMlib.h>
#include <gtest/gtest.h>

namespace pavonel::test {

namespace {

/// Everybody on this machine may come.
Bool welcome(char *) {
    return True;
}

} // namespace

struct SessionManager::Server {
    Server() = default;
    Server(const Server &) = delete;
    Server &operator=(const Server &) = delete;
    ~Server() { IceFreeListenObjs(count_, listeners_); }

    void open();
    void accept(IceListenObj listener);
    void serve(IceConn connection, QSocketNotifier *notifier);
    void drop(IceConn connection);

    static Server &of(SmPointer pointer) { return *static_cast<Server *>(pointer); }
    static Status addClient(SmsConn client, SmPointer self, unsigned long *mask, SmsCallbacks *callbacks,
                            char **);
    static void setRequests(SmsCallbacks &callbacks);
    static void setProperties(SmsCallbacks &callbacks);

    QObject context;
    QString address;
    std::vector<SmsConn> clients;
    bool isRegistered = false;
    bool isEnding = false;

private:
    int count_ = 0;
    IceListenObj *listeners_ = nullptr;
};

void SessionManager::Server::open() {
    IceSetIOErrorHandler([](IceConn) {}); // by default a client's death would end us
    char error[256] = "";
    if (!SmsInitialize("pavonel-test", "1", addClient, this, welcome, sizeof error, error) ||
        !IceListenForConnections(&count_, &listeners_, sizeof error, error)) {
        ADD_FAILURE() << "No session manager: " << error;
        return;
    }
    char *addresses = IceComposeNetworkIdList(count_, listeners_);
    address = QString::fromLocal8Bit(addresses);
    std::free(addresses);
    for (int i = 0; i < count_; ++i) {
        IceSetHostBasedAuthProc(listeners_[i], welcome);
        auto *notifier =
            new QSocketNotifier(IceGetListenConnectionNumber(listeners_[i]), QSocketNotifier::Read, &context);
        QObject::connect(notifier, &QSocketNotifier::activated, &context,
                         [this, listener = listeners_[i]] { accept(listener); });
    }
}

void SessionManager::Server::accept(IceListenObj listener) {
    IceAcceptStatus status = IceAcceptFailure;
    IceConn connection = IceAcceptConnection(listener, &status);
    if (!connection)
        return;
    auto *notifier = new QSocketNotifier(IceConnectionNumber(connection), QSocketNotifier::Read, &context);
    QObject::connect(notifier, &QSocketNotifier::activated, &context,
                     [this, connection, notifier] { serve(connection, notifier); });
}

void SessionManager::Server::serve(IceConn connection, QSocketNotifier *notifier) {
    const auto outcome = IceProcessMessages(connection, nullptr, nullptr);
    if (outcome == IceProcessMessagesSuccess)
        return;
    notifier->setEnabled(false);
    notifier->deleteLater();
    if (outcome == IceProcessMessagesIOError) // the client died
        drop(connection);
}

void SessionManager::Server::drop(IceConn connection) {
    std::erase_if(clients, [connection](SmsConn client) {
        const bool isIts = SmsGetIceConnection(client) == connection;
        if (isIts)
            SmsCleanUp(client);
        return isIts;
    });
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
}

Status SessionManager::Server::addClient(SmsConn client, SmPointer self, unsigned long *mask,
                                         SmsCallbacks *callbacks, char **) {
    of(self).clients.push_back(client);
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    *callbacks = {};
    callbacks->register_client.manager_data = self;
    callbacks->save_yourself_done.manager_data = self;
    callbacks->close_connection.manager_data = self;
    setRequests(*callbacks);
    setProperties(*callbacks);
    return 1;
}

void SessionManager::Server::setRequests(SmsCallbacks &callbacks) {
    callbacks.register_client.callback = [](SmsConn client, SmPointer self, char *previousId) -> Status {
        std::free(previousId);
        char *id = SmsGenerateClientID(client);
        SmsRegisterClientReply(client, id);
        std::free(id);
        SmsSaveYourself(client, SmSaveLocal, False, SmInteractStyleNone, False);
        of(self).isRegistered = true;
        return 1;
    };
    callbacks.save_yourself_done.callback = [](SmsConn client, SmPointer self, Bool) {
        if (of(self).isEnding)
            SmsDie(client);
        else
            SmsSaveComplete(client);
    };
    callbacks.interact_request.callback = [](SmsConn client, SmPointer, int) { SmsInteract(client); };
    callbacks.interact_done.callback = [](SmsConn, SmPointer, Bool) {};
    callbacks.save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {};
    callbacks.save_yourself_phase2_request.callback = [](SmsConn client, SmPointer) {
        SmsSaveYourselfPhase2(client);
    };
    callbacks.close_connection.callback = [](SmsConn client, SmPointer self, int count, char **reasons) {
        SmFreeReasons(count, reasons);
        of(self).drop(SmsGetIceConnection(client));
    };
}

void SessionManager::Server::setProperties(SmsCallbacks &callbacks) {
    callbacks.set_properties.callback = [](SmsConn, SmPointer, int count, SmProp **properties) {
        for (int i = 0; i < count; ++i)
            SmFreeProperty(properties[i]);
        std::free(properties);
    };
    callbacks.delete_properties.callback = [](SmsConn, SmPointer, int count, char **names) {
        for (int i = 0; i < count; ++i)
            std::free(names[i]);
        std::free(names);
    };
    callbacks.get_properties.callback = [](SmsConn client, SmPointer) {
        SmsReturnProperties(client, 0, nullptr);
    };
}

SessionManager::SessionManager() : server_(std::make_unique<Server>()) {
    server_->open();
}

SessionManager::~SessionManager() = default;

QString SessionManager::address() const {
    return server_->address;
}

void SessionManager::end() {
    ASSERT_TRUE(waitUntil([this] { return server_->isRegistered; })) << "no program has registered";
    server_->isEnding = true;
    for (const SmsConn client : server_->clients) {
        SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleAny, False);
        IceFlush(SmsGetIceConnection(client));
    }
}

} // namespace pavonel::test
