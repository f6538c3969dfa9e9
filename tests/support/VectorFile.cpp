#include "tests/support/VectorFile.h"

#include <gtest/gtest.h>

namespace zelto::test {

namespace {

void AddFeature(OGRLayer& layer, const std::string& wkt, int number) {
    OGRFeature feature(layer.GetLayerDefn());
    for (int i = 0; i < feature.GetFieldCount(); ++i) {
        if (feature.GetFieldDefnRef(i)->GetType() == OFTString)
            feature.SetField(i, (std::to_string(number) + "." + std::to_string(i)).c_str());
        else
            feature.SetField(i, number);
    }
    if (!wkt.empty()) {
        OGRGeometry* geometry = nullptr;
        EXPECT_EQ(OGRGeometryFactory::createFromWkt(wkt.c_str(), nullptr, &geometry), OGRERR_NONE)
            << wkt;
        feature.SetGeometryDirectly(geometry);
    }
    EXPECT_EQ(layer.CreateFeature(&feature), OGRERR_NONE) << wkt;
}

} // namespace

std::string WriteVector(const std::string& path, const VectorLayout& layout,
                        const std::vector<std::string>& wkts) {
    GDALAllRegister();
    GDALDriver* driver = GetGDALDriverManager()->GetDriverByName(layout.driver.c_str());
    EXPECT_NE(driver, nullptr) << "no driver " << layout.driver;
    if (driver == nullptr)
        return path;
    GDALDatasetUniquePtr dataset(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    EXPECT_NE(dataset, nullptr) << "cannot create " << path;
    if (!dataset)
        return path;
    OGRSpatialReference srs;
    if (!layout.srs.empty()) {
        EXPECT_EQ(srs.SetFromUserInput(layout.srs.c_str()), OGRERR_NONE);
    }
    OGRLayer* layer = dataset->CreateLayer(
        layout.layer.c_str(), layout.srs.empty() ? nullptr : &srs, layout.type, nullptr);
    EXPECT_NE(layer, nullptr) << "cannot create a layer in " << path;
    if (layer == nullptr)
        return path;
    for (const auto& [name, type] : layout.fields) {
        OGRFieldDefn field(name.c_str(), type);
        EXPECT_EQ(layer->CreateField(&field), OGRERR_NONE) << name;
    }
    for (std::size_t i = 0; i < wkts.size(); ++i)
        AddFeature(*layer, wkts[i], static_cast<int>(i));
    return path;
}

std::vector<std::string> ReadGeometries(const std::string& path, int layerIndex) {
    GDALAllRegister();
    GDALDatasetUniquePtr dataset(GDALDataset::Open(path.c_str(), GDAL_OF_VECTOR));
    EXPECT_NE(dataset, nullptr) << "cannot open " << path;
    std::vector<std::string> wkts;
    if (!dataset)
        return wkts;
    for (const auto& feature : *dataset->GetLayer(layerIndex)) {
        const OGRGeometry* geometry = feature->GetGeometryRef();
        wkts.push_back(geometry != nullptr ? geometry->exportToWkt() : "");
    }
    return wkts;
}

} // namespace zelto::test
