#include "zelto/raster/RasterBand.h"

#include "tests/fuzz/InterfaceScene.h"

namespace zelto::fuzz {

namespace {

PixelDataType ReadType(InputBytes& bytes) {
    return static_cast<PixelDataType>(bytes.Below(8));
}

void Open(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.SetForDisplay(bytes.Byte() != 7);
    source.Open(RasterPath(bytes).c_str(), GIS_READONLY, bytes.Flag());
}

void OpenSimple(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.OpenSimple(RasterPath(bytes).c_str(), GIS_READONLY, bytes.Flag());
}

void OpenWarped(Scene& scene, InputBytes& bytes) {
    constexpr const char* TARGETS[] = {"EPSG:4326", "EPSG:3857", "nonsense", "", nullptr};
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.OpenAndWarped(RasterPath(bytes).c_str(), GIS_READONLY, TARGETS[bytes.Below(5)]);
}

void OpenSeveral(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    CDatasetOpenInfo info(RasterPath(bytes).c_str(), GIS_READONLY);
    info.m_mergeBands = bytes.Flag();
    for (int i = bytes.Below(3); i > 0; --i)
        info.AddSubFileNames(RasterPath(bytes).c_str());
    source.Open(info);
}

void OpenAsDataset(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.OpenAsDataset(RasterPath(bytes).c_str(), GIS_READONLY);
}

void Reopen(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.Reopen(GIS_READONLY, bytes.Flag());
}

void Close(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.Close();
}

void OpenNull(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    source.Open(static_cast<const wchar_t*>(nullptr), GIS_READONLY, true);
}

void OpenScratch(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    for (CRasterSource& open : scene.sources)
        open.Close();
    source.SetForDisplay(true);
    source.Open(ScratchRasterPath().c_str(), GIS_UPDATE, true);
}

void Compose(Scene& scene, InputBytes& bytes) {
    CRasterSource* sources[3];
    CRasterBand* bands[3];
    for (int i = 0; i < 3; ++i) {
        sources[i] = &scene.Source(bytes);
        bands[i] = sources[i]->GetRasterBand(bytes.Below(4));
    }
    scene.composed.CreateRaster(sources[0], bands[0], sources[1], bands[1], sources[2], bands[2]);
}

void CopySettings(Scene& scene, InputBytes& bytes) {
    CRasterSource& from = scene.Raster(bytes);
    scene.Raster(bytes).CopyDisplaySetting(bytes.Byte() == 9 ? nullptr : &from);
}

void ReadPixel(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Raster(bytes);
    // Eight bytes a band: the widest of the slots.
    std::vector<double> values(static_cast<std::size_t>(std::max(source.GetBandCount(), 4)));
    const int column = bytes.Count();
    const int row = bytes.Count();
    source.GetPixel(values.data(), column, row, ReadType(bytes));
}

void WritePixel(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    std::vector<double> values(static_cast<std::size_t>(std::max(source.GetBandCount(), 4)), 3.5);
    const int column = bytes.Count();
    source.SetPixel(values.data(), column, bytes.Count());
}

void ConvertPositions(Scene& scene, InputBytes& bytes) {
    const CRasterSource& source = scene.Raster(bytes);
    const double x = bytes.Number();
    const double y = bytes.Number();
    int column = 0;
    int row = 0;
    double ground[2];
    source.GroundToImage(x, y, column, row);
    source.ImageToGround(column, row, ground[0], ground[1]);
    source.GroundToImage(x, y, ground[0], ground[1]);
    auto box = ReadBox(bytes, source);
    CRect rect = source.GroundToImage(PointerTo(box));
    source.ImageToGround(&rect);
}

void SetGeoTransform(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    scene.ForgetSources();
    std::vector<double> terms = bytes.Numbers(6);
    source.SetGeoTransform(terms.data(), bytes.Flag());
}

void SetNoData(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Source(bytes);
    if (bytes.Flag())
        source.SetAllBandNoDataValue(bytes.Number(), bytes.Flag());
    else
        source.ClearAllBandNoDataValue(bytes.Flag());
}

void CompareReferences(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Raster(bytes);
    source.IsSameSpatialReference(bytes.Byte() == 3 ? nullptr : &scene.Raster(bytes));
    CRasterSource::IsSameSpatialReference(&source, &scene.Raster(bytes), bytes.Flag());
}

void AskNames(Scene& scene, InputBytes& bytes) {
    CRasterSource& source = scene.Raster(bytes);
    source.InitCoordinateName();
    source.GetCoordinateName();
    source.GetDatumName();
    source.GetUnitName(bytes.Flag());
    source.GetGCPCount(bytes.Flag());
    source.IsOverviewsValid();
    source.GetSubRaster(bytes.Count());
    source.GetRasterBand(bytes.Count());
    double terms[6];
    source.GetGeoTransform(terms, bytes.Flag());
}

void BuildPyramid(Scene& scene, InputBytes& bytes) {
    constexpr const char* METHODS[] = {"NEAREST", "AVERAGE", "nonsense"};
    CRasterSource& source = scene.Source(bytes);
    // Beside the rasters that inputs share nothing is made.
    if (source.GetAccess() != GIS_UPDATE || !source.IsOpened())
        return;
    scene.ForgetSources();
    int bands[] = {1 + bytes.Below(4), 2};
    source.BuildOverviews(METHODS[bytes.Below(3)], bytes.Below(3), bands, nullptr);
}

} // namespace

std::span<const Operation> SourceOperations() {
    static constexpr Operation OPERATIONS[] = {
        Open,         OpenSimple,       OpenWarped,  OpenSeveral,     OpenAsDataset,     Reopen,
        Close,        OpenNull,         OpenScratch, Compose,         CopySettings,      ReadPixel,
        WritePixel,   ConvertPositions, SetNoData,   SetGeoTransform, CompareReferences, AskNames,
        BuildPyramid,
    };
    return OPERATIONS;
}

} // namespace zelto::fuzz
