#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DatasetOpenInfo.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/geometry/BoundingBox.h"

#include <string>

class OGRSpatialReference;

/// Base of every data source: names, ground extent, spatial reference and the display flags
/// that a host keeps per layer. It also owns the process-wide life of GDAL: the first source
/// constructed configures and registers it, the last one destroyed tears it down.
///
/// Sources may be constructed and destroyed by several threads at once, the first and the last
/// one too. A source is used from one thread at a time.
///
/// Texts: wide strings are UTF-32, narrow ones UTF-8. A text the spatial reference does not
/// have is empty.
class ZELTO_API CGISDataSource {
  public:
    CGISDataSource();
    /// Shares the spatial-reference handle and does not count as a live source, although its
    /// destruction does; avoid copies.
    CGISDataSource(const CGISDataSource& other);
    /// Takes over the file path and the WKT only.
    CGISDataSource& operator=(const CGISDataSource& other);

    virtual ~CGISDataSource();
    virtual GISError Open(CDatasetOpenInfo info) = 0;
    virtual GISError Open(const wchar_t* path, GISDataAccess access, bool allowWarp) = 0;
    virtual void Close() = 0;
    virtual void SetVisible(bool visible);
    virtual bool IsVisible();
    /// Takes over another source's display settings; nothing here.
    virtual void CopyDisplaySetting(CGISDataSource* other);
    virtual bool IsOpened() = 0;

    /// True when the file paths are equal, letter by letter; nothing else is compared.
    bool operator==(const CGISDataSource& other) const;

    std::wstring GetFileName() const { return m_fileName; }
    std::wstring GetFilePath() const { return m_filePath; }
    void SetFilePath(std::wstring path);
    /// The description GDAL gives the open data set.
    std::wstring GetDescription() const { return m_description; }
    GISDataSourceType GetDataSourceType() const { return m_dataSourceType; }
    CBoundingBox GetExtent() const { return m_extent; }
    double GetTop() const { return m_extent.GetTop(); }
    double GetBottom() const { return m_extent.GetBottom(); }
    double GetLeft() const { return m_extent.GetLeft(); }
    double GetRight() const { return m_extent.GetRight(); }
    std::string GetSpatialReferenceWKT() const { return m_wkt; }
    /// The name built by InitCoordinateName().
    std::wstring GetCoordinateNameNew() const { return m_coordinateName; }
    DataDisplayType GetDisplayType() const { return m_displayType; }
    void SetDisplayType(DataDisplayType type) { m_displayType = type; }
    bool IsChanged() const { return m_changed; }
    void SetChanged(bool changed) { m_changed = changed; }
    bool IsSelected() const { return m_selected; }
    void SetSelected(bool selected) { m_selected = selected; }
    /// Call before opening a source that will be drawn.
    void SetForDisplay(bool forDisplay) { m_forDisplay = forDisplay; }
    /// The access actually obtained when the data set was opened.
    GISDataAccess GetAccess() const { return m_access; }
    bool IsGeographic() const;
    bool IsProjected() const;

    /// "GEOGCS" or "PROJCS" name of the spatial reference; empty when it is neither.
    std::wstring GetCoordinateName() const;
    /// Loads the spatial reference from the WKT and stores its readable name, such as
    /// "WGS 84 (WGS_1984/WGS 84)": name, datum (geographic) or projection (projected), spheroid.
    void InitCoordinateName();
    std::wstring GetDatumName() const;
    /// Name of the angular units of a geographic reference, else empty.
    /// @param withFactor append the factor to radians in parentheses, with 18 decimals
    std::wstring GetAngularUnits(bool withFactor) const;
    /// Name of the linear units of a projected reference, else empty; see GetAngularUnits().
    std::wstring GetLinearUnits(bool withFactor) const;
    /// Angular units when geographic, linear units when projected, else empty.
    std::wstring GetUnitName(bool withFactor) const;

    /// Kind of source that a path names: vector for the extension "shp" exactly, else raster.
    static GISDataSourceType GetDataSourceType(const wchar_t* path);
    /// Writes a world file beside `basePath` with the extension "tfw".
    /// @param geoTransform six values, GDAL's order
    /// @return true on success
    static bool WriteGeotransformToWorldFile(const char* basePath, double* geoTransform);
    /// Writes `wkt` as it is, without a line end; does nothing when the file cannot be opened.
    static void WriteWkt(const char* path, const char* wkt);

    /// Why the last operation of the engine failed on this thread: the file it is about and the
    /// reason, GDAL's or the system's where they gave one, in one line of UTF-8. An addition to
    /// the fixed interface, for hosts that want to tell more than an error code says.
    ///
    /// Read it right after a call of any class of the engine. An operation that can fail forgets
    /// the reason of an earlier one when it begins; what it calls, host code included, does not,
    /// so that the reason found deepest inside reaches the host. After a failure (an error code,
    /// false or a null pointer) the text says why. After a success it is empty, or says what was
    /// done without: a sub-file that did not open, a view that could not be made, a pixel that
    /// the file did not take. Closing and destroying a source never forgets a reason.
    static std::string GetLastErrorText();
    /// Forgets the reason; for calls that cannot fail, and between operations on one's own.
    static void ClearLastErrorText();

    /// Counts one more user of GDAL; the first one configures and registers it.
    static void RegisterGDAL();
    /// Counts one user of GDAL less; when none is left GDAL is torn down.
    static void DestroyGDAL();
    /// Sets the process-wide GDAL options. The installation folder D is that of the loaded host
    /// module, or of the running executable when there is none; GDAL's support files are
    /// expected in D/data and its errors are logged to D/logs/gdal.log, or in the folder that
    /// SetLogFolder() has named. Below /usr, where programs do not write, D/logs is not made.
    static void SetGDALConfigOption();
    /// Where GDAL's errors are logged instead of D/logs, for programs whose own folder is not
    /// theirs to write. Call it before the first source. The folder, with those above it, is made
    /// when the first error comes. An addition to the fixed interface.
    /// @param folder UTF-8; empty: nothing is logged; null: D/logs again
    static void SetLogFolder(const char* folder);
    /// Says that the process has no installation folder, for hosts that run inside a program of
    /// others, such as an interpreter: GDAL finds its support files by itself and no log is
    /// written. Call it before the first source is constructed. An addition to the fixed
    /// interface.
    static void UseNoInstallationFolder();

  protected:
    GISDataAccess m_access = GIS_READONLY;
    std::wstring m_fileName;
    std::wstring m_filePath;
    bool m_visible = true;
    std::wstring m_description;
    GISDataSourceType m_dataSourceType = GISDataSourceType(0);
    std::string m_wkt;
    std::wstring m_coordinateName;
    CBoundingBox m_extent;
    OGRSpatialReference* m_spatialReference = nullptr; ///< owned
    DataDisplayType m_displayType = DISPLAY_DEFAULT;
    bool m_forDisplay = false;
    bool m_changed = false;
    bool m_selected = false;
};
