#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/baselib/ColorRamp.h"
#include "zelto/raster/RasterBand.h"

#include "tests/fuzz/InterfaceScene.h"

#include <algorithm>

namespace zelto::fuzz {

namespace {

/// Planes of exactly the size that the engine may write.
class Planes {
  public:
    Planes(int count, std::size_t pixels) {
        for (int i = 0; i < count; ++i) {
            m_planes.push_back(std::make_unique<unsigned char[]>(pixels));
            m_pointers.push_back(m_planes.back().get());
        }
    }
    unsigned char** Pointers() { return m_pointers.data(); }

  private:
    std::vector<std::unique_ptr<unsigned char[]>> m_planes;
    std::vector<unsigned char*> m_pointers;
};

void DrawInterleaved(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    auto box = ReadBox(bytes, raster);
    const PictureSize size = ReadSize(bytes);
    const auto picture = std::make_unique<unsigned char[]>(size.Pixels() * 4);
    unsigned char* out = bytes.Byte() == 5 ? nullptr : picture.get();
    if (bytes.Flag())
        raster.GetShowData(PointerTo(box), size.width, size.height, out, bytes.Flag());
    else
        raster.GetShowDataWithoutCache(PointerTo(box), size.width, size.height, out, bytes.Flag());
}

void DrawPlanes(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    auto box = ReadBox(bytes, raster);
    const PictureSize size = ReadSize(bytes);
    const int count = bytes.Below(6) - 1;
    Planes planes(count, size.Pixels());
    CRasterAOI* region = bytes.Flag() ? scene.region.get() : nullptr;
    unsigned char** pointers = bytes.Byte() == 5 ? nullptr : planes.Pointers();
    if (bytes.Flag())
        raster.GetShowData(PointerTo(box), size.width, size.height, count, pointers, region, true);
    else
        raster.GetShowDataGray(PointerTo(box), size.width, size.height, count, pointers, region,
                               true);
}

void FillCache(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Source(bytes);
    auto box = ReadBox(bytes, raster);
    const PictureSize size = ReadSize(bytes);
    raster.GetShowData2Cache(PointerTo(box), size.width, size.height);
}

void AskShownColor(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Source(bytes);
    const CPoint2D corner = raster.GetExtent().TopLeft();
    unsigned char color[4];
    raster.GetShowValueFormCache(corner.x + bytes.Number(), corner.y - bytes.Number(), color[0],
                                 color[1], color[2], color[3]);
}

void ReleaseCache(Scene& scene, InputBytes& bytes) {
    scene.Raster(bytes).ReleaseShowDataCache();
}

void SetStretch(Scene& scene, InputBytes& bytes) {
    scene.Raster(bytes).SetStretchType(static_cast<StretchType>(bytes.Below(12)));
}

void Equalize(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    if (bytes.Flag())
        raster.EnableHistogramEqualize();
    else
        raster.AllBandHistogramEqualize();
}

void UseWallis(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    raster.SetStretchType(StretchWallis);
    raster.ReadWallisColorModel(bytes.Count());
}

void SetThreshold(Scene& scene, InputBytes& bytes) {
    scene.Raster(bytes).SetAutoLevelThresold(bytes.Number());
}

void SetAdjustments(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    for (float* setting : {&raster.m_hue, &raster.m_intensity, &raster.m_saturation,
                           &raster.m_contrast, &raster.m_transparency}) {
        constexpr double WIDEST = 1e30;
        *setting = static_cast<float>(std::clamp(bytes.Number() / 40.0, -WIDEST, WIDEST));
    }
}

void SetShownBands(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    int indices[4];
    for (int& index : indices)
        index = bytes.Byte() % 8 == 7 ? bytes.Count() : bytes.Below(4);
    raster.SetShowBandNum(bytes.Below(6) - 1, bytes.Byte() == 5 ? nullptr : indices);
    raster.SetShowStretchNum(bytes.Count());
}

void SetColorBand(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    const int index = bytes.Count();
    switch (bytes.Below(3)) {
    case 0:
        raster.SetRedBandNum(index);
        break;
    case 1:
        raster.SetGreenBandNum(index);
        break;
    default:
        raster.SetBlueBandNum(index);
    }
    raster.GetRedBandNum();
}

void SetDisplayKind(Scene& scene, InputBytes& bytes) {
    scene.Raster(bytes).SetDisplayType(static_cast<DataDisplayType>(bytes.Below(4)));
}

void SetRamp(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    CColorRamp ramp({{bytes.Byte(), 0, 0, 255}, {0, bytes.Byte(), 9, 255}});
    CColorRamp* own = raster.GetColorRamp();
    raster.SetColorRamp(bytes.Flag() ? &ramp : own);
}

void SetClasses(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    CClassifyDisplayTable table;
    for (int i = bytes.Below(5); i > 0; --i) {
        const double low = bytes.Number();
        table.AddClassifyItem({{bytes.Byte(), 2, 3, 255}, low, bytes.Number(), L"class"});
    }
    CClassifyDisplayTable* own = raster.GetClassifyDisplayTable();
    raster.SetClassifyDisplayTable(bytes.Flag() ? &table : own);
}

void AdjustPicture(Scene& scene, InputBytes& bytes) {
    CRasterSource& raster = scene.Raster(bytes);
    const PictureSize size = ReadSize(bytes);
    const auto picture = std::make_unique<unsigned char[]>(size.Pixels() * 4);
    raster.ApplyShowDataHISC(size.width, size.height, picture.get());
    std::vector<double> planes[3];
    for (auto& plane : planes)
        plane.assign(size.Pixels(), bytes.Number());
    raster.ApplyShowDataHISC(planes[0].data(), planes[1].data(), planes[2].data(), size.width,
                             size.height);
}

} // namespace

std::span<const Operation> DisplayOperations() {
    static constexpr Operation OPERATIONS[] = {
        DrawInterleaved, DrawPlanes, FillCache,    AskShownColor,  ReleaseCache,  SetStretch,
        Equalize,        UseWallis,  SetThreshold, SetAdjustments, SetShownBands, SetColorBand,
        SetDisplayKind,  SetRamp,    SetClasses,   AdjustPicture,
    };
    return OPERATIONS;
}

} // namespace zelto::fuzz
