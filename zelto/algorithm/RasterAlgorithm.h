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

    // Statistics of regions. Output arrays hold one double per band in band order; a null array
    // is not written. `count` is the number of pixels accepted in the last band.

    static bool ComputeStaticsFromAOI(CRasterSource* source, CRasterAOI* aoi, __int64& count,
                                      double* min, double* max, double* mean, double* covariance,
                                      bool approx, CDataProgress* progress);
    static bool ComputeStaticsFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                            __int64& count, double* min, double* max, double* mean,
                                            double* covariance, CDataProgress* progress);
    static bool ComputeStaticsFromAOI2(CRasterSource* source, CAOISource* aoi, __int64& count,
                                       double* min, double* max, double* mean, double* stddev,
                                       bool skipZero, CDataProgress* progress);
    static bool ComputeStaticsFromBox2(CRasterSource* source, CBoundingBox* box, __int64& count,
                                       double* min, double* max, double* mean, double* stddev,
                                       double* lowClip, double* highClip, bool unused,
                                       CDataProgress* progress);
    static bool ComputeBandApproxStatics(GDALRasterBand* band, __int64& count, double& min,
                                         double& max, double& mean, double& stddev, double* lowClip,
                                         double* highClip, bool unused, CDataProgress* progress);

    static bool ComputeCovarianceFromAOI(CRasterSource* source, CRasterAOI* aoi, const double* mean,
                                         double* covariance, bool approx, CDataProgress* progress);
    static bool ComputeCovarianceFromDrawshape(CRasterSource* source, CDrawShape* shape,
                                               const double* mean, double* covariance,
                                               CDataProgress* progress);
    static bool ComputeHistogramFromBox(CRasterSource* source, CBoundingBox* box, int** histograms,
                                        double* min, double* max, double* mean, double* stretchLow,
                                        double* stretchHigh, double* lowClip, double* highClip,
                                        __int64& count, bool unused, CDataProgress* progress);
    static bool ComputeBandHistogramFromBox(CRasterSource* source, int band, CBoundingBox* box,
                                            int* histogram, int binCount, double& min, double& max,
                                            double& mean, double& stretchLow, double& stretchHigh,
                                            double& lowClip, double& highClip, __int64& count,
                                            bool unused, CDataProgress* progress);

    /// Adds the typical pixels under a shape to `samples`.
    static bool GetSamplePixelFromDrawShape(CRasterSource* source, CDrawShape* shape,
                                            CImgSamplePixels* samples);

    static GISError RasterPolygonize(CRasterBand* source, CRasterBand* mask, CVectorLayer* layer,
                                     int fieldIndex, char** options, CDataProgress* progress,
                                     std::wstring title);
    static bool SavePolygonNet(const wchar_t* path, std::vector<OGRGeometry*> polygons,
                               std::vector<std::wstring> names);
    static bool SaveGemetryFromTxt(std::string path);
    /// @return a new geometry owned by the caller, or null
    static OGRGeometry* IntersectionPro(OGRGeometry* a, OGRGeometry* b);

  private:
    static bool ComputeStaticsFormAOIByBlock(CRasterSource* source, CRasterAOI* aoi, __int64& count,
                                             double* min, double* max, double* mean,
                                             CDataProgress* progress);
    static bool ComputeCovarianceFromAOIByBlock(CRasterSource* source, const double** rows,
                                                CRect* block, CRasterAOI* aoi, const double* mean,
                                                double* covariance, __int64& count, double step,
                                                CDataProgress* progress);
};
