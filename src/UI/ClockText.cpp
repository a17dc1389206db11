#include "UI/ClockText.h"
