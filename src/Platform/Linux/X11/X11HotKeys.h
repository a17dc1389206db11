#pragma once

#include "Platform/HotKeyService.h"

#include <memory>

namespace pavonel {

class X11Connection;

/// Key grabs on the root window: the server gives us these keys whichever program has the keyboard, and that
/// program does not see them.
class X11HotKeys final : public HotKeyService {
public:
    /// Null where the server cannot tell the positions of its keys.
    static std::unique_ptr<HotKeyService> make(std::shared_ptr<X11Connection> connection);

    void setPressHandler(PressHandler handler) override;

    /// Null also for a combination that is registered already, or that this keyboard does not have.
    std::unique_ptr<HotKeyRegistration> registerKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                                    std::uint32_t identifier) override;

private:
    class Grabs;
    class Registration;

    explicit X11HotKeys(std::shared_ptr<Grabs> grabs);

    std::shared_ptr<Grabs> grabs_; ///< A registration may outlive the service.
};

} // namespace pavonel
