#include "zelto/algorithm/internal/Refusal.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/raster/RasterSource.h"

#include <string>

namespace zelto {

bool Refuse(const CRasterSource& source, const char* reason) {
    const std::string file = CommonFun::U2M(source.GetFilePath());
    SetLastError(file.empty() ? reason : file + ": " + reason);
    return false;
}

bool RefuseMissing(const char* what) {
    SetLastError(std::string("no ") + what + " is given");
    return false;
}

bool IsUsable(const CRasterSource* source) {
    if (source == nullptr)
        return RefuseMissing("raster");
    for (int b = 0; b < source->GetBandCount(); ++b)
        if (source->GetRasterBand(b) == nullptr)
            return Refuse(*source, "the raster is not open");
    return true;
}

} // namespace zelto
