#pragma once

#include "zelto/Export.h"
#include "zelto/baselib/RgbaColor.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

class CClassifyDisplayTable;

namespace zelto {
class BinaryReader;
class BinaryWriter;
} // namespace zelto

/// The companion of a classified (thematic) raster, a file of the raster's name with the
/// extension "acf": value, colour and name of each class and, optionally, a table of entries
/// and a matrix of texts.
///
/// The file, little-endian without padding:
/// 1. a header of 1080 bytes: the tag "ZELTO_ClassAssistFileTag" as 128 UTF-16 units, the
///    version at 256, the number of classes at 288, the entry-table flag at 1072 and the number
///    of entries at 1076, all int32; the other bytes are carried as they are;
/// 2. the classes, 272 bytes each;
/// 3. the entries, 24 bytes each, when the flag is not 0 and their number above 0;
/// 4. from version 101 on and when the matrix has a row: the numbers of rows and columns as
///    int32 and each text, row by row, as 128 UTF-16 units.
class ZELTO_API CClassifiedAssistantFile {
  public:
    static constexpr std::size_t HEADER_SIZE = 1080;

    /// One class, as the file keeps it.
    struct ZELTO_API ClassRecord {
        /// The name's 128 UTF-16LE units, with whatever follows its ending zero.
        std::array<unsigned char, 256> m_nameField{};
        std::int32_t m_value = 0;    ///< pixel value of the class
        CRgbaColor m_color;          ///< alpha is carried, not used: classes are shown opaque
        std::uint64_t m_further = 0; ///< carried as it is

        std::wstring GetName() const;
        /// Names of more than 127 UTF-16 units are cut.
        void SetName(const std::wstring& name);
    };

    /// One record of the entry table; what the fields mean is the host's affair.
    struct EntryRecord {
        double m_first = 0.0;
        double m_second = 0.0;
        std::int32_t m_third = 0;
        std::int32_t m_fourth = 0;
    };

    using TextMatrix = std::vector<std::vector<std::wstring>>;

    /// No classes, version 102, the tag set.
    CClassifiedAssistantFile();
    CClassifiedAssistantFile(const CClassifiedAssistantFile&);
    CClassifiedAssistantFile& operator=(const CClassifiedAssistantFile&);
    virtual ~CClassifiedAssistantFile();

    /// Replaces the content with the file's. A file that ends early, or whose counts promise
    /// more than it holds, gives the whole records before its end and succeeds; the header's
    /// counts are then lowered to what was read. The matrix is looked for from version 101 on
    /// where at least 8 more bytes follow; of rows without columns up to 1,048,576 are kept.
    /// @return false, with the content as it was, when the file cannot be opened, is shorter
    ///         than its header or has another tag
    bool ReadClassifiedAssistantFile(std::wstring path);

    /// Writes the content to a file; an old file is replaced when the new one is complete.
    /// Every row of the matrix is written with the first row's number of columns: texts beyond
    /// are left out, missing ones are empty. Texts of more than 127 UTF-16 units are cut.
    /// @return false, with no file touched, for an empty path, when the tag is not the file
    ///         type's or when the file cannot be written
    bool WriteClssifiedAssistantFile(std::wstring path);

    /// A table with one item per class, in order, from value − 0.5 up to value + 0.5, opaque.
    /// The table's range starts at the first value and follows later ones unevenly: a greater
    /// value v moves its upper end to v, a smaller one its lower end to v, not to v − 1 as the
    /// first value does.
    /// @return owned by the caller; null when there is no memory
    CClassifyDisplayTable* CreateClassifyDisplayTable();

    /// Copies the matrix; its rows may differ in length.
    void SetChangedMatrix(std::vector<std::vector<std::wstring>>& matrix);
    const TextMatrix& GetChangedMatrix() const { return m_changedMatrix; }

    /// @name Header fields
    /// The numbers of classes and entries follow the lists.
    /// @{
    std::wstring GetTag() const;
    void SetTag(const std::wstring& tag);
    std::int32_t GetVersion() const;
    void SetVersion(std::int32_t version);
    std::int32_t GetClassCount() const;
    std::int32_t GetEntryTableFlag() const;
    /// A flag of 0 keeps the entries out of the file.
    void SetEntryTableFlag(std::int32_t flag);
    std::int32_t GetEntryCount() const;
    /// @}

    const std::vector<ClassRecord>& GetClasses() const { return m_classes; }
    void SetClasses(std::vector<ClassRecord> classes);
    void AddClass(const ClassRecord& record);
    const std::vector<EntryRecord>& GetEntries() const { return m_entries; }
    /// Sets the entry-table flag to 1, or to 0 for an empty table.
    void SetEntries(std::vector<EntryRecord> entries);

  protected:
    std::array<unsigned char, HEADER_SIZE> m_header{};
    std::vector<ClassRecord> m_classes;
    std::vector<EntryRecord> m_entries;
    TextMatrix m_changedMatrix;

  private:
    void ReadLists(zelto::BinaryReader& reader);
    void WriteContent(zelto::BinaryWriter& writer) const;
    void LowerCounts();
};
