#include "zelto/baselib/internal/FilesAside.h"

#include <algorithm>
#include <system_error>

namespace zelto {

namespace fs = std::filesystem;

namespace {

/// Each file once, in the given order.
std::vector<fs::path> Existing(const std::vector<fs::path>& files) {
    std::vector<fs::path> existing;
    std::error_code ignored;
    for (const fs::path& file : files)
        if (fs::exists(file, ignored) &&
            std::find(existing.begin(), existing.end(), file) == existing.end())
            existing.push_back(file);
    return existing;
}

} // namespace

FilesSetAside::FilesSetAside(const std::vector<fs::path>& files) {
    const std::vector<fs::path> existing = Existing(files);
    if (existing.empty())
        return;
    FileSetNames names;
    for (const fs::path& file : existing)
        names.push_back(file.filename().string());
    m_backup.emplace(existing.front().parent_path(), names, FileSetNames());
    m_succeeded = m_backup->IsMade();
    for (const fs::path& file : existing) {
        std::error_code error;
        if (m_succeeded)
            fs::remove(file, error);
        m_succeeded = m_succeeded && !error;
    }
    if (!m_succeeded)
        PutBack();
}

void FilesSetAside::PutBack() {
    if (m_backup && m_backup->IsMade())
        m_backup->PutBack();
    m_backup.reset();
}

void FilesSetAside::Drop() {
    m_backup.reset();
}

FileCopies::FileCopies(const fs::path& beside, const std::vector<fs::path>& files)
    : m_folder(beside.parent_path()), m_files(Existing(files)) {
    for (const fs::path& file : m_files) {
        std::error_code error;
        if (m_succeeded && m_folder.IsMade())
            fs::copy_file(file, m_folder.Path() / file.filename(), error);
        m_succeeded = m_succeeded && m_folder.IsMade() && !error;
    }
}

void FileCopies::Restore() {
    if (!m_succeeded)
        return;
    for (const fs::path& file : m_files) {
        std::error_code error;
        fs::rename(m_folder.Path() / file.filename(), file, error);
        if (error)
            m_folder.Leave(); // what could not be put back stays there
    }
}

} // namespace zelto
