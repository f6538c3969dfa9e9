#pragma once

#include "tests/support/TemporaryFolder.h"

#include <gdal_priv.h>
#include <gtest/gtest.h>

#include <string>

namespace zelto::test {

/// A small file of side × side bytes, which are one block of which nothing is stored.
/// @param side a multiple of 16; blocks of more than 32,768 are larger than GDAL may hold
inline std::string WriteHugeBlock(const TemporaryFolder& folder, int side) {
    const std::string path = folder.File("huge" + std::to_string(side) + ".tif");
    CPLStringList options;
    options.SetNameValue("COMPRESS", "DEFLATE");
    options.SetNameValue("SPARSE_OK", "TRUE");
    options.SetNameValue("TILED", "YES");
    options.SetNameValue("BLOCKXSIZE", std::to_string(side).c_str());
    options.SetNameValue("BLOCKYSIZE", std::to_string(side).c_str());
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    const GDALDatasetUniquePtr made(
        driver->Create(path.c_str(), side, side, 1, GDT_Byte, options.List()));
    EXPECT_NE(made, nullptr);
    return path;
}

} // namespace zelto::test
