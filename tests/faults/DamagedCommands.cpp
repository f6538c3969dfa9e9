#include "tests/faults/DamagedCommands.h"

namespace zelto::test {

const std::vector<std::vector<std::string>>& RasterCommands() {
    static const std::vector<std::vector<std::string>> commands = {
        {"info", "FILE"},
        {"info", "--stats", "--json", "FILE"},
        {"info", "--sample", "FILE"},
        {"stats", "--covariance", "FILE"},
        {"stats", "FILE", "--box", "0,10,10,0"},
        {"histogram", "FILE"},
        {"histogram", "FILE", "--png", "OUT.png"},
        {"render", "FILE", "OUT.png"},
        {"render", "--stretch", "equalize", "FILE", "OUT.jpg"},
        {"render", "--contact-sheet", "FILE", "OUT.png"},
        {"render", "--srs", "EPSG:4326", "FILE", "OUT.tif"},
        {"compose", "FILE:1", "FILE:1", "FILE:1", "OUT.tif"},
        {"copy", "FILE", "OUT.tif"},
        {"copy", "FILE", "OUT.img", "--window", "0,0,20,20"},
        {"create", "OUT.tif", "--like", "FILE"},
        {"georef", "FILE", "--box", "0,10,10,0", "--srs", "EPSG:4326"},
        {"georef", "FILE", "--clear-points"},
        {"polygonize", "FILE", "OUT.gpkg"},
        {"polygonize", "--eight", "FILE", "OUT.shp"},
        {"pyramids", "build", "FILE"},
        {"pyramids", "check", "FILE"},
        {"file", "cp", "FILE", "OUT.tif"},
        {"file", "mv", "FILE", "OUT.tif"},
        {"file", "rm", "FILE"},
        {"classes", "check", "FILE"},
        {"srs", "info", "FILE"},
        {"reproject", "grid", "FILE", "--srs", "EPSG:4326"},
    };
    return commands;
}

const std::vector<std::vector<std::string>>& VectorCommands() {
    static const std::vector<std::vector<std::string>> commands = {
        {"vector", "info", "FILE"},
        {"aoi", "info", "FILE"},
        {"aoi", "hit", "FILE", "1,1"},
        {"aoi", "convert", "FILE", "OUT.aif"},
        {"aoi", "convert", "FILE", "OUT.shp", "--srs", "EPSG:3857"},
        {"aoi", "new", "OUT.aif", "--geojson", "FILE"},
        {"aoi", "mask", "FILE", "SCENE", "OUT.tif"},
        {"stats", "SCENE", "--aoi", "FILE"},
        {"samples", "collect", "SCENE", "--aoi", "FILE", "-o", "OUT.smp"},
        {"render", "SCENE", "OUT.png", "--aoi", "FILE"},
        {"zonal", "SCENE", "FILE"},
    };
    return commands;
}

} // namespace zelto::test
