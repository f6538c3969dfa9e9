#pragma once

#include "host/report/SampleClasses.h"

#include <string>

namespace zelto::cli {

/// Reads training pixels from a CSV file with the columns label, class and one per band, as
/// `samples collect --csv` prints them. A first line of column names is skipped. Pixels of one
/// label are of one class, which has the name of the first of them and no shapes. Throws Failure
/// naming file and line.
/// @param bandCount receives the number of values of each pixel
host::SampleClasses ReadSampleTable(const std::string& path, int& bandCount);

} // namespace zelto::cli
