#pragma once

#include "EndToEnd/Desktop.h"
#include "support/AccessibilityBus.h"
#include "support/MessageBus.h"

#include <optional>

#include <gtest/gtest.h>

namespace pavonel::test {

/// The built program on its first run, with the settings window open, as a user of a screen reader has it:
/// scripts beside this file, which know only what assistive technology is told, go through the window.
class SettingsRoad : public testing::Test {
protected:
    SettingsRoad();

    /// Starts the program with these members in its store, if there are any.
    void start(const QJsonObject &stored = {});

    /// Runs a script of the folder to its end; fails with what the script says.
    void walk(const QString &script, const QStringList &arguments = {});

    /// Ends the program, if it runs, and expects its store to hold all settings, at their defaults but for
    /// these changes.
    void expectStored(const QJsonObject &changes);

    /// The same where no setting was touched: the store holds these members alone.
    void expectOnlyStored(const QJsonObject &expected);

    /// The settings of a fresh store, by their keys.
    static QJsonObject defaults();

    /// What the store holds under a name, once the program has ended.
    QJsonValue stored(const QString &key) const { return desktop.stored()[key]; }

    Desktop desktop;

private:
    MessageBus bus_;
    std::optional<AccessibilityBus> accessibility_;
};

} // namespace pavonel::test
