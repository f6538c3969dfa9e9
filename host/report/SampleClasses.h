#pragma once

#include "zelto/algorithm/ImgSamplePixels.h"
#include "zelto/aoi/DrawShape.h"
#include "zelto/classify/ClassifySampleFile.h"
#include "zelto/raster/RasterSource.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace zelto::host {

/// A class of a supervised classification: its shapes and the pixels found under them.
struct SampleClass {
    double label = 0.0;
    std::string name;
    std::vector<std::unique_ptr<CDrawShape>> shapes;
    CImgSamplePixels pixels{0.0};
    int shapesOffImage = 0; ///< how many of them hold no pixel, as CollectPixels() finds
};

using SampleClasses = std::deque<SampleClass>;

/// What makes classes of an area's shapes.
struct LabelOptions {
    std::string labels; ///< per shape in list order, or one for all; empty: 1, 2, 3 …
    std::string names;  ///< per class in the order they come up; empty: "class 1" …
    std::string field;  ///< attribute of a vector file that tells the class; empty: none
};

/// The classes of an area of interest in the raster's reference system. Throws Failure and
/// UsageError.
SampleClasses MakeClasses(const std::string& aoi, const LabelOptions& options,
                          const CRasterSource& raster);

/// The classes a sample file holds, with the shapes its samples came from.
SampleClasses ClassesOf(const CClassifySampleFile& file);

/// Fills the classes' pixels by the engine's own rule. Throws Failure when bands cannot be read.
void CollectPixels(SampleClasses& classes, CRasterSource& raster, const std::string& path);

/// Numbers over the pixels of a class, one per band.
struct SampleStatistics {
    std::vector<double> mean;
    std::vector<double> minimum;
    std::vector<double> maximum;
    std::vector<double> covariance; ///< bands × bands, population form
};
/// All 0 for a class without pixels.
SampleStatistics StatisticsOf(const CImgSamplePixels& pixels, int bandCount);

/// A class record as `zelto samples` writes it: values label, number of pixels and 0; arrays
/// mean, minimum and maximum; the covariance as the matrix.
CClassifySampleFile::ClassRecord MakeRecord(const SampleClass& sampleClass, int bandCount);

} // namespace zelto::host
