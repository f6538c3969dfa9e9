#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/geometry/PlatformTypes.h"

#include <memory>
#include <vector>

class CRasterSource;
class OGRGeometry;

namespace zelto {
class ZoneOutline;
}

/// Statistics of a raster under many polygons, all of them in one pass over the image. An addition
/// to the fixed interface.
///
/// A zone is a polygon or several (a multipolygon, a collection of such); holes are no part of it.
/// It counts the raster's pixels by one of two weights:
///
/// - Weights::Center: a pixel whose centre lies in the zone weighs 1, others nothing. Of centres
///   on an edge the zone has those on its left and upper sides;
/// - Weights::Coverage: a pixel weighs the fraction of it that the zone covers, found exactly by
///   clipping (not by sampling); shares below 1e-12 count as none.
///
/// Zones may overlap: each counts for itself. Values are left out band by band as in
/// CRegionStatistics: no-data (within 1e-8) and what is not finite. What lies off the raster does
/// not matter, and rotated rasters are measured on their own grid. Polygons that cross themselves
/// or each other are repaired first, as GEOS does it.
///
/// @code
/// CZonalStatistics statistics(&scene);
/// statistics.SetWeights(CZonalStatistics::Weights::Coverage);
/// for (const auto& feature : layer)
///     statistics.AddZone(feature->GetGeometryRef());   // in the raster's reference system
/// if (statistics.Compute(&progress) == GIS_SUCCESS)
///     use(statistics.GetZone(0)[band].mean);
/// @endcode
class ZELTO_API CZonalStatistics {
  public:
    enum class Weights { Center, Coverage };

    /// What a zone holds of a band.
    struct Band {
        int index = 0;       ///< counted from 0
        __int64 count = 0;   ///< pixels with a value, whatever they weigh
        double weight = 0.0; ///< sum of their weights; as the count where those are 1
        // Without values these are not numbers, but the sum, which is 0.
        double minimum = 0.0;
        double maximum = 0.0;
        double sum = 0.0;  ///< of the values times their weights
        double mean = 0.0; ///< the sum over the weight
        /// Population form: weighted squares around the mean over the weight.
        double standardDeviation = 0.0;
        /// In the order of SetQuantiles().
        std::vector<double> quantiles;
    };

    /// All bands of an open raster, which is not owned.
    explicit CZonalStatistics(CRasterSource* source);
    ~CZonalStatistics();
    CZonalStatistics(const CZonalStatistics&) = delete;
    CZonalStatistics& operator=(const CZonalStatistics&) = delete;

    /// @param bands counted from 0, in the order wanted; those the raster does not have are
    ///        left out
    void SetBands(const std::vector<int>& bands);
    void SetWeights(Weights weights) { m_weights = weights; }
    /// Values below which a share of the weight lies. Of n values in order, x(k) with weights
    /// w(k), k from 0, the quantile p lies where p × (n − 1) × Σw falls among
    /// S(k) = k × w(k) + (n − 1) × (w(0) + … + w(k − 1)), interpolated between the two values
    /// around it; with equal weights that is the place (n − 1) × p among the sorted values.
    ///
    /// The values of the zones that a row of the image meets are kept in memory for this, 24
    /// bytes each; Compute() fails where they are more than 2^27.
    /// @param shares 0 … 1; none: no quantiles
    /// @return false for others, which changes nothing
    bool SetQuantiles(const std::vector<double>& shares);

    /// Adds a zone. Only its outline is kept.
    /// @param polygons in the raster's reference system, not owned; null and empty ones make a
    ///        zone without values
    /// @return false, without a zone, for geometry that is no polygon or cannot be repaired
    bool AddZone(const OGRGeometry* polygons);
    int GetZoneCount() const { return static_cast<int>(m_zones.size()); }

    /// Measures all zones.
    /// @return GIS_FAILED when a band cannot be read, without memory, or when cancelled; there are
    ///         no results then
    GISError Compute(CDataProgress* progress);
    /// The bands of a zone, in the order of SetBands(); empty before Compute() and for a number
    /// that is none.
    /// @param zone in the order they were added, counted from 0
    const std::vector<Band>& GetZone(int zone) const;

  private:
    bool IsUsable() const;

    CRasterSource* m_source;
    std::vector<int> m_bands;
    Weights m_weights = Weights::Center;
    std::vector<double> m_quantiles;
    std::vector<std::unique_ptr<zelto::ZoneOutline>> m_zones;
    std::vector<std::vector<Band>> m_results;
};
