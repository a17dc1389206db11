#pragma once

class QWidget;

namespace pavonel {

class Settings;

/// The themes of the break screen to choose from, beside the break screen as it would be now.
QWidget *styleChoice(Settings &settings);

} // namespace pavonel
