#pragma once

#include "zelto/datasource/GISDataSource.h"

#include <cpl_error.h>

namespace zelto::host {

/// Keeps GDAL configured and its drivers registered, for work outside a data source's life.
class GdalUse {
  public:
    GdalUse() { CGISDataSource::RegisterGDAL(); }
    ~GdalUse() { CGISDataSource::DestroyGDAL(); }
    GdalUse(const GdalUse&) = delete;
    GdalUse& operator=(const GdalUse&) = delete;
};

/// The same with GDAL's messages on the calling thread kept from the terminal: hosts tell what
/// failed in lines of their own. To end where it began, on that thread. GDAL must outlive its
/// message handler, which it would otherwise lose.
class QuietGdalUse {
  private:
    GdalUse m_use;
    CPLErrorHandlerPusher m_quiet{CPLQuietErrorHandler};
};

} // namespace zelto::host
