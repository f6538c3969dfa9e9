#include "zelto/algorithm/internal/ExactMoments.h"

#include "zelto/raster/RasterBand.h"

#include <algorithm>

namespace zelto {

namespace {

/// Values of up to 16 bits of which even the squares' sum fits into 63 bits.
constexpr std::size_t LARGEST_BATCH = std::size_t{1} << 30;

std::int64_t Whole(double value) {
    return static_cast<std::int64_t>(value);
}

bool IsWhole(ExactWay way) {
    return way == ExactWay::SmallWhole || way == ExactWay::Whole;
}

/// Calls add(first, count) for batches that are small enough.
template <typename Add>
void InBatches(std::size_t count, Add add) {
    for (std::size_t first = 0; first < count; first += LARGEST_BATCH)
        add(first, std::min(LARGEST_BATCH, count - first));
}

std::int64_t SumOf(std::span<const double> values) {
    std::int64_t sum = 0;
    for (const double value : values)
        sum += Whole(value);
    return sum;
}

/// @tparam Sum wide enough for the products of a batch
template <typename Sum>
Sum ProductsOf(std::span<const double> a, std::span<const double> b) {
    Sum sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        sum += static_cast<Sum>(Whole(a[i])) * Whole(b[i]);
    return sum;
}

} // namespace

ExactWay ExactWayOf(const CRasterBand& band) {
    switch (band.GetDataType()) {
    case PDT_Byte:
    case PDT_UInt16:
    case PDT_Int16:
        return ExactWay::SmallWhole;
    case PDT_UInt32:
    case PDT_Int32:
        return ExactWay::Whole;
    case PDT_Float32:
        return ExactWay::Single;
    default:
        return ExactWay::Double;
    }
}

void AddValues(ExactSum& sum, std::span<const double> values, ExactWay way) {
    if (!IsWhole(way)) {
        for (const double value : values)
            sum.Add(value);
        return;
    }
    InBatches(values.size(), [&](std::size_t first, std::size_t count) {
        sum.AddWhole(SumOf(values.subspan(first, count)));
    });
}

void AddProducts(ExactSum& sum, std::span<const double> a, ExactWay wayOfA,
                 std::span<const double> b, ExactWay wayOfB) {
    const ExactWay way = std::max(wayOfA, wayOfB);
    if (way == ExactWay::Double) {
        for (std::size_t i = 0; i < a.size(); ++i)
            sum.AddProduct(a[i], b[i]);
        return;
    }
    // A number of 32 bits does not fit into single precision.
    if (way == ExactWay::Single && std::min(wayOfA, wayOfB) != ExactWay::Whole) {
        for (std::size_t i = 0; i < a.size(); ++i)
            sum.Add(a[i] * b[i]);
        return;
    }
    if (way == ExactWay::Single) {
        AddProducts(sum, a, ExactWay::Double, b, ExactWay::Double);
        return;
    }
    InBatches(a.size(), [&](std::size_t first, std::size_t count) {
        const auto partA = a.subspan(first, count);
        const auto partB = b.subspan(first, count);
        sum.AddWhole(way == ExactWay::SmallWhole ? Int128{ProductsOf<std::int64_t>(partA, partB)}
                                                 : ProductsOf<Int128>(partA, partB));
    });
}

void ExactMoments::Add(std::span<const double> values) {
    if (values.empty())
        return;
    const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
    if (m_count == 0) {
        m_minimum = *least;
        m_maximum = *greatest;
    }
    m_minimum = std::min(m_minimum, *least);
    m_maximum = std::max(m_maximum, *greatest);
    m_count += static_cast<std::int64_t>(values.size());
    AddValues(m_sum, values, m_way);
    AddProducts(m_squares, values, m_way, values, m_way);
}

} // namespace zelto
