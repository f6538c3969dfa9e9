#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/DataProgress.h"
#include "zelto/datasource/Enumerations.h"
#include "zelto/geometry/PlatformTypes.h"

#include <string>
#include <vector>

class CAOISource;
class CBoundingBox;
class CDrawShape;
class CImgSamplePixels;
class CRasterAOI;
class CRasterBand;
class CRasterSource;
class CVectorLayer;
class GDALRasterBand;
class OGRGeometry;

/// Static operations on rasters: properties of pixel types, colour adjustment of display
/// buffers, statistics, covariance and histograms of regions, training samples, polygons from
/// pixels. It has no state and no instances.
class ZELTO_API CRasterAlgorithm {
  public:
    // Pixel types. The tables are part of the interface, including the values that differ from
    // the natural ones: Int16 counts 4 bytes and Int32 8, the signed maxima are 2^15 and 2^31.

    /// Value range of a pixel type; 255 and 0 for an unknown one.
    static void GetMaxMinVal(PixelDataType type, double& max, double& min);
    /// Bytes a sample of the type counts for; 0 for an unknown one.
    static int ComputeDataTypeByteNum(PixelDataType type);
    /// "Byte", "UInt16", … "Float64"; "Unknown" for every other value.
    static std::wstring DataTypeToWstring(PixelDataType type);

    // Colour. Interleaved buffers hold w × h pixels of blue, green, red, alpha; the alpha byte
    // is never touched. Planes are w × h bytes each, in the order red, green, blue. Null
    // buffers and sizes below 1 leave everything as it is.

    /// Intensity, hue (radians) and saturation of a colour:
    /// i = (r + g + b) / √3, with x = (r − g) / √2 and y = (r + g − 2b) / √6 the angle and the
    /// length of (x, y) in the chromatic plane.
    static void RGBtoIHS(double r, double g, double b, double& i, double& h, double& s);
    /// The colour of (i, h, s), each channel clamped to 0 … 255.
    static void IHStoRGB(double i, double h, double s, double& r, double& g, double& b);

    /// Shifts hue, intensity and saturation in place. Settings of 0 leave the pixel as it is but
    /// for the truncation of the round trip.
    static void AdjustHIS(unsigned char* interleaved, int w, int h, float hue, float intensity,
                          float saturation);
    static void AdjustHIS(double* r, double* g, double* b, int w, int h, float hue, float intensity,
                          float saturation);
    static void AdjustHIS(unsigned char** planes, int w, int h, float hue, float intensity,
                          float saturation);

    /// v + (v − 128) × contrast, clamped to 0 … 255 and truncated, for every colour channel.
    static void AdjustContrast(double* r, double* g, double* b, int w, int h, float contrast);
    static void AdjustContrast(unsigned char* interleaved, int w, int h, float contrast);
    static void AdjustContrast(unsigned char** planes, int w, int h, float contrast,
                               int planeCount);

    /// One table of intensity and contrast applied to the colour bytes of an interleaved
    /// buffer; the intensity comes before the contrast when the contrast is positive.
    static void AdjustIntensityAndContrast(unsigned char* interleaved, int w, int h,
                                           float intensity, float contrast);

    // Inks: cyan, magenta, yellow and black as shares 0 … 1, colours as 0 … 255; values outside
    // are limited. All the grey that the three inks have in common is printed as black. From a
    // colour to inks and back is exact but for rounding; several inks give the same colour, so
    // the other way round only the colour is kept.

    /// k = 1 − max / 255, and each ink's share of the rest; black has no coloured ink.
    static void RGB2Cmyk(double r, double g, double b, double& c, double& m, double& y, double& k);
    /// 255 × (1 − ink) × (1 − k) for each channel.
    static void Cmyk2RGB(double c, double m, double y, double k, double& r, double& g, double& b);
    /// The inks of the colour that IHStoRGB() gives.
    static void IHS2Cmyk(double i, double h, double s, double& c, double& m, double& y, double& k);
    /// RGBtoIHS() of the inks' colour.
    static void Cmyk2IHS(double c, double m, double y, double k, double& i, double& h, double& s);

    // Statistics of regions.
    //
    // An operation answers false, and CGISDataSource::GetLastErrorText() tells why, for a raster
    // that is null or that counts bands it does not have, because it was closed or could not be
    // opened again, and when memory runs out. No exception is let out.
    //
    // Output arrays hold one double per band in band order, belong to the caller and may each be
    // null, which is then not written. `count` is the number of pixels accepted in the last
    // band, not a total. Reports for people are better served by CRegionStatistics: the
    // operations here keep every rule that hosts have come to rely on.
    //
    // Rules shared by name:
    // - No-data: a value within 1e-8 of the band's no-data value is left out. NaN is a value.
    // - Range: the first accepted value sets minimum and maximum, also when it is NaN; a band
    //   that accepts none shows the range of the band before it, the first one 0, 0. Seeded
    //   operations start each band from 1.7976931348623157e308 and 2.2250738585072014e-308
    //   instead, the smallest positive number and not the most negative: a region of negative
    //   values only keeps that as its maximum.
    // - Grid: a region is read in one raster read of its window, where it is large into fewer
    //   samples (GDAL decimates), of which sample (i, j) stands for the image position
    //   (i · step + left, j · step + top), a pixel corner. Each operation has its own budget.
    // - After every band its GDAL block cache is flushed. A band that cannot be read accepts
    //   nothing, unless said otherwise.
    // - Means are sums in pixel order over counts. Standard deviations are those of the
    //   population, sqrt(sum of squares / n − mean²). With a mean much larger than the
    //   deviation this form loses digits: rounding puts the variance off by up to
    //   n · 1.1e-16 · mean², as a rule by the √n-th part of that. For the 2^24 samples of a
    //   budget, deviations below about a millionth of the mean are noise, and NaN where the
    //   difference comes out negative.

    /// Statistics of the pixels of a raster AOI, or of the whole raster.
    ///
    /// With an area the window is its rectangle without the last column and row; pixels in the
    /// rectangle and in one of its shapes count. Windows of more than 16,777,216 pixels
    /// (counted in 32 bits) are, with `approx`, decimated to about 2^24 / bands samples, and
    /// without it walked in blocks of rows whose rule is peculiar: the blocks are read from the
    /// raster's left edge and top on, and every pixel of block k takes the first sample of row k
    /// of that block (of the block before, where the last block is too short; a block whose
    /// number exceeds its rows accepts nothing). A window that reaches beyond the raster cannot
    /// be read: count 0.
    ///
    /// Without an area (null): the bands' stored statistics with `approx`, else GDAL's exact
    /// ones, with progress when the mean is asked and stored in the band when only the range
    /// is. `count` is then width × height, no-data included.
    ///
    /// @param covariance bands × bands, by ComputeCovarianceFromAOI() around `mean`; may be null
    /// @return with `covariance`, its result. Without: for an area false even when all outputs
    ///         are written (take the outputs, not the answer), but true after walking blocks;
    ///         for the whole raster whether the last band succeeded. False at once, outputs
    ///         untouched, for a null source, an area without pixels and without memory.
    static bool ComputeStaticsFromAOI(CRasterSource* source, CRasterAOI* aoi, __int64& count,
                                      double* min, double* max, double* mean, double* covariance,
                                      bool approx, CDataProgress* progress);

    /// Statistics of the pixels whose corner (not truncated, as a ground point) lies in a shape.
    /// The shape is clipped to the raster; more than 16,777,216 pixels are decimated to about
    /// 2^24 samples per band, however many bands there are.
    /// @param shape null: the stored statistics of the whole raster
    /// @param covariance bands × bands, by ComputeCovarianceFromDrawshape(); may be null
    /// @return with `covariance`, its result, else true, also for a count of 0; false for a null
    ///         source, a shape off the raster, an empty window and without memory
    static bool ComputeStaticsFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                            __int64& count, double* min, double* max, double* mean,
                                            double* covariance, CDataProgress* progress);

    /// Seeded statistics of the ground points of an area of interest, read as 32-bit floats. The
    /// window is always brought to about 2^24 / bands samples, so that small areas are enlarged
    /// and `count` is that of samples. The first band decides where the area is: what lies
    /// outside or is no-data there is out for the later bands too. A band that accepts nothing
    /// gets zeros and ends the work; later bands are untouched.
    /// @param skipZero leave out exact zeros instead of what lies outside the shapes
    /// @return false for null arguments, an area off the raster, a window without samples and
    ///         without memory
    static bool ComputeStaticsFromAOI2(CRasterSource* source, CAOISource* aoi, __int64& count,
                                       double* min, double* max, double* mean, double* stddev,
                                       bool skipZero, CDataProgress* progress);

    /// The same over a box, all of whose samples are in the region, without exact zeros and
    /// without values beyond the clips.
    /// @param lowClip,highClip per band, the least and greatest value that counts; may be null
    /// @param unused,progress ignored
    static bool ComputeStaticsFromBox2(CRasterSource* source, CBoundingBox* box, __int64& count,
                                       double* min, double* max, double* mean, double* stddev,
                                       double* lowClip, double* highClip, bool unused,
                                       CDataProgress* progress);

    /// Seeded statistics of a whole band, read as 32-bit floats; above 2^20 pixels the longer
    /// side is decimated to 1024 samples. Exact zeros and values beyond the clips are left out,
    /// and what GDAL reports as no-data value, also for a band that has none.
    /// @param lowClip,highClip least and greatest value that counts; may be null
    /// @param unused,progress ignored
    /// @return false for a null band, fewer than two samples, without memory, on a read error
    ///         (count 0, the range at its seeds), and with all outputs 0 when nothing counts
    static bool ComputeBandApproxStatics(GDALRasterBand* band, __int64& count, double& min,
                                         double& max, double& mean, double& stddev, double* lowClip,
                                         double* highClip, bool unused, CDataProgress* progress);

    // Covariance: the mean product of the deviations from the caller's means, in the population
    // form, over the pixels that the statistics of the same region accept; a pixel that is
    // no-data in one band is out for all. The matrix is bands × bands, row by row, symmetric; all
    // 0 without pixels. Progress is not reported.

    /// Covariance of a raster AOI. The bands share the budget of 2^24 samples: beyond it the
    /// area is read in blocks of rows at their own place or, with `approx`, decimated.
    /// @param aoi null: the whole raster
    /// @param mean one per band; null: all 0
    /// @return false for a null source or matrix, an area without pixels or wholly off the
    ///         raster, without memory, and when a band cannot be read (the matrix then holds
    ///         what was read)
    static bool ComputeCovarianceFromAOI(CRasterSource* source, CRasterAOI* aoi, const double* mean,
                                         double* covariance, bool approx, CDataProgress* progress);
    /// Covariance of a shape, with the window and the grid of ComputeStaticsFromDrawshape().
    /// @param shape null: the whole raster, decimated where it is large
    static bool ComputeCovarianceFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                               const double* mean, double* covariance,
                                               CDataProgress* progress);

    // Histograms of a box. Boxes of more than 5,000,000 pixels (counted in 32 bits) are brought
    // to about 2^24 / bands samples, which enlarges those below that. The statistics are seeded
    // and leave out exact zeros, no-data and what is beyond the clips; the mean of nothing is
    // not a number. The bins then take all samples, also those left out: bin
    // trunc((v − min) / (max − min) · 255 + 0.5), of which only 1 … 254 are counted. The end bins
    // stay 0: they would hold the background and the saturated pixels. A band of a single value
    // counts nothing.

    /// Histograms of all bands.
    /// @param histograms one array of 256 counts per band; null ones are left out
    /// @param min,max,mean per band, may be null
    /// @param stretchLow,stretchHigh per band, set to 0 and 255; may be null
    /// @param lowClip,highClip input, per band; null: no limit
    /// @param count values in the last band's statistics
    /// @param unused,progress ignored
    /// @return false for null source, box or list, a box off the raster or of fewer than two
    ///         samples, and without memory. Of a band that cannot be read the histogram is
    ///         zeroed, its other outputs stay, and the work goes on.
    static bool ComputeHistogramFromBox(CRasterSource* source, CBoundingBox* box, int** histograms,
                                        double* min, double* max, double* mean, double* stretchLow,
                                        double* stretchHigh, double* lowClip, double* highClip,
                                        __int64& count, bool unused, CDataProgress* progress);
    /// Histogram of one band, counted from 0.
    /// @param histogram `binCount` counts; bins beyond are not counted
    /// @return as ComputeHistogramFromBox(); true with count 0 for a band that the raster does
    ///         not have or that cannot be read, its other outputs untouched
    static bool ComputeBandHistogramFromBox(CRasterSource* source, int band, CBoundingBox* box,
                                            int* histogram, int binCount, double& min, double& max,
                                            double& mean, double& stretchLow, double& stretchHigh,
                                            double& lowClip, double& highClip, __int64& count,
                                            bool unused, CDataProgress* progress);

    /// Adds the typical pixels under a shape to `samples`: those whose corner lies in the shape
    /// and whose value in every band is at most two (population) deviations from the band's mean
    /// in the shape, no-data pixels included in both. No-data values are then left out by one
    /// rule for all bands, that of the last band. Window and grid are those of
    /// ComputeStaticsFromDrawshape(); every band is held in memory.
    /// @return false for null arguments, a shape off the raster, an empty window, without memory
    ///         and when a band cannot be read; true also when nothing was added
    static bool GetSamplePixelFromDrawShape(CRasterSource* source, CDrawShape* shape,
                                            CImgSamplePixels* samples);

    /// Makes a polygon of every area of equal values, by GDAL.
    /// @param mask pixels of 0 make no polygons; null: none is masked
    /// @param layer receives the polygons, appended
    /// @param fieldIndex field of the layer that receives the value; −1: none
    /// @param options GDAL's, such as "8CONNECTED=8"; may be null
    /// @param title of the progress; empty: "栅格矢量化"
    static GISError RasterPolygonize(CRasterBand* source, CRasterBand* mask, CVectorLayer* layer,
                                     int fieldIndex, char** options, CDataProgress* progress,
                                     std::wstring title);
    /// Writes polygons to a new shapefile, layer "polygon" without a reference system, with each
    /// one's name in the text fields "Image" and "IMAGE_NAME". A shapefile at the path is
    /// replaced once the new one is complete; vector data under another name stays, which is a
    /// failure. A geometry that a shapefile cannot hold beside those before it is left out.
    /// @param polygons not owned; null ones are skipped and their names with them
    /// @param names by the index of the polygon; missing ones are empty
    /// @return false when the file or its layer cannot be made or a polygon cannot be written
    static bool SavePolygonNet(const wchar_t* path, std::vector<OGRGeometry*> polygons,
                               std::vector<std::wstring> names);
    /// Reads polygons from a text file and writes them by SavePolygonNet() beside it, with the
    /// extension ".shp". The text holds, parted by white space, per polygon a name, x and y of
    /// each vertex in turn (point decimals, whatever the locale), and the word "end". A polygon
    /// without its "end" and an x without its y are dropped.
    /// @param path UTF-8
    /// @return false when the text is no regular file or cannot be read, or the shapefile not
    ///         made; CGISDataSource::GetLastErrorText() tells which of the text
    static bool SaveGemetryFromTxt(std::string path);
    /// Intersection of a polygon, or of the merged members of a multi-polygon, with `b`.
    /// @return a new geometry owned by the caller; null for null arguments, any other type of
    ///         `a`, and where GDAL finds no answer
    static OGRGeometry* IntersectionPro(OGRGeometry* a, OGRGeometry* b);

  private:
    /// The block rule of ComputeStaticsFromAOI().
    /// @return false without memory and when a block cannot be read
    static bool ComputeStaticsFormAOIByBlock(CRasterSource* source, CRasterAOI* aoi, __int64& count,
                                             double* min, double* max, double* mean,
                                             CDataProgress* progress);
    /// Adds the products of a block's accepted samples to the lower triangle of `covariance`, and
    /// their number to `count`.
    /// @param rows per band, the block's packed samples
    /// @param block left and top: image position of the first sample; its size is that of the
    ///        samples
    /// @param step image positions from sample to sample
    static bool ComputeCovarianceFromAOIByBlock(CRasterSource* source, const double** rows,
                                                CRect* block, CRasterAOI* aoi, const double* mean,
                                                double* covariance, __int64& count, double step,
                                                CDataProgress* progress);
};
