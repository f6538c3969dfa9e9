#pragma once

#include <gdal.h>

namespace zelto::test {

/// Gives GDAL's cache of blocks a size for as long as this lives.
class BlockCacheOf {
  public:
    explicit BlockCacheOf(GIntBig bytes) { GDALSetCacheMax64(bytes); }
    ~BlockCacheOf() { GDALSetCacheMax64(m_former); }
    BlockCacheOf(const BlockCacheOf&) = delete;
    BlockCacheOf& operator=(const BlockCacheOf&) = delete;

  private:
    GIntBig m_former = GDALGetCacheMax64();
};

} // namespace zelto::test
