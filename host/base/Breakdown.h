#pragma once

#include <string>

namespace zelto::host {

/// From now on a library that breaks down, as some of GDAL's drivers do on damaged files, ends the
/// program with a line of its own and this status. New files stay aside, as when it is killed. Not
/// where CPL_DEBUG asks for all that GDAL says, and not under a sanitizer: both want to know more.
void TellBreakdowns(int exitStatus);

/// Names the file that the calling thread is at work on, for the line of a breakdown.
void TellAtWork(const std::string& path);

} // namespace zelto::host
