#pragma once

#include "zelto/datasource/GISDataSource.h"

#include <ogr_spatialref.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace zelto::test {

/// A data source without a file: the base class with its abstract operations filled in.
class PlainDataSource : public CGISDataSource {
  public:
    PlainDataSource() = default;
    explicit PlainDataSource(const std::string& wkt) { SetReference(wkt); }

    GISError Open(CDatasetOpenInfo /*info*/) override { return GIS_FAILED; }
    GISError Open(const wchar_t* /*path*/, GISDataAccess /*access*/, bool /*allowWarp*/) override {
        return GIS_FAILED;
    }
    void Close() override {}
    bool IsOpened() override { return m_opened; }

    void SetReference(const std::string& wkt) {
        m_wkt = wkt;
        InitCoordinateName();
    }
    void SetExtent(const CBoundingBox& extent) { m_extent = extent; }
    OGRSpatialReference* Reference() const { return m_spatialReference; }
    /// As a host's own kind of source may.
    void GiveUpReference() {
        m_spatialReference->Release();
        m_spatialReference = nullptr;
    }

    bool m_opened = false;
};

/// Position of a virtual operation in its class's table. The destructor takes the first two.
template <typename MemberFunction>
std::ptrdiff_t SlotOf(MemberFunction function) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof(function) >= sizeof(offset));
    std::memcpy(&offset, &function, sizeof(offset));
    return (offset - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

} // namespace zelto::test
