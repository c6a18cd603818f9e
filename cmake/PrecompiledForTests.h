// What nearly every test includes.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cmake/PrecompiledForModules.h"
