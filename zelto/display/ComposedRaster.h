#pragma once

#include "zelto/Export.h"
#include "zelto/raster/RasterSource.h"

#include <vector>

/// Three bands of up to three rasters shown as one red-green-blue image, without writing a file.
/// Its grid covers what the three have in common at the red source's resolution; each colour is
/// rendered from its own source through that source's georeferencing.
///
/// Sources and bands are borrowed: they must outlive the composed raster, which never closes or
/// frees them. It holds no data set of its own, so IsOpened() is false. Until CreateRaster() has
/// succeeded it shows nothing and its renderings answer false.
class ZELTO_API CComposedRaster : public CRasterSource {
  public:
    CComposedRaster() = default;
    ~CComposedRaster() override;

    /// Forgets sources and bands.
    void Close() override;
    /// Does nothing: the bands keep the stretch set through their own sources.
    void SetStretchType(StretchType type) override;
    /// As the base's, with each colour from its own source; planes beyond the number given are
    /// not written. The pixel's corner is looked up, also here.
    bool GetShowData(CBoundingBox* box, int w, int h, int bands, unsigned char** planes,
                     CRasterAOI* aoi, bool flag) override;
    /// As the base's, with each colour from its own source. The alpha of shown pixels is that of
    /// the transparency, and the adjustments are always applied.
    bool GetShowData(CBoundingBox* box, int w, int h, unsigned char* out, bool adjust) override;
    /// Reads a pixel of the composed grid, each colour at its own source's pixel under it.
    /// @param values one slot per shown band, three as a rule; a slot whose source has no such
    ///        pixel stays as it is
    /// @param type type of the slots; PDT_Unknown: the blue source's
    GISError GetPixel(void* values, int col, int row, PixelDataType type) override;
    bool IsComposedRaster() override;

    /// Composes the bands. The reference system and the data type are the blue source's, the
    /// stretch type on record is the red source's.
    /// @return GIS_FAILED for a null argument and when the sources have no pixel in common
    GISError CreateRaster(CRasterSource* redSource, CRasterBand* redBand,
                          CRasterSource* greenSource, CRasterBand* greenBand,
                          CRasterSource* blueSource, CRasterBand* blueBand);

    /// Whether `source` is one of the three.
    bool IsPartOfRaster(CRasterSource* source) const;

  private:
    bool SetGrid(const CBoundingBox& extent, double pixelWidth, double pixelHeight);
    /// The source of the k-th shown band; null when there is none.
    CRasterSource* GetShownSource(int k) const;

    std::vector<CRasterSource*> m_components; ///< red, green, blue; borrowed
};
