#include "zelto/algorithm/RegionStatistics.h"
#include "zelto/algorithm/internal/CompletePixels.h"
#include "zelto/algorithm/internal/ExactMoments.h"
#include "zelto/algorithm/internal/Refusal.h"
#include "zelto/algorithm/internal/RegionScan.h"
#include "zelto/aoi/DrawRectangle.h"
#include "zelto/baselib/internal/NoThrow.h"
#include "zelto/raster/RasterSource.h"

#include <algorithm>

namespace {

constexpr const wchar_t* SUMS_TITLE = L"计算统计信息";
constexpr const wchar_t* PRODUCTS_TITLE = L"计算协方差";

/// Sums of the complete pixels' values and of their products, lower triangle.
class ProductSums {
  public:
    explicit ProductSums(const std::vector<CRasterBand*>& bands)
        : m_sums(bands.size()), m_products(bands.size() * (bands.size() + 1) / 2) {
        for (const CRasterBand* band : bands)
            m_ways.push_back(zelto::ExactWayOf(*band));
    }

    void Add(const zelto::CompletePixels& pixels) {
        m_count += static_cast<__int64>(pixels.Count());
        std::size_t pair = 0;
        for (std::size_t a = 0; a < m_ways.size(); ++a) {
            zelto::AddValues(m_sums[a], pixels.Of(a), m_ways[a]);
            for (std::size_t b = 0; b <= a; ++b)
                zelto::AddProducts(m_products[pair++], pixels.Of(a), m_ways[a], pixels.Of(b),
                                   m_ways[b]);
        }
    }

    CRegionStatistics::Products Result() const {
        CRegionStatistics::Products result;
        result.count = m_count;
        for (const zelto::ExactSum& sum : m_sums)
            result.sums.push_back(sum.Bytes());
        for (const zelto::ExactSum& product : m_products)
            result.products.push_back(product.Bytes());
        return result;
    }

  private:
    __int64 m_count = 0;
    std::vector<zelto::ExactWay> m_ways;
    std::vector<zelto::ExactSum> m_sums;
    std::vector<zelto::ExactSum> m_products;
};

} // namespace

GISError CRegionStatistics::ComputeSums(std::vector<Sums>& sums, CDataProgress* progress) const {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const zelto::RegionScan scan = MakeScan();
        std::vector<zelto::ExactMoments> moments;
        for (const CRasterBand* band : scan.Bands())
            moments.emplace_back(*band);
        const auto add = [&](std::size_t b, std::span<const double> values) {
            moments[b].Add(values);
        };
        if (!scan.VisitValues(SUMS_TITLE, progress, add))
            return GIS_FAILED;
        sums.clear();
        for (std::size_t b = 0; b < moments.size(); ++b)
            sums.push_back({m_bands[b].index, moments[b].Count(), moments[b].Minimum(),
                            moments[b].Maximum(), moments[b].Sum().Bytes(),
                            moments[b].Squares().Bytes()});
        return GIS_SUCCESS;
    });
}

GISError CRegionStatistics::ComputeProducts(Products& products, CDataProgress* progress) const {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const zelto::RegionScan scan = MakeScan();
        zelto::CompletePixels pixels(scan.Bands());
        ProductSums sums(scan.Bands());
        const auto add = [&](std::span<const double*> samples, const zelto::RegionSpans& spans) {
            pixels.Select(samples, scan.Width(), spans);
            sums.Add(pixels);
        };
        if (!scan.Visit(PRODUCTS_TITLE, progress, add))
            return GIS_FAILED;
        products = sums.Result();
        return GIS_SUCCESS;
    });
}

GISError CRegionStatistics::FillMask(int firstRow, int rowCount, unsigned char* inside) const {
    return zelto::NoThrow(GIS_FAILED, [&] {
        if (!IsUsable())
            return GIS_FAILED;
        const bool valid = inside != nullptr && firstRow >= 0 && rowCount > 0 &&
                           rowCount <= m_source->GetHeight() - firstRow;
        if (!valid) {
            zelto::RefuseMissing("rows of the mask");
            return GIS_FAILED;
        }
        const auto size =
            static_cast<std::size_t>(rowCount) * static_cast<std::size_t>(m_source->GetWidth());
        std::fill_n(inside, size, 0);
        const zelto::RowLimits rows{firstRow, rowCount};
        using Shapes = std::optional<std::span<CDrawShape* const>>;
        const Shapes shapes = m_wholeRaster ? Shapes() : Shapes(m_shapes);
        const zelto::RegionScan scan(*m_source, BandIndices(), shapes, std::nullopt, rows);
        scan.Mark(firstRow, {inside, size});
        return GIS_SUCCESS;
    });
}
