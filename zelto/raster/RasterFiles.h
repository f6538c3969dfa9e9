#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/Enumerations.h"

/// Moves and copies rasters with all the files that belong to them (headers, world files,
/// statistics, pyramids). An addition to the fixed interface: CRasterSource::RenameFile() and
/// CopyFiles() ask the new path for the driver, which must therefore exist; here the old one
/// decides.
///
/// What stands under the new name is replaced with all that belongs to it, or stays; see
/// CNewFileSet. The origin of a move goes last, so that at every moment one of the two is whole. A
/// move within a file system copies no pixels. Reasons of failures are told by
/// CGISDataSource::GetLastErrorText().
class ZELTO_API CRasterFiles {
  public:
    /// @param overwrite whether there may be files under the new names
    /// @return GIS_NOT_SUPPORTED when no raster driver recognises the old path, GIS_FAILED on
    ///         errors
    static GISError Move(const wchar_t* oldPath, const wchar_t* newPath, bool overwrite);
    /// As Move(); the old files stay.
    static GISError Copy(const wchar_t* oldPath, const wchar_t* newPath, bool overwrite);
};
