#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/datasource/StretchType.h"
#include "zelto/raster/ColorEntry.h"

#include <memory>
#include <string>
#include <vector>

class CImgEnhance;
class CImgStretch;
class CPoint2D;
class CRasterHistogram;
class GDALColorTable;
class GDALRasterBand;

namespace zelto {
class CachedRegion;
class DisplayMapping;
class StatisticsOnDemand;
struct BandSummary;
struct OwnStatistics;
struct PendingStatistics;
} // namespace zelto

/// One band of a raster: block and pixel access, a region cached in memory for point queries,
/// statistics, no-data value, colour table, overviews, and the state that turns samples into
/// display bytes.
///
/// Positions are pixel coordinates of the band: columns to the right, rows downwards, integers
/// at pixel corners. A no-data comparison is |value − no-data| < 1e-8 throughout.
///
/// The GDAL band and its colour table belong to the data set; everything else is owned. A band
/// is used from one thread at a time, but point queries and Convert2ShowValue() may run
/// concurrently while nothing else changes the band.
class ZELTO_API CRasterBand {
  public:
    /// Light construction: size, type, no-data, colour table, GDAL's approximate minimum and
    /// maximum; the overviews are built in full. The flag is not used.
    CRasterBand(bool flag, GDALRasterBand* band);

    /// Full construction: also computes the sampled statistics (unless the band is an overview
    /// not for display) and the standard-deviation bounds. When the samples cannot be read the
    /// minimum and maximum are those of the data type, mean and deviation 0; without any
    /// counted sample all four are 0.
    CRasterBand(GDALRasterBand* band, bool forDisplay, bool isOverview);

    CRasterBand(const CRasterBand&) = delete;
    CRasterBand& operator=(const CRasterBand&) = delete;
    ~CRasterBand();

    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    int GetBlockXSize() const { return m_blockWidth; }
    int GetBlockYSize() const { return m_blockHeight; }
    PixelDataType GetDataType() const { return m_dataType; }
    /// GDAL's name of the data type.
    std::wstring GetDataTypeName() const { return m_dataTypeName; }
    bool IsHaveNoData() const { return m_hasNoData; }
    /// 0 when the band has none.
    double GetNoDataValue() const { return m_noDataValue; }
    /// Whether the band had a colour table at construction.
    bool IsHaveColorTable() const { return m_hasColorTable; }
    /// Not owned; null when there is none.
    GDALColorTable* GetColorTable() const { return m_colorTable; }
    double GetMinimum() const { return TakeStatistics().m_minimum; }
    double GetMaximum() const { return TakeStatistics().m_maximum; }
    double GetMean() const { return TakeStatistics().m_mean; }
    double GetStandardDeviation() const { return TakeStatistics().m_standardDeviation; }
    /// Upper bound of the standard-deviation stretch: min(mean + 2 deviations, maximum).
    double GetStdDevUpperBound() const { return TakeStatistics().m_stdDevUpper; }
    /// Lower bound of the standard-deviation stretch: max(mean − 2 deviations, minimum).
    double GetStdDevLowerBound() const { return TakeStatistics().m_stdDevLower; }
    int GetOverviewCount() const { return static_cast<int>(m_overviews.size()); }
    /// Null outside 0 ≤ index < GetOverviewCount(). Count and sizes are those of the pyramid that
    /// the band was made with, until the source is opened again.
    CRasterBand* GetOverview(int index) const;
    /// The wrapped GDAL band, not owned.
    GDALRasterBand* GetGDALBand() const { return m_band; }
    /// While set, ComputeMinMax() returns the stored values without reading.
    void SetStoredMinMaxFixed(bool fixed) { m_storedMinMaxFixed = fixed; }
    bool IsStoredMinMaxFixed() const { return m_storedMinMaxFixed; }
    /// Stores minimum and maximum as a statistics operation found them; the standard-deviation
    /// bounds follow.
    void StoreMinMax(double minimum, double maximum);
    /// Puts other statistics in place of the band's own: those of a part of the image, or bounds
    /// that a person chose. Everything that is drawn by statistics goes by them, and the accessors
    /// answer them, until RestoreStatistics(). Where the band's own are not taken yet, nothing is
    /// read for it. CStretchPreparation calls this; an addition to the fixed interface.
    /// @return false without memory for keeping the band's own
    bool ReplaceStatistics(double minimum, double maximum, double mean, double standardDeviation);
    /// Puts the statistics back that ReplaceStatistics() took the place of. An addition to the
    /// fixed interface.
    void RestoreStatistics();

    /// Reads a region of pixels, resampled by GDAL when the buffer size differs.
    /// @param buffer bufHeight lines of bufWidth samples of `type`
    /// @param type PDT_Unknown: the band's own type
    /// @param pixelSpace,lineSpace distances in bytes; 0: packed
    /// @return GIS_FAILED without band or buffer, for an empty window or buffer, or on a GDAL
    ///         error
    GISError ReadBlock(int xOff, int yOff, int xSize, int ySize, void* buffer, int bufWidth,
                       int bufHeight, PixelDataType type, int pixelSpace, int lineSpace);
    /// Writes a region of pixels; arguments and result as ReadBlock().
    GISError WriteBlock(int xOff, int yOff, int xSize, int ySize, void* buffer, int bufWidth,
                        int bufHeight, PixelDataType type, int pixelSpace, int lineSpace);
    /// Reads one pixel into `value` as `type` (PDT_Unknown: the band's own).
    GISError GetPixel(void* value, int col, int row, PixelDataType type);
    /// Flushes the GDAL band's block cache, and forgets the samples of a large view.
    void FlushCache();

    /// Replaces the data cache by a region read as doubles, bufWidth × bufHeight.
    /// @return false, with no cache, when the region cannot be read or held
    bool GetData(int xOff, int yOff, int xSize, int ySize, int bufWidth, int bufHeight);
    /// The same read into the caller's bufWidth × bufHeight doubles; the cache stays.
    bool GetDataToBuffer(int xOff, int yOff, int xSize, int ySize, int bufWidth, int bufHeight,
                         double* buffer);
    void ReleaseCache();
    /// Mean of all cached values, no-data values included; 0 without a cache.
    double GetCacheDataMean() const;

    /// Cached sample nearest to (x, y): the one whose cell holds the position.
    /// @return false outside the band or the cache, or when the sample is no-data (which is
    ///         written to `value` all the same)
    bool GetNearestValueAt(double x, double y, double* value) const;
    /// Blend of the four cached samples around (x, y), the nearest sample in the last column
    /// or row. The weights of the right and the lower neighbour are exchanged against the
    /// textbook form; hosts calibrated their displays on this.
    /// @return false outside the band, or when any of the four is no-data
    bool GetBilinearValueAt(double x, double y, double* value) const;

    bool IsNoData(double v) const;
    /// @param writeToFile also store it in the data set; memory changes only if GDAL accepts
    bool SetNoDataValue(double value, bool writeToFile);
    /// Forgets the no-data value in memory. Files keep theirs, hence the answer.
    /// @return !writeToFile
    bool ClearNoDataValue(bool writeToFile);

    /// Gives the band a colour table (copied by GDAL) and re-reads the stored pointer.
    GISError SetColorTable(GDALColorTable* table);
    /// The same from `count` records; the stored pointer is not re-read.
    GISError SetColorTable(tagColorEntry* entries, int count);

    /// Exact minimum and maximum, stored; or the stored ones when `useStored` or fixed.
    bool ComputeMinMax(double* min, double* max, bool useStored);
    /// Exact statistics (population deviation), not stored; or the stored ones.
    /// @return false when GDAL fails or the progress object cancels
    bool ComputeStatics(double* min, double* max, double* mean, double* stdDev, bool useStored,
                        CDataProgress* progress);
    /// Statistics of at most 2048 samples along the longer side; stores nothing.
    /// @param excluded value to leave out besides no-data, may be null
    /// @return false when the band cannot be read; without a counted sample the outputs keep
    ///         their values
    bool ComputeStaticsFromCustom(double& min, double& max, double& mean, double& stdDev,
                                  double* excluded);
    /// Histogram of `buckets` counts between `min` and `max`, answered from the last result
    /// when the arguments agree. A minimum of exactly 0 counts from 0.5 so that background
    /// zeros stay out.
    /// @param counts array of `buckets` values
    bool GetHistogram(double min, double max, int buckets, int* counts, bool includeOutOfRange,
                      bool approxOK, CDataProgress* progress);

    /// Stores the stretch type and nothing else.
    void SetStretchType(StretchType type) { m_stretchType = type; }
    StretchType GetStretchType() const { return m_stretchType; }
    /// Makes the stretch-function object of types 6, 7 and 8 and stores the type. For any other
    /// type the object is gone and the stored type stays.
    void SetStretchData(StretchType type, double a1, double a2, double a3, double a4, double a5,
                        double a6);
    /// Computes the histogram over the display range and its equalisation map.
    bool EnableHistogramEqualize();
    /// Replaces the custom histogram and builds its equalisation map.
    /// @param counts `buckets` values, copied; may be null for none
    /// @return false for missing counts or a negative number of them, which changes nothing, and
    ///         when the histogram cannot be allocated
    bool SetCustomHistogram(double min, double max, int buckets, int* counts);
    /// Replaces the histogram of the equalisation and the auto levels by one that the host counted
    /// and builds its equalisation map; EnableHistogramEqualize() and GetHistogram() count anew.
    /// An addition to the fixed interface.
    /// @return as SetCustomHistogram()
    bool SetHistogram(double min, double max, int buckets, const int* counts);
    /// @param table 256 bytes
    /// @param points the curve the table came from, may be null
    bool SetEnhancedData(const unsigned char* table, HistogramLineType lineType, CPoint2D* points,
                         int pointCount);
    CImgEnhance* GetEnhancer() const { return m_enhancer; }
    CRasterHistogram* GetHistogramObject() const { return m_histogram; }
    /// What SetCustomHistogram() made, null for none. An addition to the fixed interface.
    CRasterHistogram* GetCustomHistogramObject() const { return m_customHistogram; }
    /// What SetStretchData() made, null for none. An addition to the fixed interface.
    const CImgStretch* GetStretchFunction() const { return m_stretchFunction; }
    void SetAutoLevelThresold(double threshold) { m_autoLevelThreshold = threshold; }
    double GetAutoLevelThresold() const { return m_autoLevelThreshold; }

    /// Min-max stretch to 1 … 254; 8-bit bands are clamped to 0 … 255 only.
    unsigned char Convert2Byte(double value) const;
    /// The display byte of a sample under the band's present stretch.
    unsigned char Convert2ShowValue(double value);
    bool GetShowValueAt(double x, double y, unsigned char* out);
    /// Colour-table entry of the cached sample nearest to (x, y).
    bool GetRGBDataFromColorTable(double x, double y, unsigned char& r, unsigned char& g,
                                  unsigned char& b, unsigned char& a) const;

  private:
    friend class CRasterSource;
    friend class zelto::CachedRegion;
    friend class zelto::DisplayMapping;

    /// Construction for a source: the statistics are taken when something first asks for them.
    /// @param light take the range only, as the light construction does
    CRasterBand(GDALRasterBand* band, bool light,
                std::shared_ptr<zelto::StatisticsOnDemand> source);

    void ReadBasics();
    void BuildOverviewBands();
    /// After a pyramid was built anew: the overviews stand for the new levels of their sizes.
    /// One whose size is gone reads no pixel any more.
    void FollowPyramid();
    void SetStandardDeviationBounds() const;
    /// Makes sure that the statistics are there; answers the band itself.
    const CRasterBand& TakeStatistics() const {
        if (m_pending)
            TakePendingStatistics();
        return *this;
    }
    void TakePendingStatistics() const;
    /// Has the band's own statistics found even while others stand in their place.
    void FindOwnStatistics() const;
    void StoreSummary(const zelto::BandSummary& found) const;

    bool m_storedMinMaxFixed = false;
    GDALRasterBand* m_band = nullptr;
    std::vector<CRasterBand*> m_overviews; ///< owned
    int m_width = 0;
    int m_height = 0;
    int m_blockWidth = 0;
    int m_blockHeight = 0;
    PixelDataType m_dataType = PDT_Unknown;
    std::wstring m_dataTypeName;
    int m_hasNoData = 0;
    double m_noDataValue = 0.0;
    bool m_hasColorTable = false;
    GDALColorTable* m_colorTable = nullptr;
    double m_autoLevelThreshold = 0.01;
    // Statistics and bounds are read through the accessors, which make sure that they are there.
    mutable double m_minimum = 0.0;
    mutable double m_maximum = 0.0;
    mutable double m_mean = 0.0;
    mutable double m_standardDeviation = 0.0;
    CRasterHistogram* m_histogram = nullptr;       ///< owned
    CRasterHistogram* m_customHistogram = nullptr; ///< owned
    StretchType m_stretchType = StretchNone;
    CImgEnhance* m_enhancer = nullptr;        ///< owned
    CImgStretch* m_stretchFunction = nullptr; ///< owned
    mutable double m_stdDevUpper = 0.0;
    mutable double m_stdDevLower = 0.0;
    double* m_cache = nullptr; ///< owned; m_cacheWidth × m_cacheHeight
    int m_cacheWidth = 0;
    int m_cacheHeight = 0;
    int m_cacheXOff = 0;
    int m_cacheYOff = 0;
    int m_cacheXSize = 0;
    int m_cacheYSize = 0;
    /// Set for the bands of a source that is open for reading, and never changed.
    std::unique_ptr<zelto::PendingStatistics> m_pending;
    std::unique_ptr<zelto::OwnStatistics> m_own; ///< while others stand in their place
    bool m_histogramIsGiven = false;             ///< by SetHistogram(), not counted from the band
};
