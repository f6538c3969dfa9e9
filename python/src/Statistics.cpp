#include "zelto/algorithm/RegionStatistics.h"

#include "host/base/Failure.h"
#include "host/files/Open.h"
#include "python/src/Area.h"
#include "python/src/Arrays.h"
#include "python/src/Bind.h"
#include "python/src/Errors.h"
#include "python/src/Raster.h"

#include <array>
#include <cmath>
#include <optional>
#include <pybind11/stl.h>

namespace py = pybind11;

namespace zelto::python {

namespace {

/// What a measurement needs, with its turns: the raster, the region and the bands.
class Region {
  public:
    /// @param area an Area, or None for the whole raster
    /// @param bands from 1; empty: all
    Region(Raster& raster, const py::object& area, const std::vector<int>& bands, bool approx)
        : m_raster(raster),
          m_turn(raster.Use()),
          m_area(AreaOrNone(area)),
          m_statistics(&raster.Source()) {
        if (m_area != nullptr) {
            m_area->Use(m_areaTurn);
            m_shapes = &m_area->In(raster.Source().GetProjectionWKT());
            m_statistics.SetAOI(m_shapes);
        }
        std::vector<int> indices;
        for (const int band : bands) {
            raster.Band(band);
            indices.push_back(band - 1);
        }
        if (!indices.empty())
            m_statistics.SetBands(indices);
        m_statistics.SetApprox(approx);
    }

    CRegionStatistics& Statistics() { return m_statistics; }
    CAOISource* Shapes() { return m_shapes; }
    /// Calls measure() without the interpreter's lock. Throws unless it answers success.
    template <typename Measure>
    void Do(CallProgress& progress, Measure measure) {
        const GISError error = Run(progress, [&] {
            host::ForgetReasons();
            return measure();
        });
        if (error != GIS_SUCCESS)
            Fail(m_raster.Path(), "cannot be measured");
    }

  private:
    Raster& m_raster;
    Turn m_turn;
    std::shared_ptr<Area> m_area;
    std::optional<Turn> m_areaTurn;
    CAOISource* m_shapes = nullptr;
    CRegionStatistics m_statistics;
};

struct StatisticsOptions {
    std::optional<std::array<double, 2>> percentiles;
    bool covariance = false;
};

py::dict MeasureOne(Region& region, const StatisticsOptions& options, CallProgress& progress) {
    CRegionStatistics& statistics = region.Statistics();
    region.Do(progress, [&] {
        GISError error = statistics.Compute(&progress);
        if (error == GIS_SUCCESS && options.percentiles)
            error = statistics.ComputePercentiles((*options.percentiles)[0],
                                                  (*options.percentiles)[1], &progress);
        if (error == GIS_SUCCESS && options.covariance)
            error = statistics.ComputeCovariance(&progress);
        return error;
    });
    py::list bands;
    for (const CRegionStatistics::Band& band : statistics.GetBands())
        bands.append(py::make_tuple(band.index + 1, band.count, band.minimum, band.maximum,
                                    band.mean, band.standardDeviation, band.lowPercentile,
                                    band.highPercentile));
    py::dict found;
    found["bands"] = bands;
    found["sampled"] = statistics.IsSampled();
    if (options.covariance) {
        const auto side = static_cast<py::ssize_t>(statistics.GetBands().size());
        found["covariance"] = py::array_t<double>(std::vector<py::ssize_t>{side, side},
                                                  statistics.GetCovariance().data());
        found["covariance_count"] = statistics.GetCovarianceCount();
    }
    return found;
}

/// One result for the region, or one for each of its shapes.
py::list Statistics(Raster& raster, const py::object& area, const std::vector<int>& bands,
                    bool each, bool approx, std::optional<std::array<double, 2>> percentiles,
                    bool covariance, py::object callable) {
    if (percentiles && !(0 <= (*percentiles)[0] && (*percentiles)[0] <= (*percentiles)[1] &&
                         (*percentiles)[1] <= 100))
        throw py::value_error("percentiles: 0 <= low <= high <= 100");
    Region region(raster, area, bands, approx);
    const StatisticsOptions options{percentiles, covariance};
    CallProgress progress(std::move(callable));
    py::list results;
    if (!each) {
        results.append(MeasureOne(region, options, progress));
        return results;
    }
    if (region.Shapes() == nullptr)
        throw py::value_error("each=True takes an area");
    for (int i = 0; i < region.Shapes()->GetDrawShapeCount(); ++i) {
        region.Statistics().SetShape(region.Shapes()->GetDrawShape(i));
        results.append(MeasureOne(region, options, progress));
    }
    return results;
}

py::bytes Bytes(const CRegionStatistics::ExactSum& sum) {
    return {reinterpret_cast<const char*>(sum.data()), sum.size()};
}

/// Per band its number, count, range, and the exact sums of values and squares.
py::list Sums(Raster& raster, const py::object& area, const std::vector<int>& bands, int firstRow,
              int rowCount, py::object callable) {
    Region region(raster, area, bands, false);
    region.Statistics().SetRows(firstRow, rowCount);
    CallProgress progress(std::move(callable));
    std::vector<CRegionStatistics::Sums> sums;
    region.Do(progress, [&] { return region.Statistics().ComputeSums(sums, &progress); });
    py::list found;
    for (const CRegionStatistics::Sums& band : sums)
        found.append(py::make_tuple(band.index + 1, band.count, band.minimum, band.maximum,
                                    Bytes(band.sum), Bytes(band.squares)));
    return found;
}

/// The number of complete pixels, their exact sums per band and those of the products.
py::tuple Products(Raster& raster, const py::object& area, const std::vector<int>& bands,
                   int firstRow, int rowCount, py::object callable) {
    Region region(raster, area, bands, false);
    region.Statistics().SetRows(firstRow, rowCount);
    CallProgress progress(std::move(callable));
    CRegionStatistics::Products products;
    region.Do(progress, [&] { return region.Statistics().ComputeProducts(products, &progress); });
    py::list sums;
    for (const auto& sum : products.sums)
        sums.append(Bytes(sum));
    py::list pairs;
    for (const auto& product : products.products)
        pairs.append(Bytes(product));
    return py::make_tuple(products.count, sums, pairs);
}

py::array_t<__int64> Histogram(Raster& raster, const py::object& area, int band, double low,
                               double width, int buckets, int firstRow, int rowCount,
                               py::object callable) {
    constexpr int MOST_BUCKETS = 1 << 24;
    if (!std::isfinite(low) || !std::isfinite(width) || !(width > 0) || buckets < 1 ||
        buckets > MOST_BUCKETS)
        throw py::value_error("a histogram has 1 to 16777216 buckets of a width above 0");
    Region region(raster, area, {band}, false);
    region.Statistics().SetRows(firstRow, rowCount);
    CallProgress progress(std::move(callable));
    std::vector<__int64> counts(static_cast<std::size_t>(buckets));
    region.Do(progress, [&] {
        return region.Statistics().ComputeHistogram(0, low, width, counts, &progress);
    });
    return py::array_t<__int64>(static_cast<py::ssize_t>(counts.size()), counts.data());
}

void Mask(Raster& raster, const py::object& area, py::array_t<bool> out) {
    Region region(raster, area, {}, false);
    RequireShape(out, {raster.Source().GetHeight(), raster.Source().GetWidth()});
    static_assert(sizeof(bool) == 1);
    auto* const inside = static_cast<unsigned char*>(Memory(out));
    CallProgress progress{py::none()};
    region.Do(progress,
              [&] { return region.Statistics().FillMask(0, raster.Source().GetHeight(), inside); });
}

} // namespace

void BindStatistics(py::module_& module) {
    module.def("statistics", &Statistics, py::arg("raster"), py::arg("area"), py::arg("bands"),
               py::arg("each"), py::arg("approx"), py::arg("percentiles"), py::arg("covariance"),
               py::arg("progress"));
    module.def("sums", &Sums, py::arg("raster"), py::arg("area"), py::arg("bands"),
               py::arg("first_row"), py::arg("row_count"), py::arg("progress"));
    module.def("products", &Products, py::arg("raster"), py::arg("area"), py::arg("bands"),
               py::arg("first_row"), py::arg("row_count"), py::arg("progress"));
    module.def("histogram", &Histogram, py::arg("raster"), py::arg("area"), py::arg("band"),
               py::arg("low"), py::arg("width"), py::arg("buckets"), py::arg("first_row"),
               py::arg("row_count"), py::arg("progress"));
    module.def("mask", &Mask, py::arg("raster"), py::arg("area"), py::arg("out").noconvert());
}

} // namespace zelto::python
