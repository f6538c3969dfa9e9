#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/GISDataSource.h"
#include "zelto/vector/VectorEnumerations.h"
#include "zelto/vector/VectorLayer.h"

#include <cstdint>
#include <vector>

class GDALDataset;
class GDALDriver;

/// A vector file in any format OGR opens, with one CVectorLayer per layer. Its extent is that of
/// all layers together, its spatial reference that of the first one. Drawing is the host's.
class ZELTO_API CVectorSource : public CGISDataSource {
  public:
    CVectorSource();
    CVectorSource(const CVectorSource&) = delete;
    /// Takes over the file path and the WKT only, as the base does.
    CVectorSource& operator=(const CVectorSource& other);

    /// Closes.
    ~CVectorSource() override;
    /// Opens the info's main file; its sub-files are not looked at.
    GISError Open(CDatasetOpenInfo info) override;
    /// Opens a vector file in place of an open one.
    /// @param access GIS_UPDATE opens for writing; there is no read-only retry
    /// @param allowWarp not used
    /// @return GIS_FAILED when OGR cannot open it
    GISError Open(const wchar_t* path, GISDataAccess access, bool allowWarp) override;
    /// Deletes the layers and closes the data set. The layer count keeps its value.
    void Close() override;
    void SetVisible(bool visible) override;
    bool IsVisible() override;
    void CopyDisplaySetting(CGISDataSource* other) override;
    /// True while a data set is held.
    bool IsOpened() override;

    /// Creates an empty data source, replacing what is at the path, and keeps it open. A data
    /// source that is open is closed before.
    /// @param format VDF_SHAPEFILE; any other one means the driver of the last open or creation
    /// @param wkt stored as the source's WKT, the spatial reference itself stays; may be null
    /// @return GIS_NOT_SUPPORTED without a driver that can create, GIS_FAILED when it fails
    GISError CreateDataSource(VectorDataFormat format, const wchar_t* path, const char* wkt);

    /// Creates a layer in the open data source. GetLayerCount() and GetVectorLayer() do not see
    /// it until the source is opened again.
    /// @param wkt spatial reference in any form GDAL takes; null or empty: none
    /// @return the new layer, owned by this source; null when nothing is open or OGR refuses
    CVectorLayer* CreateLayer(const wchar_t* name, const char* wkt, VectorGeometryType type);

    int GetLayerCount() const { return m_layerCount; }
    /// Null outside 0 ≤ index < GetLayerCount() and after Close().
    CVectorLayer* GetVectorLayer(int index) const;
    /// The open data set, owned by this source, or null.
    GDALDataset* GetOGRDataSource() const { return m_dataset; }

  protected:
    GDALDataset* m_dataset = nullptr; ///< owned
    GDALDriver* m_driver = nullptr;   ///< opened or will create the data set; not owned
    std::int32_t m_layerCount = 0;
    std::vector<CVectorLayer*> m_layers; ///< owned

  private:
    void ReadLayers();
};
