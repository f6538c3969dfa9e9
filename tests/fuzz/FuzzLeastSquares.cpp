#include "zelto/baselib/ErrorEquation.h"
#include "zelto/baselib/MatrixOperation.h"
#include "zelto/coordinate/GeoGrid.h"

#include "tests/fuzz/FuzzTarget.h"
#include "tests/fuzz/InputBytes.h"

#include <algorithm>
#include <vector>

namespace {

using zelto::fuzz::InputBytes;

/// The first `given` numbers come from the input, and are repeated until there are `count`.
std::vector<double> Repeated(InputBytes& bytes, std::size_t given, std::size_t count) {
    std::vector<double> numbers = bytes.Numbers(std::min(given, count));
    for (std::size_t i = numbers.size(); i < count; ++i)
        numbers.push_back(numbers[i - given] + static_cast<double>(i % 3));
    return numbers;
}

void UseMatrices(InputBytes& bytes) {
    // The work grows with the third power.
    const int n = 1 + (bytes.Below(64) == 63 ? 59 : bytes.Below(12));
    const auto size = static_cast<std::size_t>(n) * static_cast<std::size_t>(n);
    const std::vector<double> matrix = Repeated(bytes, 100, size);
    const std::vector<double> right = Repeated(bytes, 10, static_cast<std::size_t>(n));
    std::vector<double> result(size);
    CMatrixOperation::Inverse(matrix.data(), result.data(), n);
    CMatrixOperation::Solve(matrix.data(), right.data(), result.data(), n);
    CMatrixOperation::Transpose(matrix.data(), result.data(), n, n);
    CMatrixOperation::Multiply(matrix.data(), matrix.data(), result.data(), n, n, n);
}

void UseErrorEquations(InputBytes& bytes) {
    const int terms = 1 + bytes.Below(20);
    const auto width = static_cast<std::size_t>(terms);
    std::vector<double> matrix(width * width);
    std::vector<double> right(width);
    std::vector<double> solution(width);
    CErrorEquation::zero(matrix.data(), static_cast<int>(matrix.size()));
    for (int i = 0; i <= terms && !bytes.IsEmpty(); ++i) {
        const std::vector<double> row = bytes.Numbers(width);
        CErrorEquation::_TFuncNorml(row.data(), bytes.Number(), matrix.data(), right.data(), terms);
    }
    CErrorEquation::_TBalance(matrix.data(), right.data(), terms);
    CErrorEquation::_TCaGauss(matrix.data(), right.data(), solution.data(), terms);
}

void UseGrid(InputBytes& bytes) {
    const unsigned order = static_cast<unsigned>(bytes.Below(5));
    const int count = bytes.Below(64) == 63 ? 200 : bytes.Below(24);
    CGeoGrid grid(bytes.Count() % 300, bytes.Count() % 300, bytes.Number(), bytes.Number(), order);
    std::vector<double> values[4];
    for (std::vector<double>& list : values)
        list = Repeated(bytes, 12, static_cast<std::size_t>(count));
    grid.ComputeCoef(count, values[0].data(), values[1].data(), values[2].data(), values[3].data());
    double column = 0.0;
    double row = 0.0;
    for (int i = 0; i < 4; ++i)
        grid.GetPos(bytes.Number(), bytes.Number(), column, row);
}

} // namespace

// Matrices, normal equations and fits of numbers that need not make sense.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputBytes bytes(data, size);
    switch (bytes.Below(3)) {
    case 0:
        UseMatrices(bytes);
        break;
    case 1:
        UseErrorEquations(bytes);
        break;
    default:
        UseGrid(bytes);
    }
    return 0;
}
