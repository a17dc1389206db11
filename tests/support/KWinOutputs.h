#pragma once

#include <QString>

#include <cstddef>
#include <functional>
#include <vector>

struct kde_output_configuration_v2;
struct kde_output_device_v2;
struct kde_output_management_v2;
struct wl_display;
struct wl_proxy;
struct wl_registry;

namespace pavonel::test {

/// The outputs of a KWin, as the system settings change them. What KWin refuses fails the test.
class KWinOutputs {
public:
    /// Of the KWin at this socket.
    explicit KWinOutputs(const QString &socket);
    KWinOutputs(const KWinOutputs &) = delete;
    KWinOutputs &operator=(const KWinOutputs &) = delete;
    ~KWinOutputs();

    /// Counted from 0, in the order of the beginning.
    void setEnabled(std::size_t output, bool enabled);
    void setScale(std::size_t output, double scale);

private:
    using Change = std::function<void(kde_output_configuration_v2 *, kde_output_device_v2 *)>;

    static void find(void *self, wl_registry *registry, std::uint32_t name, const char *interface,
                     std::uint32_t version);
    void watch(kde_output_device_v2 *output);
    void apply(std::size_t output, const Change &change);

    wl_display *display_;
    wl_registry *registry_ = nullptr;
    kde_output_management_v2 *management_ = nullptr;
    std::vector<kde_output_device_v2 *> outputs_;
    std::vector<wl_proxy *> modes_; ///< Of the outputs.
};

} // namespace pavonel::test
