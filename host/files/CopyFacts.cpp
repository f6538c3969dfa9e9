#include "host/files/CopyFacts.h"

#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "host/files/Strips.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <cstdlib>

namespace zelto::host {

namespace {

/// Notes what a format refuses.
class Refusals {
  public:
    void Note(bool kept, const char* what) {
        if (!kept && std::find(m_what.begin(), m_what.end(), what) == m_what.end())
            m_what.emplace_back(what);
    }
    const std::vector<std::string>& What() const { return m_what; }

  private:
    std::vector<std::string> m_what;
};

GDALRasterBand& BandOf(CRasterSource& source, int index) {
    return *source.GetRasterBand(index)->GetGDALBand();
}

/// Whether a value survives as a sample of a type.
bool Fits(double value, PixelDataType type) {
    std::array<double, 2> sample = {};
    double back = 0.0;
    GDALCopyWords(&value, GDT_Float64, 0, sample.data(), static_cast<GDALDataType>(type), 0, 1);
    GDALCopyWords(sample.data(), static_cast<GDALDataType>(type), 0, &back, GDT_Float64, 0, 1);
    return back == value || (value != value && back != back);
}

/// Metadata without what is only true of the whole image.
CPLStringList Lasting(CSLConstList metadata) {
    CPLStringList kept;
    for (CSLConstList item = metadata; item != nullptr && *item != nullptr; ++item)
        if (!STARTS_WITH_CI(*item, "STATISTICS_"))
            kept.AddString(*item);
    return kept;
}

void CopyControlPoints(GDALDataset& from, const CopySelection& selection, GDALDataset& to,
                       Refusals& refusals) {
    const int count = from.GetGCPCount();
    if (count == 0)
        return;
    GDAL_GCP* points = GDALDuplicateGCPs(count, from.GetGCPs());
    for (int i = 0; i < count; ++i) {
        points[i].dfGCPPixel -= selection.window.left;
        points[i].dfGCPLine -= selection.window.top;
    }
    refusals.Note(to.SetGCPs(count, points, from.GetGCPSpatialRef()) == CE_None, "control points");
    GDALDeinitGCPs(count, points);
    CPLFree(points);
}

/// Rational polynomials count pixels from the image's corner.
void CopyRationalPolynomials(GDALDataset& from, const CopySelection& selection, GDALDataset& to,
                             Refusals& refusals) {
    CPLStringList terms(CSLDuplicate(from.GetMetadata("RPC")));
    if (terms.Count() == 0)
        return;
    for (const auto& [name, moved] : {std::pair("LINE_OFF", selection.window.top),
                                      std::pair("SAMP_OFF", selection.window.left)})
        if (const char* const offset = terms.FetchNameValue(name); offset != nullptr && moved != 0)
            terms.SetNameValue(name, CPLSPrintf("%.15g", CPLAtof(offset) - moved));
    refusals.Note(to.SetMetadata(terms.List(), "RPC") == CE_None, "rational polynomials");
}

void CopyNoDataAndColors(GDALRasterBand& from, CRasterBand& to, const CopySelection& selection,
                         Refusals& refusals) {
    int has = FALSE;
    const double noData = from.GetNoDataValue(&has);
    if (has != FALSE && Fits(noData, selection.type))
        refusals.Note(to.SetNoDataValue(noData, true), "no-data values");
    // A table explains the values of one band; several bands are colours themselves.
    if (from.GetColorTable() != nullptr && selection.bands.size() == 1)
        refusals.Note(to.SetColorTable(from.GetColorTable()) == GIS_SUCCESS, "a colour table");
}

void CopyWords(GDALRasterBand& from, GDALRasterBand& to, Refusals& refusals) {
    if (*from.GetDescription() != '\0')
        to.SetDescription(from.GetDescription());
    if (from.GetUnitType() != nullptr && *from.GetUnitType() != '\0')
        refusals.Note(to.SetUnitType(from.GetUnitType()) == CE_None, "units");
    if (char** const names = from.GetCategoryNames())
        refusals.Note(to.SetCategoryNames(names) == CE_None, "names of categories");
    CPLStringList metadata = Lasting(from.GetMetadata());
    if (metadata.Count() > 0)
        refusals.Note(to.SetMetadata(metadata.List()) == CE_None, "metadata of bands");
}

void CopyScale(GDALRasterBand& from, GDALRasterBand& to, Refusals& refusals) {
    int has = FALSE;
    const double scale = from.GetScale(&has);
    if (has != FALSE && scale != 1.0)
        refusals.Note(to.SetScale(scale) == CE_None, "scales");
    const double offset = from.GetOffset(&has);
    if (has != FALSE && offset != 0.0)
        refusals.Note(to.SetOffset(offset) == CE_None, "offsets");
}

void CopyMeaning(GDALRasterBand& from, GDALRasterBand& to, Refusals& refusals) {
    const GDALColorInterp meaning = from.GetColorInterpretation();
    if (meaning != to.GetColorInterpretation() && meaning != GCI_PaletteIndex)
        refusals.Note(to.SetColorInterpretation(meaning) == CE_None, "the meaning of bands");
}

bool IsGiven(const std::vector<std::string>& options, const std::string& key) {
    return std::any_of(options.begin(), options.end(), [&](const std::string& option) {
        return EQUALN(option.c_str(), (key + "=").c_str(), key.size() + 1);
    });
}

} // namespace

std::vector<std::string> ColorOptions(const CRasterSource& source, const CopySelection& selection,
                                      const std::vector<std::string>& given) {
    std::vector<std::string> options = given;
    if (IsGiven(given, "PHOTOMETRIC"))
        return options;
    const auto meaning = [&](std::size_t i) {
        return i < selection.bands.size() ? source.GetRasterBand(selection.bands[i])
                                                ->GetGDALBand()
                                                ->GetColorInterpretation()
                                          : GCI_Undefined;
    };
    const bool isColor =
        meaning(0) == GCI_RedBand && meaning(1) == GCI_GreenBand && meaning(2) == GCI_BlueBand;
    if (selection.bands.size() > 1)
        options.emplace_back(isColor ? "PHOTOMETRIC=RGB" : "PHOTOMETRIC=MINISBLACK");
    const std::size_t extra = isColor ? 3 : 1;
    if (extra < selection.bands.size() && !IsGiven(given, "ALPHA"))
        options.emplace_back(meaning(extra) == GCI_AlphaBand ? "ALPHA=YES" : "ALPHA=NO");
    return options;
}

std::vector<std::string> CopyFacts(CRasterSource& source, const CopySelection& selection,
                                   CRasterSource& made) {
    GDALDataset& from = *source.GetGDALDataset();
    GDALDataset& to = *made.GetGDALDataset();
    // What a format refuses is told in one line, not in GDAL's.
    const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
    Refusals refusals;
    CopyControlPoints(from, selection, to, refusals);
    CopyRationalPolynomials(from, selection, to, refusals);
    CPLStringList metadata = Lasting(from.GetMetadata());
    if (metadata.Count() > 0)
        refusals.Note(to.SetMetadata(metadata.List()) == CE_None, "metadata");
    for (std::size_t i = 0; i < selection.bands.size(); ++i) {
        GDALRasterBand& band = BandOf(source, selection.bands[i]);
        const int number = static_cast<int>(i);
        CopyNoDataAndColors(band, *made.GetRasterBand(number), selection, refusals);
        CopyMeaning(band, BandOf(made, number), refusals);
        CopyWords(band, BandOf(made, number), refusals);
        CopyScale(band, BandOf(made, number), refusals);
    }
    return refusals.What();
}

bool CopyMask(CRasterSource& source, const CopySelection& selection, CRasterSource& made,
              const std::string& from, const std::string& to) {
    GDALRasterBand& first = BandOf(source, selection.bands.front());
    if (first.GetMaskFlags() != GMF_PER_DATASET)
        return true;
    {
        const CPLErrorHandlerPusher quiet(CPLQuietErrorHandler);
        if (made.GetGDALDataset()->CreateMaskBand(GMF_PER_DATASET) != CE_None)
            return false;
    }
    GDALRasterBand& mask = *first.GetMaskBand();
    GDALRasterBand& copy = *BandOf(made, 0).GetMaskBand();
    const int width = selection.Width();
    RowRange rows;
    rows.first = selection.window.top;
    rows.count = selection.Height();
    rows.bytesPerRow = static_cast<std::size_t>(width);
    std::vector<unsigned char> samples;
    ForEachStrip(rows, L"copying the mask", to, [&](int row, int count) {
        samples.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(count));
        ForgetReasons();
        if (mask.RasterIO(GF_Read, selection.window.left, row, width, count, samples.data(), width,
                          count, GDT_Byte, 0, 0, nullptr) != CE_None)
            throw Failure(from, LastReason("its mask cannot be read"));
        if (copy.RasterIO(GF_Write, 0, row - selection.window.top, width, count, samples.data(),
                          width, count, GDT_Byte, 0, 0, nullptr) != CE_None)
            throw Failure(to, LastReason("its mask cannot be written"));
    });
    return true;
}

} // namespace zelto::host
