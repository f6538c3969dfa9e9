#include "tests/fuzz/FuzzEngine.h"

#include "zelto/datasource/GISDataSource.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <omp.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string_view>

namespace zelto::fuzz {

void PrepareEngine() {
    static const bool prepared = [] {
        CGISDataSource::RegisterGDAL();
        // The log file of GDAL's errors would be what a run mostly does.
        CPLSetErrorHandler(CPLQuietErrorHandler);
        CPLSetConfigOption("GDAL_PAM_ENABLED", "NO");
        CPLSetConfigOption("OGR_CT_OP_SELECTION", "BEST_ACCURACY");
        CPLSetConfigOption("PROJ_NETWORK", "OFF");
        CPLSetConfigOption("GDAL_HTTP_TIMEOUT", "1");
        CPLSetConfigOption("GDAL_CACHEMAX", "32");
        omp_set_num_threads(1);
        return true;
    }();
    static_cast<void>(prepared);
}

void Require(bool holds, const char* rule) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", rule);
    std::abort();
}

bool IsChosen([[maybe_unused]] const std::uint8_t* data, [[maybe_unused]] std::size_t size,
              [[maybe_unused]] std::uint32_t oneIn) {
#ifdef ZELTO_FUZZ_REPLAY
    return true;
#else
    return std::hash<std::string_view>()({reinterpret_cast<const char*>(data), size}) % oneIn == 0;
#endif
}

} // namespace zelto::fuzz
