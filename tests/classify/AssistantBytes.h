#pragma once

#include "tests/classify/Bytes.h"

namespace zelto::test {

/// The header of an assistant file, 1080 bytes.
inline Bytes AssistantHeader(int classCount, int version = 102, int entryFlag = 0,
                             int entryCount = 0) {
    Bytes bytes;
    bytes.Text("ZELTO_ClassAssistFileTag", 256).Fill(1080 - 256);
    return bytes.IntAt(256, version)
        .IntAt(288, classCount)
        .IntAt(1072, entryFlag)
        .IntAt(1076, entryCount);
}

/// One class, 272 bytes.
inline Bytes AssistantClass(const std::string& name, int value, int red, int green, int blue) {
    return Bytes().Text(name, 256).Int(value).Byte(red).Byte(green).Byte(blue).Byte(0x5A).Long(
        0x0123456789ABCDEFU);
}

/// One entry, 24 bytes.
inline Bytes AssistantEntry(double first, double second, int third, int fourth) {
    return Bytes().Double(first).Double(second).Int(third).Int(fourth);
}

/// A file with everything: two classes, three entries, a matrix of two rows and two columns.
inline Bytes WholeAssistantFile() {
    Bytes bytes = AssistantHeader(2, 102, 1, 3);
    bytes += AssistantClass("water", 3, 10, 20, 30);
    bytes += AssistantClass("forest", 1, 40, 50, 60);
    bytes += AssistantEntry(1.5, -2.5, 7, -8);
    bytes += AssistantEntry(0.0, 1e300, 0, 1);
    bytes += AssistantEntry(-0.0, 3.25, -2147483647, 9);
    bytes.Int(2).Int(2);
    for (const char* text : {"a", "bc", "", "d e"})
        bytes.Text(text, 256);
    return bytes;
}

} // namespace zelto::test
