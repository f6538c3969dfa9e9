#include "zelto/datasource/DatasetOpenInfo.h"

#include "zelto/datasource/GISDataSource.h"

CDatasetOpenInfo::CDatasetOpenInfo(const wchar_t* fileName, GISDataAccess access)
    : m_fileName(fileName != nullptr ? fileName : L""),
      m_access(access),
      m_dataSourceType(CGISDataSource::GetDataSourceType(fileName)) {}

void CDatasetOpenInfo::AddSubFileNames(const wchar_t* name) {
    m_subFileNames.emplace_back(name != nullptr ? name : L"");
}

std::wstring CDatasetOpenInfo::GetSubFileName(int index) const {
    if (index < 0 || index >= GetSubFileCount())
        return {};
    return m_subFileNames[static_cast<std::size_t>(index)];
}
