#include "zelto/raster/internal/FragileFiles.h"

#include "zelto/raster/internal/HeaderReader.h"

#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <filesystem>

namespace zelto {

namespace {

// Tags and types of TIFF.
constexpr std::array<std::uint64_t, 4> BLOCK_LISTS = {273, 279, 324, 325};
constexpr std::array<std::uint64_t, 3> INTEGER_TYPES = {3, 4, 16};

template <typename List>
bool IsListed(const List& list, std::uint64_t value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// The directories of a TIFF: that of its pixels, those of its levels.
class TiffDirectories {
  public:
    /// @param file at its version
    explicit TiffDirectories(HeaderReader& file) : m_file(file) {}

    /// False where a list of strips or tiles has no type that counts.
    bool AreSound() {
        const std::uint64_t version = m_file.Integer(2);
        m_isBig = version == 43;
        if (!m_isBig && version != 42)
            return true;
        m_file.Skip(m_isBig ? 4 : 0);
        // A chain that leads back to itself has no end.
        for (int directory = 0; directory < MOST_DIRECTORIES; ++directory) {
            const std::uint64_t place = m_file.Integer(Width());
            m_file.MoveTo(place);
            if (place == 0 || !m_file.IsGood())
                return true;
            if (!IsDirectorySound())
                return false;
        }
        return true;
    }

  private:
    int Width() const { return m_isBig ? 8 : 4; }

    bool IsDirectorySound() {
        for (std::uint64_t left = m_file.Integer(m_isBig ? 8 : 2); left > 0; --left) {
            const std::uint64_t tag = m_file.Integer(2);
            const std::uint64_t type = m_file.Integer(2);
            m_file.Skip(2 * static_cast<std::uint64_t>(Width()));
            if (!m_file.IsGood() || ++m_tags > MOST_TAGS)
                return true;
            if (IsListed(BLOCK_LISTS, tag) && !IsListed(INTEGER_TYPES, type))
                return false;
        }
        return true;
    }

    static constexpr int MOST_DIRECTORIES = 20'000;
    static constexpr int MOST_TAGS = 20'000;

    HeaderReader& m_file;
    bool m_isBig = false;
    int m_tags = 0;
};

/// Reads a header of the classic NetCDF formats, list by list.
class NetcdfHeader {
  public:
    /// @param size of the counts: 4 bytes, 8 since the fifth version
    NetcdfHeader(HeaderReader& file, int version)
        : m_file(file), m_count(version == 5 ? 8 : 4), m_offset(version == 1 ? 4 : 8) {}

    /// False where a list or a name would be longer than what remains of the file.
    bool IsSound() {
        m_file.Skip(static_cast<std::uint64_t>(m_count)); // records
        ReadList([&] {
            ReadName();
            m_file.Skip(static_cast<std::uint64_t>(m_count)); // length of the dimension
        });
        ReadAttributes();
        ReadList([&] { ReadVariable(); });
        return m_file.IsGood();
    }

  private:
    /// What a list counts is there: each item has a name.
    template <typename ReadItem>
    void ReadList(const ReadItem& readItem) {
        m_file.Skip(4); // its kind
        std::uint64_t count = m_file.Integer(m_count);
        m_file.Require(count, static_cast<std::uint64_t>(m_count));
        for (; count > 0 && m_file.IsGood(); --count)
            readItem();
    }

    void SkipPadded(std::uint64_t count, std::uint64_t size) {
        m_file.Require(count, size);
        if (m_file.IsGood())
            m_file.Skip((count * size + 3) / 4 * 4);
    }
    void ReadName() { SkipPadded(m_file.Integer(m_count), 1); }

    void ReadAttributes() {
        constexpr std::array<std::uint64_t, 12> SIZES = {1, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};
        ReadList([&] {
            ReadName();
            const std::uint64_t type = m_file.Integer(4);
            SkipPadded(m_file.Integer(m_count), type < SIZES.size() ? SIZES[type] : 1);
        });
    }

    void ReadVariable() {
        ReadName();
        SkipPadded(m_file.Integer(m_count), static_cast<std::uint64_t>(m_count)); // its dimensions
        ReadAttributes();
        m_file.Skip(4 + static_cast<std::uint64_t>(m_count) + static_cast<std::uint64_t>(m_offset));
    }

    HeaderReader& m_file;
    const int m_count;
    const int m_offset;
};

} // namespace

bool SurvivesOpening(const std::string& path) {
    HeaderReader file(path);
    file.UseBigEndian();
    if (file.Integer(3) != 0x434446) // "CDF"
        return true;
    const auto version = static_cast<int>(file.Integer(1));
    return (version != 1 && version != 2 && version != 5) || NetcdfHeader(file, version).IsSound();
}

bool SurvivesChange(const std::string& path) {
    HeaderReader file(path);
    const std::uint64_t order = file.Integer(2);
    if (order == 0x4D4D) // "MM"
        file.UseBigEndian();
    return (order != 0x4D4D && order != 0x4949) || TiffDirectories(file).AreSound();
}

bool SurvivesReading(GDALDataset& dataset, const std::string& path) {
    const std::string name = std::filesystem::path(path).filename().string();
    constexpr std::size_t TILE_NAME = 7; // as N10W110
    if (dataset.GetDriver() == nullptr ||
        !EQUAL(dataset.GetDriver()->GetDescription(), "SRTMHGT") ||
        std::filesystem::path(path).extension() != ".zip" || name.size() < TILE_NAME)
        return true;
    if (dataset.GetAccess() == GA_Update)
        return false;
    const std::string tile = "/vsizip/" + path + "/" + name.substr(0, TILE_NAME) + ".hgt";
    VSILFILE* const file = VSIFOpenL(tile.c_str(), "rb");
    if (file != nullptr)
        VSIFCloseL(file);
    return file != nullptr;
}

} // namespace zelto
