#pragma once

/// @file
/// For hosts that name this header: bands have a stretch too, and the types stand below both.

#include "zelto/datasource/StretchType.h"
