#pragma once

#include <string>
#include <vector>

class CDataProgress;

namespace zelto::host {

/// What of a raster is copied, and into what. Behind the semicolon: what a text that is empty
/// stands for.
struct CopyOptions {
    std::string from;
    std::string to;
    std::string bands;                 ///< "3,2,1", counted from 1; all
    std::string window;                ///< column,row,columns,rows; the whole image
    std::string box;                   ///< instead: left,top,right,bottom in ground units
    std::string type;                  ///< pixel type; that of the first band copied
    std::string format;                ///< of ChooseFormat(); as the extension tells
    bool overwrite = false;            ///< whether `to` may be there already
    std::vector<std::string> creation; ///< KEY=VALUE for the GeoTIFF writer
};

/// Copies pixels into a new raster file. Throws Failure and UsageError.
/// @return what the format of the copy cannot hold, in words
std::vector<std::string> CopyRaster(const CopyOptions& options, CDataProgress& progress);

} // namespace zelto::host
