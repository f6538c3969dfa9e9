#include "zelto/raster/internal/OpeningPath.h"

#include "zelto/baselib/internal/LastError.h"

#include <algorithm>

namespace zelto {

namespace {

/// Deeper nesting of containers than this is taken for a loop. Real ones hold rasters directly.
constexpr std::size_t DEEPEST_NESTING = 4;

/// Containers with more sub-data-sets than this, those inside them counted too, are not opened as a
/// whole: each takes memory and a place among the open files, whatever the container holds.
constexpr int MOST_SUB_DATASETS = 1000;

} // namespace

thread_local std::vector<std::wstring> OpeningPath::s_paths;
thread_local int OpeningPath::s_subDatasets = 0;

OpeningPath::OpeningPath(const wchar_t* path) {
    const std::wstring name = path != nullptr ? path : L"";
    if (s_paths.empty())
        s_subDatasets = 0;
    m_entered = s_paths.size() < DEEPEST_NESTING &&
                std::find(s_paths.begin(), s_paths.end(), name) == s_paths.end();
    if (m_entered)
        s_paths.push_back(name);
}

OpeningPath::~OpeningPath() {
    if (m_entered)
        s_paths.pop_back();
}

bool OpeningPath::IsLoop() const {
    if (!m_entered)
        SetLastError("a list of sub-data-sets leads back to itself or too deep");
    return !m_entered;
}

bool OpeningPath::Admits(int subDatasets, const std::wstring& path) {
    s_subDatasets += subDatasets;
    if (s_subDatasets > MOST_SUB_DATASETS)
        SetLastError(path, "has more than " + std::to_string(MOST_SUB_DATASETS) + " sub-data-sets");
    return s_subDatasets <= MOST_SUB_DATASETS;
}

} // namespace zelto
