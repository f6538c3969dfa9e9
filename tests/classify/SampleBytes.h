#pragma once

#include "tests/classify/Bytes.h"

#include <vector>

namespace zelto::test {

/// The header of a sample file, 312 bytes.
inline Bytes SampleHeader(int classCount) {
    Bytes bytes;
    bytes.Text("ZELTO_SampleFileTag", 40).Fill(272);
    return bytes.IntAt(288, classCount);
}

/// A class up to its flag and shape count: name, integers 11, 12, 13 and n, for band i the
/// triple (200 + i, 100 + i, 300 + i), integers 21 and 22, the matrix 0.5, 1.5, 2.5, …
inline Bytes SampleClass(const std::string& name, int n, int hasSamples, int shapeCount) {
    Bytes bytes;
    bytes.Text(name, 256).Int(11).Int(12).Int(13).Int(n);
    for (int i = 0; i < n; ++i)
        bytes.Double(200 + i).Double(100 + i).Double(300 + i);
    bytes.Int(21).Int(22);
    for (int i = 0; i < n * n; ++i)
        bytes.Double(i + 0.5);
    return bytes.Int(hasSamples).Int(shapeCount);
}

/// A rectangle (kind 4) or ellipse (kind 5), 33 bytes.
inline Bytes SampleBox(int kind, double left, double top, double width, double height) {
    return Bytes().Byte(kind).Double(left).Double(top).Double(width).Double(height);
}

/// A polygon with the vertices (x, y), (x, y), …
inline Bytes SamplePolygon(const std::vector<double>& coordinates) {
    Bytes bytes = Bytes().Byte(6).Int(static_cast<int>(coordinates.size() / 2));
    for (const double coordinate : coordinates)
        bytes.Double(coordinate);
    return bytes;
}

/// A file with everything: a class of two bands with three shapes and one without bands.
inline Bytes WholeSampleFile() {
    Bytes bytes = SampleHeader(2);
    bytes += SampleClass("crops", 2, 1, 3);
    // 0.1 + 0.2 − 0.1 is not 0.2: the width must not be computed anew from the corners.
    bytes += SampleBox(4, 0.1, 20.3, 0.2, 0.7);
    bytes += SampleBox(5, -7.0, 5.0, 4.0, 2.0);
    bytes += SamplePolygon({0, 0, 10, 0, 10, 8, 1, 9});
    bytes += SampleClass("bare soil", 0, 0, 0);
    return bytes;
}

} // namespace zelto::test
