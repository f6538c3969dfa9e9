#pragma once

#include <ogrsf_frmts.h>

#include <string>
#include <utility>
#include <vector>

namespace zelto::test {

/// What a test vector file looks like; geometries are given apart.
struct VectorLayout {
    std::string driver = "ESRI Shapefile";
    std::string layer = "layer"; ///< a shapefile takes its own name instead
    OGRwkbGeometryType type = wkbUnknown;
    std::string srs = {}; ///< anything the spatial reference's user-input parser takes
    std::vector<std::pair<std::string, OGRFieldType>> fields = {};
};

/// Creates a vector file of one layer with one feature per WKT text ("" for a feature without
/// geometry) and returns its path. Field i of feature f holds the text "f.i" or the number f.
/// Fails the test when GDAL reports an error.
std::string WriteVector(const std::string& path, const VectorLayout& layout,
                        const std::vector<std::string>& wkts);

/// WKT of every geometry of a layer in file order, read by GDAL alone; "" where there is none.
std::vector<std::string> ReadGeometries(const std::string& path, int layer = 0);

/// Takes the shapefile driver away for as long as this lives; nothing may register the drivers
/// meanwhile.
class WithoutShapefileDriver {
  public:
    WithoutShapefileDriver() { GetGDALDriverManager()->DeregisterDriver(m_driver); }
    ~WithoutShapefileDriver() { GetGDALDriverManager()->RegisterDriver(m_driver); }
    WithoutShapefileDriver(const WithoutShapefileDriver&) = delete;
    WithoutShapefileDriver& operator=(const WithoutShapefileDriver&) = delete;

  private:
    GDALDriver* m_driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
};

} // namespace zelto::test
