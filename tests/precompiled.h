#pragma once

#include "UI/precompiled.h"
#include "support/Printing.h"

#include <gtest/gtest.h>
