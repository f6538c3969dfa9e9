#pragma once

#include "zelto/datasource/GISDataSource.h"

namespace zelto::cli {

/// Keeps GDAL configured and its drivers registered, for work outside a data source's life.
class GdalUse {
  public:
    GdalUse() { CGISDataSource::RegisterGDAL(); }
    ~GdalUse() { CGISDataSource::DestroyGDAL(); }
    GdalUse(const GdalUse&) = delete;
    GdalUse& operator=(const GdalUse&) = delete;
};

} // namespace zelto::cli
