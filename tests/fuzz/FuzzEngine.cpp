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

namespace {

bool g_choosesAll = false;

} // namespace

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

void ChooseAll(bool all) {
    g_choosesAll = all;
}

bool IsChosen(const std::uint8_t* data, std::size_t size, std::uint32_t oneIn) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    return g_choosesAll || std::hash<std::string_view>()(bytes) % oneIn == 0;
}

} // namespace zelto::fuzz
