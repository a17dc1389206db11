#pragma once

#include "Wayland/FakeCompositor.h"

#include <QByteArray>
#include <QObject>
#include <QSize>

#include <functional>
#include <map>
#include <optional>
#include <set>

struct wl_interface;
struct wl_message;
union wl_argument;

namespace pavonel::test {

/// What of a desktop a break needs: surfaces, outputs, seats and a layer shell. It shows nothing, answers
/// what it must, and errs as it is told to.
class FakeDesktop {
public:
    enum class Names { told, missing };
    struct Manners {
        int outputs = 2;
        Names outputNames = Names::told;
        int seats = 1;
        QSize surfaceSize = outputSize;
        std::optional<int> configuresAfter = 0; ///< Milliseconds since a surface asked; absent: never.
        std::optional<int> closesAfter = {};    ///< The same.
        bool takesOutputsAway = false; ///< While a surface waits for its place; a second later they are back.
    };

    explicit FakeDesktop(const Manners &manners);

    static constexpr QSize outputSize{1024, 768};

    const char *socket() const { return compositor_.socket(); }

    /// How many surfaces have asked for a place so far.
    int asked() const { return asked_; }

    /// The numbers of the outputs on which they wished to stand.
    const std::set<int> &wished() const { return wished_; }

private:
    /// An interface that programs can bind; outputs have numbers.
    struct Offered {
        FakeDesktop *desktop;
        const wl_interface *interface;
        int number = 0;
        bool isGone = false;
    };
    struct Surface {
        wl_resource *place = nullptr; ///< On the layer shell; null for one without.
        int number = 0;               ///< Of the place.
        std::uint32_t buffer = 0;     ///< The attached one's name; 0 for none.
        std::vector<wl_resource *> frames;
    };

    void offer(const wl_interface &interface, int version);
    void offerOutputs();
    void takeOutputsAway();
    void introduce(wl_resource *object, int number);
    wl_resource *make(wl_client *client, const wl_interface &interface, int version, std::uint32_t id);
    void heed(wl_resource *object, const QByteArray &request, const wl_argument *arguments,
              wl_resource *made);
    void takePlace(wl_resource *surface, wl_resource *place, wl_resource *output);
    void after(std::optional<int> milliseconds, int number, std::function<void(wl_resource *place)> act);
    void configure(wl_resource *place, QSize size);
    void commit(wl_resource *surface);
    void forget(wl_resource *object);

    static void bind(wl_client *client, void *offered, std::uint32_t version, std::uint32_t id);
    static int dispatch(const void *, void *object, std::uint32_t, const wl_message *message,
                        wl_argument *arguments);

    Manners manners_;
    std::vector<std::unique_ptr<Offered>> offered_;
    std::map<wl_resource *, Surface> surfaces_;
    int asked_ = 0;
    std::map<wl_resource *, int> numbers_; ///< Of what stands for outputs.
    std::set<int> wished_;
    FakeCompositor compositor_;
    std::vector<FakeCompositor::Offer> offers_;
    std::vector<FakeCompositor::Offer> outputs_;
    QObject timers_;
};

} // namespace pavonel::test
