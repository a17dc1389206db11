#include "Platform/Linux/PipeWire/PipeWireScreenCasts.h"

#include "Platform/Linux/PipeWire/PipeWireLibrary.h"

#include <QFile>
#include <QSocketNotifier>
#include <QString>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace pavonel {

namespace {

bool hasValue(const spa_dict *properties, const char *key, const char *value) {
    const char *const found = properties ? spa_dict_lookup(properties, key) : nullptr;
    return found && std::strcmp(found, value) == 0;
}

constexpr std::size_t mostNodes = 256; // no desktop casts that much at once
constexpr std::size_t mostObjects = 65'536;

/// Cameras are sources of video too; they belong to a device, or say that they are one.
bool isScreen(const spa_dict *properties) {
    const bool isVideo = hasValue(properties, PW_KEY_MEDIA_CLASS, "Video/Source") ||
                         hasValue(properties, PW_KEY_MEDIA_CLASS, "Stream/Output/Video");
    return isVideo && !hasValue(properties, PW_KEY_MEDIA_ROLE, "Camera") &&
           !spa_dict_lookup(properties, PW_KEY_DEVICE_ID) && !spa_dict_lookup(properties, PW_KEY_DEVICE_API);
}

std::uint32_t numberIn(const spa_dict *properties, const char *key) {
    const char *const found = properties ? spa_dict_lookup(properties, key) : nullptr;
    return found ? QByteArray(found).toUInt() : SPA_ID_INVALID;
}

/// Plasma's task bar shows windows by screen casts, and so does the dialogue in which one chooses what to
/// share. What is then shared goes to other programs, whose connections the portal itself opens.
bool isOfTheDesktop(std::uint32_t process) {
    const QString program = QFile::symLinkTarget(QStringLiteral("/proc/%1/exe").arg(process));
    return program.endsWith(u"/plasmashell") || program.endsWith(u"/xdg-desktop-portal-kde");
}

QString usualSocket() {
    const QString folder = qEnvironmentVariable("PIPEWIRE_RUNTIME_DIR");
    return (folder.isEmpty() ? qEnvironmentVariable("XDG_RUNTIME_DIR") : folder) +
           QStringLiteral("/pipewire-0");
}

/// An attempt to connect starts a thread.
bool mayBeReachable() {
    return qEnvironmentVariableIsSet("PIPEWIRE_REMOTE") || QFile::exists(usualSocket());
}

} // namespace

/// One connection to the server, in the Qt main loop.
class PipeWireScreenCasts::Connection {
public:
    explicit Connection(const PipeWireLibrary &library) : pw_(library), loop_(library.pw_loop_new(nullptr)) {
        if (!loop_)
            return;
        // Without a configuration file nothing is loaded that streams would need, least of all real-time
        // threads.
        context_ = pw_.pw_context_new(loop_, pw_.pw_properties_new(PW_KEY_CONFIG_NAME, "null", nullptr), 0);
        if (!context_ ||
            !pw_.pw_context_load_module(context_, "libpipewire-module-protocol-native", nullptr, nullptr))
            return;
        core_ = pw_.pw_context_connect(context_, nullptr, 0);
        if (!core_)
            return;
        listen();
        notifier_.emplace(pw_loop_get_fd(loop_), QSocketNotifier::Read);
        QObject::connect(&*notifier_, &QSocketNotifier::activated, &*notifier_, [this] { iterate(); });
        pw_loop_enter(loop_);
        pw_loop_iterate(loop_, 0);
        pw_loop_leave(loop_);
    }
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    ~Connection() {
        notifier_.reset();
        for (auto &[id, node] : nodes_)
            release(*node);
        if (registry_)
            pw_.pw_proxy_destroy(reinterpret_cast<pw_proxy *>(registry_));
        if (core_)
            pw_.pw_core_disconnect(core_);
        if (context_)
            pw_.pw_context_destroy(context_);
        if (loop_)
            pw_.pw_loop_destroy(loop_);
    }

    bool isAlive() const { return core_ && !lost_; }

    bool anyLive() const {
        return std::any_of(nodes_.begin(), nodes_.end(), [this](const auto &entry) {
            return entry.second->live && !isForTheDesktopAlone(entry.first);
        });
    }

private:
    struct Link {
        std::uint32_t from;
        std::uint32_t to;
    };
    struct Node {
        bool isScreen = false;
        bool live = false;
        pw_proxy *proxy = nullptr;
        spa_hook listener{};
    };

    void listen() {
        static const pw_core_events coreEvents = [] {
            pw_core_events events{};
            events.version = PW_VERSION_CORE_EVENTS;
            events.error = [](void *self, std::uint32_t id, int, int, const char *) {
                if (id == PW_ID_CORE)
                    static_cast<Connection *>(self)->lost_ = true;
            };
            return events;
        }();
        static const pw_registry_events registryEvents = [] {
            pw_registry_events events{};
            events.version = PW_VERSION_REGISTRY_EVENTS;
            events.global = [](void *self, std::uint32_t id, std::uint32_t, const char *type, std::uint32_t,
                               const spa_dict *properties) {
                static_cast<Connection *>(self)->added(id, type, properties);
            };
            events.global_remove = [](void *self, std::uint32_t id) {
                static_cast<Connection *>(self)->removed(id);
            };
            return events;
        }();
        pw_core_add_listener(core_, &coreListener_, &coreEvents, this);
        registry_ = pw_core_get_registry(core_, PW_VERSION_REGISTRY, 0);
        if (registry_)
            pw_registry_add_listener(registry_, &registryListener_, &registryEvents, this);
    }

    void added(std::uint32_t id, const char *type, const spa_dict *properties) {
        removed(id); // a server that gives an identifier twice means another object by it
        if (clientOfNode_.size() + links_.size() + desktop_.size() >= mostObjects)
            return;
        if (std::strcmp(type, PW_TYPE_INTERFACE_Node) == 0) {
            clientOfNode_.insert_or_assign(id, numberIn(properties, PW_KEY_CLIENT_ID));
            if (isScreen(properties) && nodes_.size() < mostNodes)
                follow(id);
        } else if (std::strcmp(type, PW_TYPE_INTERFACE_Link) == 0) {
            links_.insert_or_assign(id, Link{numberIn(properties, PW_KEY_LINK_OUTPUT_NODE),
                                             numberIn(properties, PW_KEY_LINK_INPUT_NODE)});
        } else if (std::strcmp(type, PW_TYPE_INTERFACE_Client) == 0 &&
                   isOfTheDesktop(numberIn(properties, PW_KEY_SEC_PID))) {
            desktop_.insert(id);
        }
    }

    void follow(std::uint32_t id) {
        static const pw_node_events nodeEvents = [] {
            pw_node_events events{};
            events.version = PW_VERSION_NODE_EVENTS;
            events.info = [](void *self, const pw_node_info *info) {
                auto &node = *static_cast<Node *>(self);
                if (info->change_mask & PW_NODE_CHANGE_MASK_PROPS) // they are empty in other messages
                    node.isScreen = isScreen(info->props);
                node.live = node.isScreen && info->state == PW_NODE_STATE_RUNNING;
            };
            return events;
        }();
        auto node = std::make_unique<Node>();
        node->proxy = static_cast<pw_proxy *>(
            pw_registry_bind(registry_, id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, 0));
        if (!node->proxy)
            return;
        pw_.pw_proxy_add_object_listener(node->proxy, &node->listener, &nodeEvents, node.get());
        nodes_.emplace(id, std::move(node));
    }

    void removed(std::uint32_t id) {
        if (const auto found = nodes_.find(id); found != nodes_.end()) {
            release(*found->second);
            nodes_.erase(found);
        }
        clientOfNode_.erase(id);
        links_.erase(id);
        desktop_.erase(id);
    }

    /// Whether somebody looks at the node, and nobody but the desktop itself.
    bool isForTheDesktopAlone(std::uint32_t node) const {
        bool isSeen = false;
        for (const auto &[id, link] : links_) {
            if (link.from != node)
                continue;
            const auto client = clientOfNode_.find(link.to);
            if (client == clientOfNode_.end() || !desktop_.contains(client->second))
                return false;
            isSeen = true;
        }
        return isSeen;
    }

    void release(Node &node) {
        spa_hook_remove(&node.listener);
        pw_.pw_proxy_destroy(node.proxy);
    }

    void iterate() {
        pw_loop_enter(loop_);
        pw_loop_iterate(loop_, 0);
        pw_loop_leave(loop_);
        if (lost_)
            notifier_->setEnabled(false); // its end of the line stays readable for ever
    }

    const PipeWireLibrary &pw_;
    pw_loop *loop_;
    pw_context *context_ = nullptr;
    pw_core *core_ = nullptr;
    pw_registry *registry_ = nullptr;
    spa_hook coreListener_{};
    spa_hook registryListener_{};
    std::map<std::uint32_t, std::unique_ptr<Node>> nodes_; ///< Those that show a screen.
    std::map<std::uint32_t, std::uint32_t> clientOfNode_;  ///< Of every node.
    std::map<std::uint32_t, Link> links_;
    std::set<std::uint32_t> desktop_; ///< Clients that show to their user what is on the screen anyway.
    std::optional<QSocketNotifier> notifier_;
    bool lost_ = false;
};

PipeWireScreenCasts::PipeWireScreenCasts() : changes_({usualSocket()}) {}
PipeWireScreenCasts::~PipeWireScreenCasts() = default;

bool PipeWireScreenCasts::anyLive() {
    if (connection_ && !connection_->isAlive())
        connection_.reset();
    if (!connection_)
        connectIfDue();
    return connection_ && connection_->anyLive();
}

void PipeWireScreenCasts::connectIfDue() {
    if (changes_.any())
        isThere_ = mayBeReachable();
    if (!isThere_)
        return;
    const auto now = Clock::now();
    if (now < nextAttempt_)
        return;
    nextAttempt_ = now + pause_;
    pause_ = std::min<Clock::duration>(pause_ * 2, longestPause);
    const PipeWireLibrary *const library = PipeWireLibrary::load();
    if (!library)
        return;
    auto connection = std::make_unique<Connection>(*library);
    if (!connection->isAlive())
        return;
    connection_ = std::move(connection);
    pause_ = shortestPause;
}

} // namespace pavonel
