#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/datasource/GISDataSource.h"
#include "zelto/datasource/StretchType.h"
#include "zelto/geometry/PlatformTypes.h"

#include <memory>
#include <string>
#include <vector>

class CClassifyDisplayTable;
class CColorRamp;
class CRasterAOI;
class CRasterBand;
class GDALDataset;
class GDALDriver;
class GDALRasterBand;
class OGRSpatialReference;

namespace zelto {
class StatisticsOnDemand;
enum class FirstColor;
struct RasterLayout;
struct ViewGrid;
} // namespace zelto

/// A raster file (or a warped view of one) with its bands, pixel grid, georeferencing and
/// display settings.
///
/// Image coordinates address pixel corners: ground = geotransform applied to (column, row),
/// without a half-pixel shift; ground to image truncates toward zero, so that points just
/// outside the top or left edge map to column or row 0. A geotransform is six doubles in
/// GDAL's order: origin x, pixel width, row rotation, origin y, column rotation, pixel height.
///
/// Bands are numbered from 0. A source that will be drawn must be told by SetForDisplay(true)
/// before it is opened. Everything handed out as a pointer belongs to the source and lives
/// until Close(), unless said otherwise.
class ZELTO_API CRasterSource : public CGISDataSource {
  public:
    CRasterSource();
    /// Copies every member, pointers included; not meant for open sources.
    CRasterSource(const CRasterSource&) = default;
    CRasterSource& operator=(const CRasterSource&) = default;

    // Virtual operations, in the order the interface fixes.

    ~CRasterSource() override;
    /// Opens a main file and its sub-files; see CDatasetOpenInfo.
    /// @return GIS_FAILED when none of the sub-files opened
    GISError Open(CDatasetOpenInfo info) override;
    /// Opens a raster; of a container with sub-data-sets, the first one.
    /// @param access an update open that fails falls back to reading
    /// @param allowWarp show rotated rasters and those with ground control points through a
    ///        north-up warped view
    GISError Open(const wchar_t* path, GISDataAccess access, bool allowWarp) override;
    void Close() override;
    void CopyDisplaySetting(CGISDataSource* other) override;
    /// True while a data set is held.
    bool IsOpened() override;
    /// Stores the type on the source and on all its bands.
    virtual void SetStretchType(StretchType type);
    /// Renders a ground box into byte planes.
    /// @param box ground rectangle that the output covers
    /// @param w,h output size in pixels
    /// @param bands number of planes
    /// @param planes `bands` pointers to w × h bytes each, rows from the top
    /// @param aoi pixels outside it stay 0; may be null
    /// @return false when the box misses the raster or a band cannot be read
    virtual bool GetShowData(CBoundingBox* box, int w, int h, int bands, unsigned char** planes,
                             CRasterAOI* aoi, bool flag);
    /// Renders a ground box into one image of w × h pixels of blue, green, red, alpha.
    /// @param adjust apply the hue, intensity, saturation and contrast settings
    /// @return false when the box misses the raster (the buffer is untouched) or a band cannot
    ///         be read
    virtual bool GetShowData(CBoundingBox* box, int w, int h, unsigned char* out, bool adjust);
    /// Applies the adjustments to three planes of w × h doubles.
    virtual void ApplyShowDataHISC(double* red, double* green, double* blue, int w, int h);
    /// Applies transparency and adjustments to an interleaved image drawn elsewhere.
    virtual void ApplyShowDataHISC(int w, int h, unsigned char* interleaved);
    /// As the plane rendering, but every plane receives the first shown band in grey, whatever
    /// ramp, classes or colour table the source has; adjustments are left out.
    virtual bool GetShowDataGray(CBoundingBox* box, int w, int h, int bands, unsigned char** planes,
                                 CRasterAOI* aoi, bool flag);
    /// Reads one pixel of every band into consecutive slots of `values`.
    /// @param type type of the slots; PDT_Unknown: the raster's own
    virtual GISError GetPixel(void* values, int col, int row, PixelDataType type);
    /// Whether this is a composition of bands of other sources.
    virtual bool IsComposedRaster();

    // Opening.

    /// As Open(), with bands that compute no statistics.
    GISError OpenSimple(const wchar_t* path, GISDataAccess access, bool allowWarp);
    /// Opens a container and all its sub-data-sets, recursively, as sub-rasters.
    GISError OpenAsDataset(const wchar_t* path, GISDataAccess access);
    /// Opens a raster and shows it in the reference system `targetSrs` (any form GDAL takes;
    /// null: as it is) through a warped view where its own system differs.
    GISError OpenAndWarped(const wchar_t* path, GISDataAccess access, const char* targetSrs);
    /// As OpenAndWarped(), with the pixels of the view given rather than chosen: those of a
    /// picture, say, which is then as sharp as the file allows. Where the raster's own system is
    /// the target, it is shown on its own grid. An addition to the fixed interface.
    /// @param geoTransform six terms in the target system
    /// @param width, height of the view in pixels, 1 or more
    GISError OpenWarpedToGrid(const wchar_t* path, GISDataAccess access, const char* targetSrs,
                              const double* geoTransform, int width, int height);
    /// Opens the stored path again. The access member keeps its value.
    GISError Reopen(GISDataAccess access, bool lightBands);
    /// Whether the bands take their statistics while the source is opened, also for reading. By
    /// default a source that is open for reading takes those of a band when something first asks
    /// for them (an accessor, a drawing, a histogram), with the same result; one that is open
    /// for writing always takes them at opening. Set it before opening. An addition to the fixed
    /// interface.
    void SetSampleAtOpening(bool sample) { m_sampleAtOpening = sample; }
    bool IsSampledAtOpening() const { return m_sampleAtOpening; }

    // What the raster is.

    int GetWidth() const { return m_width; }
    int GetHeight() const { return m_height; }
    int GetBandCount() const { return m_bandCount; }
    RasterDataFormat GetRasterDataFormat() const { return m_format; }
    /// The first band's type.
    PixelDataType GetRasterDataType() const { return m_dataType; }
    /// GDAL's name of the type.
    std::wstring GetRasterDataTypeName() const;
    /// Pixel width of the geotransform.
    double GetXResolution() const { return m_geoTransform[1]; }
    /// Pixel height of the geotransform, negative for north-up images.
    double GetYResolution() const { return m_geoTransform[5]; }
    /// Null outside 0 ≤ index < GetBandCount().
    CRasterBand* GetRasterBand(int index) const;
    int GetSubRasterCount() const { return static_cast<int>(m_subRasters.size()); }
    /// Null outside the list.
    CRasterSource* GetSubRaster(int index) const;
    /// True when the source has had sub-rasters and holds none now, that is after a container
    /// was closed.
    bool IsDataset() const { return m_hasSubRasters && m_subRasters.empty(); }
    /// Each band's no-data value as read at opening, 0 for a band without one.
    std::vector<double> GetNoDataValue() const { return m_noDataValues; }
    CClassifyDisplayTable* GetClassifyDisplayTable() const { return m_classifyTable; }
    OGRSpatialReference* GetOGRSpatialReference() const { return m_spatialReference; }
    std::string GetProjectionWKT() const { return m_wkt; }
    /// The open GDAL data set (the warped view when one was made), owned by the source.
    GDALDataset* GetGDALDataset() const { return m_dataset; }
    /// 1: an affine geotransform maps pixels to ground; 2: image positions are ground
    /// coordinates themselves. Every raster that opens is of kind 1; a host sets 2 for images
    /// measured in ground units.
    int GetGeoreferencingKind() const { return m_georeferencingKind; }
    void SetGeoreferencingKind(int kind) { m_georeferencingKind = kind; }
    /// The six terms that map ground to pixels.
    const double* GetInverseGeoTransform() const { return m_inverseGeoTransform; }

    // Formats.

    /// Format that a path's extension names; RDF_Unknown when none does.
    static RasterDataFormat GetDataFormat(const wchar_t* path);
    /// Usual extension of a format, without the dot; empty for formats that have none.
    static std::wstring GetDataFormatName(RasterDataFormat format);
    /// GDAL's driver for a format, null for those that have none.
    static GDALDriver* GetDriverByRasterFormat(RasterDataFormat format);

    // Coordinates.

    void ImageToGround(int col, int row, double& x, double& y) const;
    void ImageToGround(double col, double row, double& x, double& y) const;
    CPoint2D ImageToGround(CPoint pixel) const;
    /// Box of the rectangle's top-left and bottom-right corners; all-zero for null.
    CBoundingBox ImageToGround(CRect* rect) const;
    void GroundToImage(double x, double y, double& col, double& row) const;
    void GroundToImage(double x, double y, int& col, int& row) const;
    CPoint GroundToImage(CPoint2D ground) const;
    /// Rectangle of the box's top-left and bottom-right corners, widened to at least one pixel
    /// when two sides coincide; all-zero for null.
    CRect GroundToImage(CBoundingBox* box) const;

    // Creation, pyramids, georeferencing, files.

    /// Creates a raster file and keeps it open for writing.
    /// @param format RDF_Unknown: by the path's extension
    /// @param geoTransform six values, may be null
    /// @param wkt projection text, may be null
    /// @param options GDAL creation options, used for GeoTIFF only
    GISError CreateRaster(RasterDataFormat format, const wchar_t* path, int width, int height,
                          int bands, PixelDataType type, double* geoTransform, const char* wkt,
                          char** options);
    /// Creates a GeoTIFF: band-interleaved, with a world file, grey below three bands and RGB
    /// from three on, BigTIFF above 2867.2 megabytes, where `options` do not say otherwise.
    GISError CreateGTiffRaster(RasterDataFormat format, const wchar_t* path, int width, int height,
                               int bands, PixelDataType type, double* geoTransform, const char* wkt,
                               char** options);
    /// Creates a raster with the layout of `source`, without its pixels.
    /// @param bands,type 0: as the source
    GISError CreateRasterCopy(RasterDataFormat format, const wchar_t* path, CRasterSource* source,
                              int bands, PixelDataType type);
    /// Builds the overview pyramid.
    /// @param resampling GDAL's name; "NEAREST" is used where the raster has a colour table
    /// @param bandCount,bandList bands to build for, numbered from 1; 0: all
    GISError BuildOverviews(const char* resampling, int bandCount, int* bandList,
                            CDataProgress* progress);
    bool IsOverviewsValid();
    /// Copies the member geotransform and answers true; or, with `fromFile` and an open data
    /// set, reads the file's and answers true exactly when the file has none.
    bool GetGeoTransform(double* geoTransform, bool fromFile) const;
    GISError SetGeoTransform(double* geoTransform, bool writeToFile);
    GISError SetBaseGeoTransform(double* geoTransform);
    int GetGCPCount(bool fromBase) const;
    GISError ClearGCP(bool onBase);
    GISError SetProjection(const char* wkt);
    bool IsSameSpatialReference(CRasterSource* other);
    /// The tolerant comparison of datum, spheroid, units and projection; systems of heights must
    /// be the same where both sources have one.
    /// @param compareVertical whether one with heights, by a system of their own or above the
    /// ellipsoid, differs from one without
    static bool IsSameSpatialReference(CRasterSource* a, CRasterSource* b, bool compareVertical);
    /// Writes one pixel of every band from consecutive slots of the raster's data type.
    GISError SetPixel(void* values, int col, int row);
    bool SetAllBandNoDataValue(double value, bool writeToFile);
    bool ClearAllBandNoDataValue(bool writeToFile);
    static GISError DeleteFileW(const wchar_t* path);
    static GISError RenameFile(const wchar_t* oldPath, const wchar_t* newPath);
    static GISError CopyFiles(const wchar_t* oldPath, const wchar_t* newPath);

    // Display.

    /// As the plane rendering with an area of interest, which also tells where the area is: the
    /// membership that the drawing itself went by. An addition to the fixed interface.
    /// @param aoi not null
    /// @param inside w × h bytes, rows from the top: receives 1 for pixels in the area, 0 for
    ///        others; untouched when the answer is false
    /// @return false as the plane rendering, and for null pointers
    bool GetMaskedShowData(CBoundingBox* box, int w, int h, int bands, unsigned char** planes,
                           CRasterAOI* aoi, unsigned char* inside);
    /// The interleaved rendering as red, green, blue, alpha: the order in which pictures are
    /// stored. An addition to the fixed interface.
    /// @param box,w,h,out,adjust as there
    /// @return as there; after false with a box that meets the raster, what stands in the buffer is
    ///         of no use
    bool GetShowDataRedFirst(CBoundingBox* box, int w, int h, unsigned char* out, bool adjust);
    /// The interleaved rendering without touching the bands' data caches.
    bool GetShowDataWithoutCache(CBoundingBox* box, int w, int h, unsigned char* out, bool adjust);
    /// Fills the shown bands' caches for a view without drawing it.
    bool GetShowData2Cache(CBoundingBox* box, int w, int h);
    void ReleaseShowDataCache();
    /// Display colour of one ground point, from the caches GetShowData2Cache() filled.
    bool GetShowValueFormCache(double x, double y, unsigned char& r, unsigned char& g,
                               unsigned char& b, unsigned char& a);
    void SetRGBCache(unsigned char* cache) { m_rgbCache = cache; }
    unsigned char* GetRGBCache() const { return m_rgbCache; }
    void SetUseCache(bool use) { m_useRgbCache = use; }
    bool IsUseRGBCache() const { return m_useRgbCache; }
    /// Frees the colour cache (allocated with new[]) and clears its use flag.
    void DeleteRGBCache();
    /// Frees the display density array.
    void ClearRGBShowHisDensity();
    void SetAutoLevelThresold(double threshold);
    double GetAutoLevelThresold() const { return m_autoLevelThreshold; }
    bool ReadWallisColorModel(int model);
    bool SetShowBandNum(int count, int* bandIndices);
    bool SetRedBandNum(int index);
    bool SetGreenBandNum(int index);
    bool SetBlueBandNum(int index);
    int GetRedBandNum() const;
    int GetGreenBandNum() const;
    int GetBlueBandNum() const;
    int GetShowBandCount() const { return m_showBandCount; }
    std::vector<int> GetShowBandArray() const { return m_showBands; }
    /// The k-th shown band; null when there is none or its index names no band.
    CRasterBand* GetShownBand(int k) const;
    bool SetShowStretchNum(int number);
    int GetShowStretchNum() const { return m_showStretchNumber; }
    StretchType GetStretchType() const { return m_stretchType; }
    bool EnableHistogramEqualize();
    bool AllBandHistogramEqualize();
    /// Stores a copy of `ramp`.
    void SetColorRamp(CColorRamp* ramp);
    CColorRamp* GetColorRamp() const { return m_colorRamp; }
    /// Stores a copy of `table`; null removes the present one.
    void SetClassifyDisplayTable(CClassifyDisplayTable* table);
    /// Means and deviations of the display values of the interleaved image, per shown band.
    const double* GetShowMeans() const { return m_showMeans; }
    const double* GetShowStandardDeviations() const { return m_showStandardDeviations; }
    bool IsShowStatisticsKnown() const { return m_showStatisticsKnown; }
    /// Has the next interleaved drawing find these anew, as the first one did; the Wallis stretch
    /// starts from them. An addition to the fixed interface.
    void ForgetShowStatistics() { m_showStatisticsKnown = false; }

  protected:
    int m_showStretchNumber = 0;

  public:
    float m_hue = 0.0F;          ///< display adjustment, −1 … 1
    float m_intensity = 0.0F;    ///< display adjustment, −1 … 1
    float m_saturation = 0.0F;   ///< display adjustment, −1 … 1
    float m_contrast = 0.0F;     ///< display adjustment, −1 … 1
    float m_transparency = 0.0F; ///< 0 opaque … 1 transparent

  protected:
    static int GetByteOffset(PixelDataType type);
    GDALDataset* GDALOpenEx(const wchar_t* path, GISDataAccess access);
    GISError GetRasterInfo(bool allowWarp, bool lightBands);
    CBoundingBox GetExtentInit() const;
    void InitShowBandInfo();
    /// Opens the stored path into an empty source and records the access obtained; update falls
    /// back to reading.
    bool OpenStoredPath(GISDataAccess access);
    /// Reads the classified assistant file beside the image, when there is one.
    void ReadAssistantFile();
    /// Raster information and, for display, the display bands.
    GISError SetUpOpened(bool allowWarp, bool lightBands);
    /// Of a container with sub-data-sets, closes it and answers the first one's name. Anything
    /// else stays open.
    std::wstring CloseForFirstSubDataset();
    /// Opens in `targetSrs`.
    /// @param grid of a view; null: as it comes
    GISError OpenInReference(const wchar_t* path, GISDataAccess access, const char* targetSrs,
                             const zelto::ViewGrid* grid);
    /// Shows the open file in `targetSrs` where its own reference differs.
    bool ShowInReference(const char* targetSrs, const zelto::ViewGrid* grid);
    /// Runs the body of an opening. Nothing is thrown; GIS_OPEN_FAILED leaves the source closed.
    template <typename Body>
    GISError Opening(const Body& body);
    /// Opens the sub-files beside the open main file.
    GISError OpenSubFiles(const CDatasetOpenInfo& info);
    void AddSubRaster(std::unique_ptr<CRasterSource> sub);
    void MergeSubRasters();
    void DeleteOwnBands();
    /// Takes size and geotransform from the data set; answers whether it has a geotransform.
    bool ReadGrid();
    /// Whether the data set needs no warped view.
    bool CanBeShownAsIs(bool hasGeoTransform) const;
    /// Puts a warped view in place of the open file, which becomes the base data set.
    bool UseWarpedView(const std::string& sourceWkt, const std::string& targetWkt,
                       const zelto::ViewGrid* grid = nullptr);
    /// Inverts the geotransform; all zero when it has no inverse.
    void InvertGeoTransform();
    void ReadReference();
    void ReadBands(bool lightBands);
    /// The engine's band of a GDAL band; null when memory does not suffice.
    /// @param onDemand takes the statistics later; null: the band takes them at once
    std::unique_ptr<CRasterBand>
    MakeBand(GDALRasterBand* band, bool light,
             const std::shared_ptr<zelto::StatisticsOnDemand>& onDemand) const;
    /// Has every band take its statistics, before something changes what they would be.
    void TakeStatistics() const;
    /// Whether a pixel lies in the raster; the reason is left where it does not.
    bool IsInside(int col, int row) const;
    /// Creates the raster at the stored path, keeps it open and reads its information.
    /// @param geoTransform,wkt null: not written
    GISError CreateAtStoredPath(GDALDriver& driver, const zelto::RasterLayout& layout,
                                double* geoTransform, const char* wkt, char** options);
    /// BuildOverviews() of a format that keeps the index of a pyramid in the image's file: such
    /// a pyramid is whole, and a former one can be restored, when the file is closed.
    GISError BuildOverviewsAndReopen(GDALDataset* dataset, const char* resampling, int bandCount,
                                     int* bandList, CDataProgress* progress);
    static GISError WriteGeoTransform(GDALDataset& dataset, double* geoTransform);
    GISError BuildOverviews(GDALDataset* dataset, const char* resampling, int bandCount,
                            int* bandList, CDataProgress* progress);
    /// Applies the transparency to the alpha bytes of an interleaved image already drawn.
    void ApplyTransparenVal(unsigned char* interleaved, int w, int h);
    /// The same for a plane of w × h alpha values held as doubles.
    void ApplyTransparenVal(double* alpha, int w, int h);
    /// Means and deviations of the opaque pixels of an interleaved image, per shown band.
    void ComputeShowDataStatics(const unsigned char* interleaved, int w, int h);
    /// The interleaved rendering; `keepsCaches` leaves the bands' data caches as they are.
    /// @param adjust with blue first only, where there is something to adjust
    bool DrawInterleaved(const CBoundingBox* box, int w, int h, unsigned char* out, bool adjust,
                         zelto::FirstColor first, bool keepsCaches = false);
    /// The plane rendering.
    /// @param aoi may be null
    /// @param inside receives the membership in `aoi` of every pixel; may be null, must be so
    ///        without an area
    bool DrawPlanes(const CBoundingBox* box, int w, int h, int bands, unsigned char** planes,
                    CRasterAOI* aoi, unsigned char* inside);
    /// Applies hue, intensity, saturation and contrast where they are set.
    void AdjustColors(unsigned char* interleaved, int w, int h) const;
    /// The same for planes: hue, intensity and saturation where there are three, the contrast
    /// on as many planes as bands are shown.
    void AdjustColors(unsigned char** planes, int planeCount, int w, int h) const;
    /// Whether images of this source get their transparency when they are finished; the others
    /// have it while they are drawn, or not at all.
    bool TakesTransparencyAfterDrawing() const;
    /// GetShowValueFormCache() of a single shown band at a pixel position.
    bool GetSingleBandColor(double column, double row, unsigned char& r, unsigned char& g,
                            unsigned char& b, unsigned char& a) const;

    double m_autoLevelThreshold = 0.01;
    std::wstring m_displayText;
    GDALDataset* m_baseDataset = nullptr; ///< the file behind a warped view, else null
    GDALDataset* m_dataset = nullptr;
    std::vector<CRasterSource*> m_subRasters; ///< owned
    std::string m_composedRasterText;
    RasterDataFormat m_format = RDF_Unknown;
    int m_width = 0;
    int m_height = 0;
    int m_bandCount = 0;
    bool m_hasSubRasters = false;
    bool m_allowWarp = true;
    double m_geoTransform[6] = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    double m_inverseGeoTransform[6] = {0.0, 1.0, 0.0, 0.0, 0.0, -1.0};
    int m_georeferencingKind = 1;
    int m_showBandCount = 0;
    std::vector<int> m_showBands;
    std::vector<CRasterBand*> m_bands; ///< owned, unless there are sub-rasters
    PixelDataType m_dataType = PDT_Unknown;
    StretchType m_stretchType = StretchNone;
    CColorRamp* m_colorRamp = nullptr;                ///< owned
    CClassifyDisplayTable* m_classifyTable = nullptr; ///< owned
    double m_showMeans[3] = {0.0, 0.0, 0.0};
    double m_showStandardDeviations[3] = {0.0, 0.0, 0.0};
    bool m_showStatisticsKnown = false;
    std::vector<double> m_noDataValues;
    unsigned char* m_rgbCache = nullptr; ///< owned once set
    double* m_showDensity = nullptr;     ///< owned
    bool m_useRgbCache = false;
    bool m_sampleAtOpening = false;
};
