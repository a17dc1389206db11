#include "Wayland/FakeDesktop.h"

#include <QTimer>

#include <cctype>
#include <utility>

#include <wayland-server.h>
#include <wlr-layer-shell-unstable-v1-server-protocol.h>

namespace pavonel::test {

namespace {

constexpr int backAfter = 1000; // milliseconds

bool is(wl_resource *object, const wl_interface &interface) {
    return qstrcmp(wl_resource_get_class(object), interface.name) == 0;
}

wl_resource *asResource(const wl_argument &argument) {
    return reinterpret_cast<wl_resource *>(argument.o);
}

/// Of the argument that makes an object; absent where the request makes none.
std::optional<int> placeOfNew(const wl_message &message) {
    int place = 0;
    for (const char *letter = message.signature; *letter != '\0'; ++letter) {
        if (*letter == 'n')
            return place;
        if (std::isalpha(static_cast<unsigned char>(*letter)) != 0)
            ++place;
    }
    return std::nullopt;
}

} // namespace

FakeDesktop::FakeDesktop(const Manners &manners) : manners_(manners) {
    wl_display_init_shm(&compositor_.display());
    offer(wl_compositor_interface, 4);
    offer(wl_subcompositor_interface, 1);
    offer(zwlr_layer_shell_v1_interface, 3);
    for (int seat = 0; seat < manners_.seats; ++seat)
        offer(wl_seat_interface, 5);
    offerOutputs();
}

void FakeDesktop::offer(const wl_interface &interface, int version) {
    offered_.push_back(std::make_unique<Offered>(Offered{this, &interface}));
    offers_.push_back(compositor_.offer(interface, version, offered_.back().get(), &FakeDesktop::bind));
}

void FakeDesktop::offerOutputs() {
    constexpr int withName = WL_OUTPUT_NAME_SINCE_VERSION;
    const int version = manners_.outputNames == Names::told ? withName : withName - 1;
    for (int output = 0; output < manners_.outputs; ++output) {
        offered_.push_back(std::make_unique<Offered>(Offered{this, &wl_output_interface, output}));
        outputs_.push_back(
            compositor_.offer(wl_output_interface, version, offered_.back().get(), &FakeDesktop::bind));
    }
}

/// In the middle of a request, so that its answer finds them gone.
void FakeDesktop::takeOutputsAway() {
    if (outputs_.empty())
        return;
    for (auto &each : std::exchange(outputs_, {})) {
        wl_global_remove(each.get());
        static_cast<Offered *>(wl_global_get_user_data(each.get()))->isGone = true;
        offers_.push_back(std::move(each));
    }
    QTimer::singleShot(backAfter, &timers_, [this] { offerOutputs(); });
}

void FakeDesktop::bind(wl_client *client, void *offer, std::uint32_t version, std::uint32_t id) {
    const auto &offered = *static_cast<Offered *>(offer);
    wl_resource *made = offered.desktop->make(client, *offered.interface, static_cast<int>(version), id);
    // Who asks for one that has just gone gets one that stays silent, as from other compositors: Qt (6.4) has
    // let go by then what it would tell.
    if (!offered.isGone)
        offered.desktop->introduce(made, offered.number);
}

/// What programs are told of an object that they bind.
void FakeDesktop::introduce(wl_resource *object, int number) {
    if (is(object, wl_seat_interface)) {
        wl_seat_send_capabilities(object, WL_SEAT_CAPABILITY_POINTER | WL_SEAT_CAPABILITY_KEYBOARD);
    } else if (is(object, wl_output_interface)) {
        numbers_[object] = number;
        const QSize size = outputSize;
        wl_output_send_geometry(object, number * size.width(), 0, 300, 200, WL_OUTPUT_SUBPIXEL_UNKNOWN,
                                "maker", "model", WL_OUTPUT_TRANSFORM_NORMAL);
        wl_output_send_mode(object, WL_OUTPUT_MODE_CURRENT, size.width(), size.height(), 60'000);
        wl_output_send_scale(object, 1);
        if (wl_resource_get_version(object) >= WL_OUTPUT_NAME_SINCE_VERSION)
            wl_output_send_name(object, QByteArray("OUT-" + QByteArray::number(number)).constData());
        wl_output_send_done(object);
    }
}

wl_resource *FakeDesktop::make(wl_client *client, const wl_interface &interface, int version,
                               std::uint32_t id) {
    wl_resource *object = wl_resource_create(client, &interface, version, id);
    wl_resource_set_dispatcher(object, &FakeDesktop::dispatch, nullptr, this, [](wl_resource *gone) {
        static_cast<FakeDesktop *>(wl_resource_get_user_data(gone))->forget(gone);
    });
    return object;
}

/// All requests of all objects: what they ask for is made, and what they let go goes.
int FakeDesktop::dispatch(const void *, void *object, std::uint32_t, const wl_message *message,
                          wl_argument *arguments) {
    auto *asker = static_cast<wl_resource *>(object);
    auto &desktop = *static_cast<FakeDesktop *>(wl_resource_get_user_data(asker));
    wl_resource *made = nullptr;
    if (const auto place = placeOfNew(*message))
        made = desktop.make(wl_resource_get_client(asker), *message->types[*place],
                            wl_resource_get_version(asker), arguments[*place].n);
    const QByteArray request = message->name;
    if (request == "destroy" || request == "release")
        wl_resource_destroy(asker);
    else
        desktop.heed(asker, request, arguments, made);
    return 0;
}

void FakeDesktop::heed(wl_resource *object, const QByteArray &request, const wl_argument *arguments,
                       wl_resource *made) {
    if (request == "create_surface")
        surfaces_[made] = {};
    else if (request == "get_layer_surface")
        takePlace(asResource(arguments[1]), made, asResource(arguments[2]));
    else if (request == "frame")
        surfaces_[object].frames.push_back(made);
    else if (request == "attach")
        surfaces_[object].buffer = arguments[0].o ? wl_resource_get_id(asResource(arguments[0])) : 0;
    else if (request == "commit")
        commit(object);
}

void FakeDesktop::takePlace(wl_resource *surface, wl_resource *place, wl_resource *output) {
    const int number = ++asked_;
    surfaces_[surface].place = place;
    surfaces_[surface].number = number;
    if (const auto wished = numbers_.find(output); wished != numbers_.end())
        wished_.insert(wished->second);
    if (manners_.takesOutputsAway)
        takeOutputsAway();
    after(manners_.configuresAfter, number, [this](wl_resource *of) { configure(of, manners_.surfaceSize); });
    after(manners_.closesAfter, number, [](wl_resource *of) { zwlr_layer_surface_v1_send_closed(of); });
}

/// Unless the place has gone by then.
void FakeDesktop::after(std::optional<int> milliseconds, int number,
                        std::function<void(wl_resource *place)> act) {
    if (!milliseconds)
        return;
    QTimer::singleShot(*milliseconds, &timers_, [this, number, act = std::move(act)] {
        for (const auto &[surface, of] : surfaces_) {
            if (of.place && of.number == number)
                act(of.place);
        }
    });
}

void FakeDesktop::configure(wl_resource *place, QSize size) {
    zwlr_layer_surface_v1_send_configure(place, wl_display_next_serial(&compositor_.display()),
                                         static_cast<std::uint32_t>(size.width()),
                                         static_cast<std::uint32_t>(size.height()));
}

/// What it shows is taken in at once, and the program may go on.
void FakeDesktop::commit(wl_resource *surface) {
    Surface &of = surfaces_[surface];
    wl_resource *buffer = wl_client_get_object(wl_resource_get_client(surface), of.buffer);
    if (buffer && is(buffer, wl_buffer_interface))
        wl_buffer_send_release(buffer);
    of.buffer = 0;
    for (wl_resource *frame : std::exchange(of.frames, {})) {
        wl_callback_send_done(frame, 0);
        wl_resource_destroy(frame);
    }
}

void FakeDesktop::forget(wl_resource *object) {
    surfaces_.erase(object);
    numbers_.erase(object);
    for (auto &[surface, of] : surfaces_) {
        if (of.place == object)
            of.place = nullptr;
        std::erase(of.frames, object);
    }
}

} // namespace pavonel::test
