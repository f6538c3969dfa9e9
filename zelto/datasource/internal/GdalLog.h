#pragma once

#include <string>

namespace zelto {

/// Sends GDAL's messages to the file that its option CPL_LOG names, one line each behind a
/// time stamp. GDAL's own log carries no time and ends for good with the first tear-down of
/// the driver manager; this one goes on through any number of start and stop cycles.
///
/// A host that has installed an error handler of its own keeps it. A log file that cannot be
/// opened is silently not written.
/// @param folderToMake made, with those above it, when the first message finds none; empty: none is
void InstallGdalLog(const std::string& folderToMake = {});

/// Gives GDAL its default handler back, unless a host has installed one in the meantime.
void RemoveGdalLog();

} // namespace zelto
