#pragma once

/// @file
/// Marks what the shared library exports; everything else stays hidden inside it.

#define ZELTO_API __attribute__((visibility("default")))
