// Whether bytes are a colour profile. The only place that knows the colour management library.
#pragma once

#include "platform/windowscodecs/jpeg/StreamBytes.h"

bool IsColorProfile(const Bytes &profile) noexcept;
