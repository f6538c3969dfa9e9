#pragma once

#include <cstddef>
#include <cstdint>

/// @file
/// What every fuzz target defines. Under the preset `fuzz` libFuzzer calls it with inputs of its
/// own making; in all other builds StandaloneFuzzMain.cpp calls it with the files of the corpus.

/// Uses the engine on an input as a host would. Whatever the bytes say, it must neither crash nor
/// throw, nor take long; what is wrong beyond that ends the process by zelto::fuzz::Require().
/// @return 0
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
