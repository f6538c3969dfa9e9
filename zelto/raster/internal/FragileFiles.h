#pragma once

#include <string>

class GDALDataset;

/// @file
/// Damaged files that GDAL's drivers and their libraries accept and then do not survive. They are
/// told before anything happens.

namespace zelto {

/// Whether GDAL may open the file: a NetCDF header (of the classic formats) that promises more than
/// the file holds would have gigabytes taken for it.
bool SurvivesOpening(const std::string& path);

/// Whether GDAL may open the file for a change: libtiff does not survive writing the header of a
/// TIFF anew whose lists of strips or tiles have no type.
bool SurvivesChange(const std::string& path);

/// Whether what GDAL has opened can be read: its driver opens a zipped elevation tile also where
/// it cannot be got out of its archive, which it never can for a change.
bool SurvivesReading(GDALDataset& dataset, const std::string& path);

} // namespace zelto
