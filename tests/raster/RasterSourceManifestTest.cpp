#include "zelto/raster/RasterBand.h"
#include "zelto/raster/RasterSource.h"

#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestData.h"
#include "tests/support/Text.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <map>

using nlohmann::json;
using zelto::test::Narrow;
using zelto::test::TemporaryFolder;
using zelto::test::TestDataFile;

namespace {

namespace fs = std::filesystem;

json ReadManifest() {
    std::ifstream stream(TestDataFile("manifest.json"));
    return json::parse(stream);
}

bool IsContainerWithoutBands(const json& facts) {
    return facts["bands"] == 0 && facts.contains("subdatasets") && !facts["subdatasets"].empty();
}

/// Sizes are those of the file, so nothing may be warped.
void ExpectFacts(CRasterSource& source, const json& facts) {
    EXPECT_EQ(source.GetWidth(), facts["width"].get<int>());
    EXPECT_EQ(source.GetHeight(), facts["height"].get<int>());
    ASSERT_EQ(source.GetBandCount(), facts["bands"].get<int>());
    for (const json& band : facts["band_info"]) {
        const CRasterBand* opened = source.GetRasterBand(band["band"].get<int>() - 1);
        ASSERT_NE(opened, nullptr);
        EXPECT_EQ(Narrow(opened->GetDataTypeName()), band["type"].get<std::string>());
    }
    EXPECT_EQ(Narrow(source.GetRasterDataTypeName()),
              facts["band_info"][0]["type"].get<std::string>());
}

void CheckFile(const std::string& path, const json& facts) {
    CRasterSource source;
    const std::wstring wide = zelto::test::Wide(path);
    const GISError result = source.Open(wide.c_str(), GIS_READONLY, false);
    // The manifest's failures are errors of any kind. These two open; only their pixels are
    // out of reach.
    const bool opensWithoutPixels =
        path.ends_with("vrt_missing_source.vrt") || path.ends_with("vrt_self.vrt");
    if (opensWithoutPixels) {
        EXPECT_EQ(result, GIS_SUCCESS);
        return;
    }
    if (facts["open"] == "fail") {
        EXPECT_EQ(result, GIS_OPEN_FAILED);
        return;
    }
    if (IsContainerWithoutBands(facts)) {
        ASSERT_EQ(source.OpenAsDataset(wide.c_str(), GIS_READONLY), GIS_SUCCESS);
        EXPECT_LE(source.GetSubRasterCount(), static_cast<int>(facts["subdatasets"].size()));
        return;
    }
    ASSERT_EQ(result, GIS_SUCCESS);
    ExpectFacts(source, facts);
}

/// Every file below a folder with its size and time of last writing.
std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>>
Inventory(const fs::path& folder) {
    std::map<std::string, std::pair<std::uintmax_t, fs::file_time_type>> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files[entry.path().string()] = {entry.file_size(), entry.last_write_time()};
    return files;
}

} // namespace

TEST(Manifest, EveryRasterOpensOrFailsAsItSaysAndNothingIsWritten) {
    ZELTO_REQUIRE_TEST_DATA();
    const TemporaryFolder folder;
    fs::copy(TestDataFile("raster"), folder.Path() / "raster", fs::copy_options::recursive);
    const auto before = Inventory(folder.Path());
    int checked = 0;
    const json manifest = ReadManifest();
    for (const json& file : manifest["files"]) {
        const std::string path = file["path"];
        if (!path.starts_with("raster/") || !file.contains("gdal") || file["gdal"].is_null())
            continue;
        SCOPED_TRACE(path);
        CheckFile(folder.File(path), file["gdal"]);
        ++checked;
    }
    EXPECT_GT(checked, 200);
    EXPECT_EQ(Inventory(folder.Path()), before);
}
