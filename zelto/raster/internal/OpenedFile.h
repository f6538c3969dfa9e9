#pragma once

#include <gdal_priv.h>

#include <cstdint>
#include <optional>
#include <string>

/// @file
/// Which files the data sets that are open for reading were opened from. A file may be opened a
/// second time only as long as it is still the same one under its name, and nobody has written to
/// it.

namespace zelto {

/// What tells a file from every other one that exists, and from itself after a change.
struct FileState {
    std::uint64_t device;
    std::uint64_t number;
    std::int64_t size;
    std::int64_t changedAt; ///< in nanoseconds

    /// Of the regular file of that name; nothing where there is none.
    static std::optional<FileState> Of(const std::string& path);
    bool operator==(const FileState&) const = default;
};

/// @param before the state of the file before it was opened
void NoteOpened(const GDALDataset& dataset, const std::optional<FileState>& before);
/// To be called before the data set is closed.
/// @return the state of its file where no other noted data set has it open
std::optional<FileState> NoteClosed(const GDALDataset* dataset);
/// The state of the file of a noted data set, as long as its name still stands for that file, as it
/// was.
std::optional<FileState> StateAsOpened(const GDALDataset& dataset);
inline bool IsAsOpened(const GDALDataset& dataset) {
    return StateAsOpened(dataset).has_value();
}

} // namespace zelto
