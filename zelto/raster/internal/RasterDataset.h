#pragma once

#include <string>
#include <string_view>

class GDALDataset;

namespace zelto {

/// Opens a raster with GDAL, unless its drivers would not survive what the file says.
/// @param accessFlag GDAL_OF_READONLY or GDAL_OF_UPDATE
/// @param reason why nothing opens
/// @return the caller's; null where nothing opens
GDALDataset* OpenRaster(const std::string& path, unsigned int accessFlag, std::string& reason);

/// Number of entries in the list of sub-data-sets: a name and a description for each.
int SubDatasetEntryCount(GDALDataset& dataset);

/// @param number counted from 1; beyond the last one the name is empty
std::wstring SubDatasetName(GDALDataset& dataset, int number);

/// How the pixels are stored, as COMPRESSION or INTERLEAVE; empty where the driver does not tell.
std::string_view ImageStructure(GDALDataset& dataset, const char* item);

} // namespace zelto
