#pragma once

#include "support/VirtualInput.h"

#include <QPoint>
#include <QString>

struct org_kde_kwin_fake_input;
struct wl_display;
struct wl_registry;

namespace pavonel::test {

/// On KWin, which lets programs send what its own devices would. They are there until this goes.
class FakeInput final : public VirtualInput {
public:
    /// Of the compositor at this socket; one that does not take it fails the test.
    explicit FakeInput(const QString &socket);
    ~FakeInput() override;

    void press(Key key, std::uint32_t modifiers = none) override;
    void click() override;
    void pointAt(QPoint point);

private:
    static void find(void *self, wl_registry *registry, std::uint32_t name, const char *interface,
                     std::uint32_t version);
    void hold(std::uint32_t modifiers, std::uint32_t state);
    void flush();

    wl_display *display_;
    org_kde_kwin_fake_input *input_ = nullptr;
};

} // namespace pavonel::test
