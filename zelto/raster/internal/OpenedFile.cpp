#include "zelto/raster/internal/OpenedFile.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <sys/stat.h>

namespace zelto {

namespace {

/// The data sets of all sources; several threads may have sources of their own.
struct OpenedFiles {
    std::mutex access;
    std::map<const GDALDataset*, FileState> states;
};

/// Outlives the last source, which a host may keep in a static object.
OpenedFiles& Opened() {
    static auto* const opened = new OpenedFiles; // NOLINT(cppcoreguidelines-owning-memory)
    return *opened;
}

} // namespace

std::optional<FileState> FileState::Of(const std::string& path) {
    constexpr std::int64_t SECOND = 1'000'000'000;
    struct stat facts {};
    if (stat(path.c_str(), &facts) != 0 || !S_ISREG(facts.st_mode))
        return std::nullopt;
    return FileState{facts.st_dev, facts.st_ino, facts.st_size,
                     facts.st_mtim.tv_sec * SECOND + facts.st_mtim.tv_nsec};
}

void NoteOpened(const GDALDataset& dataset, const std::optional<FileState>& before) {
    // Another file may have come into its place just while it was opened.
    if (!before || before != FileState::Of(dataset.GetDescription()))
        return;
    OpenedFiles& opened = Opened();
    const std::lock_guard lock(opened.access);
    opened.states[&dataset] = *before;
}

std::optional<FileState> NoteClosed(const GDALDataset* dataset) {
    OpenedFiles& opened = Opened();
    const std::lock_guard lock(opened.access);
    const auto closed = opened.states.extract(dataset);
    if (closed.empty() ||
        std::any_of(opened.states.begin(), opened.states.end(),
                    [&](const auto& other) { return other.second == closed.mapped(); }))
        return std::nullopt;
    return closed.mapped();
}

std::optional<FileState> StateAsOpened(const GDALDataset& dataset) {
    OpenedFiles& opened = Opened();
    const std::lock_guard lock(opened.access);
    const auto found = opened.states.find(&dataset);
    if (found == opened.states.end() || FileState::Of(dataset.GetDescription()) != found->second)
        return std::nullopt;
    return found->second;
}

} // namespace zelto
