#pragma once

#include "zelto/Export.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/vector/VectorEnumerations.h"
#include "zelto/vector/VectorLabel.h"
#include "zelto/vector/VectorLayerStyle.h"

#include <cstdint>
#include <string>
#include <vector>

class CClassifyDisplayTable;
class OGRGeometry;
class OGRLayer;
class OGRSpatialReference;

/// A layer of a vector source together with its display settings. The OGR layer belongs to the
/// data set, so that a wrapper must not be used after its source was closed.
class ZELTO_API CVectorLayer {
  public:
    CVectorLayerStyle m_style;
    CVectorLabel m_label;

    /// Takes name, extent and spatial reference from `layer`; all empty for null or where the
    /// layer has none.
    explicit CVectorLayer(OGRLayer* layer);
    /// Copies everything but the OGR layer, which both share.
    CVectorLayer(const CVectorLayer& other);
    CVectorLayer& operator=(const CVectorLayer& other);
    ~CVectorLayer();

    std::wstring GetLayerName() const { return m_layerName; }
    CBoundingBox GetExtent() const { return m_extent; }
    /// Empty for a layer without a spatial reference.
    std::string GetSpatialReferenceWKT() const { return m_wkt; }
    OGRLayer* GetOGRLayer() const { return m_layer; }

    /// Copies of the layer's geometries; the members of multi geometries and collections one by
    /// one.
    /// @param box keep only geometries whose envelope meets the box, edges included; null: all
    /// @return a geometry collection owned by the caller; null when there is no memory for it
    OGRGeometry* GetGeometries(CBoundingBox* box);

    /// Adds a field to the layer; the format may shorten its name.
    /// @return false without a layer, for a null name and when OGR refuses
    bool CreateField(const wchar_t* name, VectorFieldType type);

    /// Appends the names of all fields (UTF-8) to `names`.
    /// @return true
    bool GetLayerFieldName(std::vector<std::string>& names);

    /// Writes the features with the given identifiers, in that order, to a new polygon
    /// shapefile with this layer's fields: names longer than the format allows are shortened,
    /// fields of types it does not have are left out.
    /// @param path UTF-8; existing data there is replaced
    /// @return false when the file cannot be made or a feature cannot be fetched or written
    bool SaveSelectedGeometrys(std::string path, std::vector<int> indices);

    /// Stores a copy of `table` in place of the present one; null removes it.
    void SetClassifyDisplayTable(CClassifyDisplayTable* table);
    /// The layer's own table, or null.
    CClassifyDisplayTable* GetClassifyDisplayTable() const { return m_classifyTable; }
    /// Stores the number in the layer and in its style.
    void SetClassifyFieldNum(int number);
    int GetClassifyFieldNum() const { return m_classifyFieldNum; }
    /// 0 one style for all, 1 by class; anything else is ignored.
    void SetDisplayType(int type);
    /// Stores the number of classes in the style.
    void SetClassesNum(int count);

  protected:
    CClassifyDisplayTable* m_classifyTable = nullptr; ///< owned
    std::int32_t m_classifyFieldNum = 0;
    OGRLayer* m_layer = nullptr;
    std::wstring m_layerName;
    CBoundingBox m_extent;
    OGRSpatialReference* m_spatialReference = nullptr; ///< owned
    std::string m_wkt;
};
