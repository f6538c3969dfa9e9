#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/geometry/BoundingBox.h"
#include "zelto/geometry/PlatformTypes.h"

#include <memory>
#include <vector>

class CAOISource;
class CDrawRectangle;
class CDrawShape;
class CRasterBand;
class CRasterSource;

namespace zelto {
class RegionCovariance;
class RegionScan;
class RegionSpans;
} // namespace zelto

/// Statistics of a region as a person expects them, for reports. The statistics operations of
/// CRasterAlgorithm have rules of their own, which their hosts rely on: windows, seeds, zeros
/// left out, answers. Here there is one rule for every kind of region:
///
/// - a pixel belongs to a region when its centre lies in one of the region's shapes, and counts
///   once however many of them hold it; what lies off the raster does not matter;
/// - every pixel of the region is read, whatever the region's size, in memory that stays below
///   the 128 megabytes of one read budget; or, with SetApprox(), a regular sample of at most
///   2^24 values over all bands;
/// - a value is left out of its band when it is the band's no-data value (within 1e-8), not a
///   number or infinite; zeros count;
/// - the mean of 8- and 16-bit bands is exact, deviations are accumulated around the mean.
///
/// Set the region, call Compute(), and then what else is wanted.
class ZELTO_API CRegionStatistics {
  public:
    struct Band {
        int index = 0; ///< counted from 0
        __int64 count = 0;
        // Without values these are not numbers.
        double minimum = 0.0;
        double maximum = 0.0;
        double mean = 0.0;
        double standardDeviation = 0.0; ///< population form
        double lowPercentile = 0.0;     ///< after ComputePercentiles()
        double highPercentile = 0.0;    ///< after ComputePercentiles()
    };

    /// A sum of a band's values without any rounding: a whole number of units of 2^−2148 in two's
    /// complement, least significant byte first. Sums of parts of a region, of rasters, of other
    /// machines' work are added as such numbers, and whatever is computed from the total does not
    /// depend on the parts.
    using ExactSum = std::vector<unsigned char>;

    /// What ComputeSums() finds out about a band.
    struct Sums {
        int index = 0; ///< counted from 0
        __int64 count = 0;
        double minimum = 0.0; ///< without values not a number
        double maximum = 0.0; ///< the same
        ExactSum sum;
        ExactSum squares; ///< of the values' squares
    };

    /// What ComputeProducts() finds out about the pixels that have a value in every band.
    struct Products {
        __int64 count = 0;
        std::vector<ExactSum> sums;     ///< per band
        std::vector<ExactSum> products; ///< of bands (0, 0), (1, 0), (1, 1), (2, 0) …
    };

    /// How often a band's values lie in buckets of equal width.
    struct Histogram {
        int position = 0;            ///< of the band in GetBands()
        double low = 0.0;            ///< where the first bucket starts; it belongs to the bucket
        double width = 1.0;          ///< of a bucket, above 0; its end does not belong to it
        std::vector<__int64> counts; ///< as many buckets as elements
    };

    /// The whole of an open raster, all bands, until told otherwise.
    explicit CRegionStatistics(CRasterSource* source);
    ~CRegionStatistics();
    CRegionStatistics(const CRegionStatistics&) = delete;
    CRegionStatistics& operator=(const CRegionStatistics&) = delete;

    /// @param bands counted from 0, in the order wanted; those the raster does not have are
    ///        left out
    void SetBands(const std::vector<int>& bands);
    /// The shapes of an area, not owned; null: the whole raster.
    void SetAOI(CAOISource* aoi);
    /// One shape, not owned; null: the whole raster.
    void SetShape(CDrawShape* shape);
    /// A box in ground units.
    void SetBox(const CBoundingBox& box);
    /// Leaves out what lies in other rows of the raster, until told otherwise.
    /// @param count 0 or less: no row is left out
    void SetRows(int first, int count);
    /// Regions of more than 2^24 values over all bands are sampled instead of read whole.
    void SetApprox(bool approx) { m_approx = approx; }
    /// Regions of more than `values` values over all bands are sampled to about that many. The
    /// values read by Compute() then stay in memory, so that percentiles and histograms read
    /// nothing again: for what has to be quick. 0: as SetApprox() says.
    void SetSampleSize(__int64 values);

    /// Count, range, mean and deviation of every band.
    /// @return GIS_FAILED when a band cannot be read, without memory, or when the progress
    ///         object cancelled; a region without pixels succeeds with counts of 0
    GISError Compute(CDataProgress* progress);
    /// Covariance matrix of the pixels that have a value in every band, around those pixels'
    /// means. The region is read once: strips are measured around their own means and merged,
    /// which loses nothing where means are large.
    GISError ComputeCovariance(CDataProgress* progress);
    /// What Compute() and ComputeCovariance() find, with the region read once for both.
    GISError ComputeWithCovariance(CDataProgress* progress);
    /// Values that `low` and `high` percent of each band's values do not exceed, interpolated
    /// between the two values around position (count − 1) × percent / 100 of the sorted values.
    /// The region is read a few times over. Call Compute() first.
    /// @param low,high 0 … 100, to which others are limited
    /// @return GIS_FAILED also for one that is not a number, and where the values are not those
    ///         that Compute() counted: of another region, or of a file that changed
    GISError ComputePercentiles(double low, double high, CDataProgress* progress);

    /// Counts one band's values into buckets of equal width; those outside are left out.
    /// @param position in GetBands()
    /// @param low where the first bucket starts; it belongs to the bucket, the end does not
    /// @param width above 0
    /// @param counts as many buckets as elements; set, not added to
    /// @return GIS_FAILED also for a position outside the list and a width of 0 or less
    GISError ComputeHistogram(int position, double low, double width, std::vector<__int64>& counts,
                              CDataProgress* progress);
    /// Sets the counts of several histograms, with the region read once for all of them. Where it
    /// is sampled, the bands share the values of the sample.
    /// @return as ComputeHistogram()
    GISError ComputeHistograms(std::vector<Histogram>& histograms, CDataProgress* progress);

    /// Exact sums of every band's values, for results that parts are merged to.
    /// @param sums one per band; what it held is replaced
    /// @return as Compute()
    GISError ComputeSums(std::vector<Sums>& sums, CDataProgress* progress) const;
    /// Exact sums of products, from which a covariance is merged. Costs several times
    /// ComputeCovariance().
    /// @return as Compute()
    GISError ComputeProducts(Products& products, CDataProgress* progress) const;

    /// Tells which pixels belong to the region, whatever their values; none is read. SetRows()
    /// and SetApprox() do not matter.
    /// @param inside rowCount full rows of the raster, one byte a pixel; receives 1 and 0
    /// @return GIS_FAILED for null, for rows that the raster does not have and without memory
    GISError FillMask(int firstRow, int rowCount, unsigned char* inside) const;

    const std::vector<Band>& GetBands() const { return m_bands; }
    /// bands × bands, row by row; empty before ComputeCovariance().
    const std::vector<double>& GetCovariance() const { return m_covariance; }
    /// Pixels with a value in every band, after ComputeCovariance().
    __int64 GetCovarianceCount() const { return m_covarianceCount; }
    /// Whether Compute() took a sample; the counts are then those of the sample.
    bool IsSampled() const { return m_sampled; }

  private:
    bool IsUsable() const;
    zelto::RegionScan MakeScan() const;
    zelto::RegionScan MakeScan(const std::vector<int>& bands) const;
    /// @param covariance takes the same strips, may be null
    bool ComputeMoments(const zelto::RegionScan& scan, zelto::RegionCovariance* covariance,
                        CDataProgress* progress);
    bool CountTogether(std::vector<Histogram>& histograms, CDataProgress* progress) const;
    void TakeCovariance(const zelto::RegionCovariance& covariance);
    std::vector<int> BandIndices() const;

    CRasterSource* m_source;
    std::vector<CDrawShape*> m_shapes;     ///< not owned
    std::unique_ptr<CDrawRectangle> m_box; ///< what m_shapes points to for a box
    bool m_wholeRaster = true;
    bool m_approx = false;
    bool m_sampled = false;
    __int64 m_sampleSize = 0;
    std::vector<std::vector<double>> m_values; ///< per band, where Compute() kept them
    std::vector<Band> m_bands;
    std::vector<double> m_covariance;
    __int64 m_covarianceCount = 0;
    int m_firstRow = 0;
    int m_rowCount = 0; ///< 0: all rows
};
