#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/classify/ClassifiedAssistantFile.h"
#include "zelto/classify/internal/HeaderBlock.h"

#include <algorithm>
#include <fstream>
#include <new>
#include <utility>

using zelto::BinaryReader;
using zelto::BinaryWriter;

namespace {

using File = CClassifiedAssistantFile;

constexpr std::uint64_t CLASS_SIZE = 272;
constexpr std::uint64_t ENTRY_SIZE = 24;
/// Files of this and later versions may end with a matrix.
constexpr std::int32_t MATRIX_VERSION = 101;
/// Rows without columns take no bytes, so that the file does not bound their number. More than
/// this are not kept.
constexpr std::int32_t MOST_EMPTY_ROWS = 1 << 20;

bool ReadRecord(BinaryReader& reader, File::ClassRecord& record) {
    return reader.Read(record.m_nameField) && reader.Read(record.m_value) &&
           reader.Read(record.m_color.red) && reader.Read(record.m_color.green) &&
           reader.Read(record.m_color.blue) && reader.Read(record.m_color.alpha) &&
           reader.Read(record.m_further);
}

void WriteRecord(BinaryWriter& writer, const File::ClassRecord& record) {
    writer.Write(record.m_nameField);
    writer.Write(record.m_value);
    for (const unsigned char byte :
         {record.m_color.red, record.m_color.green, record.m_color.blue, record.m_color.alpha})
        writer.Write(byte);
    writer.Write(record.m_further);
}

bool ReadRecord(BinaryReader& reader, File::EntryRecord& record) {
    return reader.Read(record.m_first) && reader.Read(record.m_second) &&
           reader.Read(record.m_third) && reader.Read(record.m_fourth);
}

void WriteRecord(BinaryWriter& writer, const File::EntryRecord& record) {
    writer.Write(record.m_first);
    writer.Write(record.m_second);
    writer.Write(record.m_third);
    writer.Write(record.m_fourth);
}

/// As many whole records as the file holds, up to `count`.
template <typename Record>
std::vector<Record> ReadRecords(BinaryReader& reader, std::int32_t count, std::uint64_t size) {
    std::vector<Record> records;
    if (count > 0)
        records.reserve(std::min<std::uint64_t>(static_cast<std::uint64_t>(count),
                                                reader.BytesRemaining() / size));
    Record record;
    for (std::int32_t i = 0; i < count && ReadRecord(reader, record); ++i)
        records.push_back(record);
    return records;
}

File::TextMatrix ReadMatrix(BinaryReader& reader) {
    std::int32_t rows = 0;
    std::int32_t columns = 0;
    File::TextMatrix matrix;
    if (!reader.Read(rows) || !reader.Read(columns) || rows < 0 || columns < 0)
        return matrix;
    if (columns == 0)
        return File::TextMatrix(static_cast<std::size_t>(rows <= MOST_EMPTY_ROWS ? rows : 0));
    zelto::ClassifyTextField field;
    for (std::int32_t row = 0; row < rows; ++row)
        for (std::int32_t column = 0; column < columns; ++column) {
            if (!reader.Read(field))
                return matrix;
            if (column == 0)
                matrix.emplace_back();
            matrix.back().push_back(zelto::DecodeUtf16Field(field));
        }
    return matrix;
}

void WriteMatrix(BinaryWriter& writer, const File::TextMatrix& matrix) {
    const std::size_t columns = matrix.front().size();
    writer.Write(static_cast<std::int32_t>(matrix.size()));
    writer.Write(static_cast<std::int32_t>(columns));
    zelto::ClassifyTextField field;
    for (const std::vector<std::wstring>& row : matrix)
        for (std::size_t column = 0; column < columns; ++column) {
            zelto::EncodeUtf16Field(column < row.size() ? row[column] : std::wstring(), field);
            writer.Write(field);
        }
}

} // namespace

void CClassifiedAssistantFile::ReadLists(BinaryReader& reader) {
    m_classes = ReadRecords<ClassRecord>(reader, GetClassCount(), CLASS_SIZE);
    if (GetEntryTableFlag() != 0)
        m_entries = ReadRecords<EntryRecord>(reader, GetEntryCount(), ENTRY_SIZE);
    if (GetVersion() >= MATRIX_VERSION)
        m_changedMatrix = ReadMatrix(reader);
}

bool CClassifiedAssistantFile::ReadClassifiedAssistantFile(std::wstring path) {
    const std::string name = CommonFun::U2M(path);
    try {
        std::ifstream stream;
        if (!zelto::OpenRegularFile(stream, name))
            return false;
        BinaryReader reader(stream);
        CClassifiedAssistantFile file;
        const std::wstring tag = file.GetTag();
        if (!reader.Read(file.m_header) || file.GetTag() != tag) {
            zelto::SetLastError(name + ": is no classified assistant file");
            return false;
        }
        file.ReadLists(reader);
        file.LowerCounts();
        m_header = file.m_header;
        m_classes = std::move(file.m_classes);
        m_entries = std::move(file.m_entries);
        m_changedMatrix = std::move(file.m_changedMatrix);
        return true;
    } catch (const std::bad_alloc&) {
        zelto::SetLastError(name + ": too large for the memory");
        return false;
    }
}

void CClassifiedAssistantFile::WriteContent(BinaryWriter& writer) const {
    writer.Write(m_header);
    for (const ClassRecord& record : m_classes)
        WriteRecord(writer, record);
    if (GetEntryTableFlag() != 0)
        for (const EntryRecord& record : m_entries)
            WriteRecord(writer, record);
    if (GetVersion() >= MATRIX_VERSION && !m_changedMatrix.empty())
        WriteMatrix(writer, m_changedMatrix);
}

bool CClassifiedAssistantFile::WriteClssifiedAssistantFile(std::wstring path) {
    if (path.empty() || GetTag() != CClassifiedAssistantFile().GetTag()) {
        zelto::SetLastError(CommonFun::U2M(path) + ": not written without a path and the tag");
        return false;
    }
    zelto::ReplacementFile file(path);
    BinaryWriter writer(file.Stream());
    WriteContent(writer);
    return file.Commit();
}
