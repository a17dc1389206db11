#include "Greeting.h"
#include "Log.h"
#include "Server.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <csignal>
#include <filesystem>
#include <iostream>

#include <sys/resource.h>
#include <sys/stat.h>

namespace relay {

namespace {

/// As many files as the system lets us have. Some are left for what is no connection.
int mostConnections() {
    constexpr rlim_t others = 64;
    rlimit files{};
    getrlimit(RLIMIT_NOFILE, &files);
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
    return static_cast<int>(std::min<rlim_t>(files.rlim_cur, 1'000'000) - others);
}

void makeFolder(const std::string &database) {
    constexpr std::string_view sqlite = "sqlite:";
    if (!database.starts_with(sqlite))
        return;
    umask(S_IRWXG | S_IRWXO);
    const auto folder = std::filesystem::path(database.substr(sqlite.size())).parent_path();
    if (!folder.empty())
        std::filesystem::create_directories(folder);
}

net::awaitable<void> cleanNowAndThen(Database &database) {
    const auto executor = co_await net::this_coro::executor;
    net::steady_timer timer(executor);
    const auto question = [](Pairings &pairings) {
        pairings.clean();
        return true;
    };
    for (;;) {
        try {
            co_await database.ask<bool>(question);
        } catch (const SqlError &) { // which was logged
        }
        timer.expires_after(std::chrono::minutes(1));
        co_await timer.async_wait(net::use_awaitable);
    }
}

void serve(const Options &options) {
    makeFolder(options.database);
    const int most = mostConnections();
    Subscribers subscribers(options.connections > 0 ? std::min(options.connections, most) : most,
                            options.connectionsPerAddress);
    net::io_context context(1);
    Service *told = nullptr; // set before the context runs what the listener posts
    const Listener listener{
        [&](const std::string &text) {
            net::post(context, [&subscribers, text] {
                if (const auto change = changeFrom(text))
                    subscribers.tell(*change);
            });
        },
        [&] { net::post(context, [&] { net::co_spawn(context, told->tellAll(), net::detached); }); }};
    Database database(connectSql(options.database, listener), options.guesses);
    Service service(subscribers, database, options);
    told = &service;
    Server server(context, service, options);
    server.start();
    net::co_spawn(context, cleanNowAndThen(database), net::detached);
    greet(options, server.port());
    log("started", {{"port", server.port()}, {"version", PAVONEL_RELAY_VERSION}});
    context.run();
}

} // namespace

} // namespace relay

int main(int count, char *arguments[]) {
    std::signal(SIGPIPE, SIG_IGN);
    try {
        if (const auto options = relay::optionsFrom(count, arguments))
            relay::serve(*options);
        return 0;
    } catch (const std::exception &error) {
        std::cerr << "pavonel-relay: " << error.what() << '\n';
        return 1;
    }
}
