#pragma once

#include "UI/precompiled.h"

#include <gtest/gtest.h>
