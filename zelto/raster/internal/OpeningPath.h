#pragma once

#include <string>
#include <vector>

namespace zelto {

/// Marks a path as being opened on this thread. A container may list any text as its
/// sub-data-sets, also itself; such a loop must end as a failed open.
class OpeningPath {
  public:
    explicit OpeningPath(const wchar_t* path);
    ~OpeningPath();
    OpeningPath(const OpeningPath&) = delete;
    OpeningPath& operator=(const OpeningPath&) = delete;

    /// Whether the path is open already; the reason is then left.
    bool IsLoop() const;
    /// Whether so many more sub-data-sets may be opened within the path that was opened first; the
    /// reason is otherwise left.
    static bool Admits(int subDatasets, const std::wstring& path);

  private:
    static thread_local std::vector<std::wstring> s_paths;
    static thread_local int s_subDatasets; ///< opened within the first of the paths
    bool m_entered = false;
};

} // namespace zelto
