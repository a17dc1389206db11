#include "Platform/Linux/Sway/SwayHotKeys.h"

#include "Platform/Linux/Sway/SwayBindings.h"

#include <chrono>
#include <utility>

namespace pavonel {

namespace {

using namespace Qt::StringLiterals;

const auto ourCommand = u"nop pavonel "_s;

QByteArray combinationOf(const UsKey &key) {
    return key.modifiersBy(
               {.control = "Control+", .option = "Mod1+", .shift = "Shift+", .command = "Mod4+"}) +
           QByteArray::number(key.keycode);
}

} // namespace

std::shared_ptr<SwayHotKeys> SwayHotKeys::make() {
    auto ipc = SwayIpc::open();
    return ipc ? std::shared_ptr<SwayHotKeys>(new SwayHotKeys(std::move(ipc))) : nullptr;
}

SwayHotKeys::SwayHotKeys(std::unique_ptr<SwayIpc> ipc) : ipc_(std::move(ipc)) {
    ipc_->onEvent([this](SwayIpc::Event event, const QJsonDocument &told) { notice(event, told); });
    ipc_->ask(SwayIpc::Request::subscribe, R"(["binding","workspace"])");
    readConfiguration();
}

void SwayHotKeys::giveBackAll() {
    DesktopHotKeys::giveBackAll();
    ipc_->awaitAnswers(std::chrono::milliseconds(50)); // what is unread when we go is not done
}

QString SwayHotKeys::limitation() const {
    return ipc_->isAlive() ? QString() : u"Sway does not take keyboard shortcuts any more."_s;
}

/// Sway would let go of a binding of the user's for good. One in a file that his configuration includes only
/// sleeps while ours is there, since ours names the key by its position.
void SwayHotKeys::askFor(const Key &key) {
    if (!isConfigurationKnown_ || isBoundBySway(configuration_, key.combination))
        return;
    ipc_->ask(SwayIpc::Request::runCommand,
              "bindcode --no-warn --no-repeat " + combinationOf(key.combination) + ' ' +
                  ourCommand.toLatin1() + QByteArray::number(key.identifier),
              [this, number = key.number](const QJsonDocument &answer) {
                  setHeld(number, answer[0]["success"_L1].toBool());
              });
}

void SwayHotKeys::giveBack(const Key &key) {
    if (isConfigurationKnown_ && !isBoundBySway(configuration_, key.combination))
        ipc_->ask(SwayIpc::Request::runCommand, "unbindcode " + combinationOf(key.combination));
}

void SwayHotKeys::readConfiguration() {
    isConfigurationKnown_ = false;
    ipc_->ask(SwayIpc::Request::getConfig, {}, [this](const QJsonDocument &answer) {
        configuration_ = answer["config"_L1].toString().toUtf8();
        isConfigurationKnown_ = true;
        askForAll();
    });
}

void SwayHotKeys::notice(SwayIpc::Event event, const QJsonDocument &told) {
    if (event == SwayIpc::Event::workspace && told["change"_L1] == u"reload"_s) {
        loseAll(); // all bindings but those of the configuration are gone
        readConfiguration();
    } else if (event == SwayIpc::Event::binding) {
        const QString command = told["binding"_L1]["command"_L1].toString();
        if (command.startsWith(ourCommand))
            press(command.mid(ourCommand.size()).toUInt());
    }
}

} // namespace pavonel
