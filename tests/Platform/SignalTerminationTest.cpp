#include "Platform/Posix/SignalTermination.h"

#include "support/waitUntil.h"

#include <QCoreApplication>
#include <QEvent>

#include <csignal>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace pavonel::test {

namespace {

class EndingSignal : public testing::TestWithParam<int> {
protected:
    EndingSignal() { ::signal(GetParam(), SIG_DFL); } // whoever started the tests may have it ignored
};

INSTANTIATE_TEST_SUITE_P(Signals, EndingSignal, testing::Values(SIGTERM, SIGINT, SIGHUP),
                         [](const auto &signal) { return std::string("SIG") + sigabbrev_np(signal.param); });

auto handlerOf(int signal) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

} // namespace

TEST_P(EndingSignal, a_signal_reaches_the_main_thread) {
    SignalTermination termination;
    std::thread::id endedOn;
    termination.onEnd([&] { endedOn = std::this_thread::get_id(); });
    std::thread([] { ::kill(::getpid(), GetParam()); }).join();
    EXPECT_EQ(endedOn, std::thread::id()) << "before the loop ran";
    EXPECT_TRUE(waitUntil([&] { return endedOn == std::this_thread::get_id(); }));
}

TEST_P(EndingSignal, a_second_signal_does_no_harm) {
    SignalTermination termination;
    int requests = 0;
    termination.onEnd([&] { ++requests; });
    ::raise(GetParam());
    ::raise(GetParam());
    EXPECT_TRUE(waitUntil([&] { return requests > 0; }));
    ::raise(GetParam());
    EXPECT_TRUE(waitUntil([&] { return requests > 1; }));
}

TEST_P(EndingSignal, a_signal_that_our_parent_has_us_ignore_stays_ignored) {
    ::signal(GetParam(), SIG_IGN);
    {
        const SignalTermination termination;
        EXPECT_EQ(handlerOf(GetParam()), SIG_IGN);
    }
    ::signal(GetParam(), SIG_DFL);
}

TEST_P(EndingSignal, what_was_before_is_put_back) {
    { const SignalTermination termination; }
    EXPECT_EQ(handlerOf(GetParam()), SIG_DFL);
}

TEST(SignalTermination, a_signal_that_nobody_listens_to_is_survived) {
    SignalTermination termination;
    ::raise(SIGTERM);
    bool waited = false;
    QTimer::singleShot(50, [&] { waited = true; });
    EXPECT_TRUE(waitUntil([&] { return waited; }));
}

TEST(SignalTermination, the_end_of_the_session_does_not_ask_the_windows) {
    SignalTermination termination;
    int requests = 0;
    termination.onEnd([&] { ++requests; });
    QEvent quit(QEvent::Quit); // as the session manager has Qt send it
    QCoreApplication::sendEvent(QCoreApplication::instance(), &quit);
    EXPECT_EQ(requests, 1);
}

} // namespace pavonel::test
