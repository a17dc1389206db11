#include "Platform/Linux/Sway/SwayWindows.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QRectF>

#include <utility>

#include <unistd.h>

namespace pavonel {

namespace {

using namespace Qt::StringLiterals;

/// Titles change often, and say nothing here.
bool matters(const QString &change) {
    return change != u"title" && change != u"mark" && change != u"urgent";
}

QRectF rectOf(const QJsonValue &rect) {
    return {rect["x"_L1].toDouble(), rect["y"_L1].toDouble(), rect["width"_L1].toDouble(),
            rect["height"_L1].toDouble()};
}

FrontWindow windowOf(const QJsonObject &node) {
    const QJsonValue properties = node["window_properties"_L1]; // of an X11 window
    const QString application = node["app_id"_L1].toString();
    return {static_cast<std::uint64_t>(node["id"_L1].toInteger()), node["pid"_L1].toInt(),
            application.isEmpty() ? properties["class"_L1].toString() : application,
            properties["instance"_L1].toString()};
}

} // namespace

std::unique_ptr<SwayWindows> SwayWindows::make() {
    auto ipc = SwayIpc::open();
    return ipc ? std::unique_ptr<SwayWindows>(new SwayWindows(std::move(ipc))) : nullptr;
}

SwayWindows::SwayWindows(std::unique_ptr<SwayIpc> ipc) : ipc_(std::move(ipc)) {
    ipc_->onEvent([this](SwayIpc::Event event, const QJsonDocument &told) { notice(event, told); });
    ipc_->ask(SwayIpc::Request::subscribe, R"(["window","workspace"])");
    askTree();
}

void SwayWindows::notice(SwayIpc::Event event, const QJsonDocument &told) {
    if (event == SwayIpc::Event::workspace || matters(told["change"_L1].toString()))
        askTree();
}

void SwayWindows::askTree() {
    isStale_ = isAsking_;
    if (std::exchange(isAsking_, true))
        return;
    ipc_->ask(SwayIpc::Request::getTree, {}, [this](const QJsonDocument &tree) {
        isAsking_ = false;
        take(tree);
        if (isStale_)
            askTree();
    });
}

void SwayWindows::take(const QJsonDocument &tree) {
    isKnown_ = true;
    front_.reset();
    fullscreen_.clear();
    look(tree.object());
}

void SwayWindows::look(const QJsonObject &node) {
    const ProcessId owner = node["pid"_L1].toInt();
    if (owner > 1 && owner != ::getpid()) {
        if (node["focused"_L1].toBool())
            front_ = windowOf(node);
        if (node["visible"_L1].toBool() && node["fullscreen_mode"_L1].toInt() != 0)
            fullscreen_.push_back({owner, rectOf(node["rect"_L1]).center()});
    }
    for (const char *children : {"nodes", "floating_nodes"}) {
        const QJsonArray list = node[QLatin1StringView(children)].toArray();
        for (const QJsonValue &child : list)
            look(child.toObject());
    }
}

} // namespace pavonel
