#pragma once

#include "zelto/Export.h"
#include "zelto/datasource/Enumerations.h"

#include <string>
#include <vector>

/// Describes the opening of a main file together with sub-files.
class ZELTO_API CDatasetOpenInfo {
  public:
    std::wstring m_fileName; ///< the main file
    GISDataAccess m_access = GIS_READONLY;
    bool m_mergeBands = false; ///< append the sub-files' bands to the main source's
    GISDataSourceType m_dataSourceType = GISDataSourceType(0);
    std::vector<std::wstring> m_subFileNames;

    CDatasetOpenInfo() = default;
    /// Takes the kind of data source from the file name's extension. A null name is empty.
    CDatasetOpenInfo(const wchar_t* fileName, GISDataAccess access);

    void AddSubFileNames(const wchar_t* name);
    int GetSubFileCount() const { return static_cast<int>(m_subFileNames.size()); }
    /// A copy of the name; empty outside 0 ≤ index < GetSubFileCount().
    std::wstring GetSubFileName(int index) const;
};
