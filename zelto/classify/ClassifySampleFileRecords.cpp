#include "zelto/aoi/DrawShape.h"
#include "zelto/aoi/internal/ShapeRecord.h"
#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/LastError.h"
#include "zelto/baselib/internal/RegularFile.h"
#include "zelto/classify/ClassifySampleFile.h"
#include "zelto/classify/internal/HeaderBlock.h"

#include <algorithm>
#include <fstream>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>

using zelto::BinaryReader;
using zelto::BinaryWriter;

namespace {

using ClassRecord = CClassifySampleFile::ClassRecord;

/// Fails where the file ends; the numbers before it are kept. No memory is taken for numbers
/// that the file cannot hold.
bool ReadBandArrays(BinaryReader& reader, ClassRecord& record) {
    for (std::int32_t band = 0; band < record.m_bandCount; ++band) {
        double first = 0.0;
        double second = 0.0;
        double third = 0.0;
        // The second array comes before the first in the file.
        if (!reader.Read(second) || !reader.Read(first) || !reader.Read(third))
            return false;
        record.m_firstArray.push_back(first);
        record.m_secondArray.push_back(second);
        record.m_thirdArray.push_back(third);
    }
    return true;
}

std::int64_t MatrixSize(const ClassRecord& record) {
    const std::int64_t n = std::max(record.m_bandCount, 0);
    return n * n;
}

bool ReadRecordMatrix(BinaryReader& reader, ClassRecord& record) {
    const std::int64_t size = MatrixSize(record);
    double value = 0.0;
    for (std::int64_t i = 0; i < size; ++i) {
        if (!reader.Read(value))
            return false;
        record.m_matrix.push_back(value);
    }
    return true;
}

/// Gives the shape to the list; while there is no memory for its place it stays owned.
void Append(std::vector<CDrawShape*>& shapes, std::unique_ptr<CDrawShape> shape) {
    shapes.push_back(nullptr);
    shapes.back() = shape.release();
}

/// Shapes of all classes together. A polygon without vertices is five bytes in the file and some
/// hundred in memory.
constexpr int MOST_SHAPES = 1'000'000;

/// @param shapesLeft how many the file may still hold; throws std::length_error beyond
bool ReadShapes(BinaryReader& reader, ClassRecord& record, int& shapesLeft) {
    if (record.m_hasSamples == 0)
        return true;
    for (std::int32_t i = 0; i < record.m_sampleShapeCount; ++i) {
        auto shape = zelto::ReadShapeRecord(reader, zelto::ShapeRecordUse::SAMPLE);
        if (shape && --shapesLeft < 0)
            throw std::length_error("has more than " + std::to_string(MOST_SHAPES) + " shapes");
        if (shape) {
            Append(record.m_sampleShapes, std::move(shape));
        } else if (!reader.IsGood()) {
            record.m_sampleShapeCount = static_cast<std::int32_t>(record.m_sampleShapes.size());
            return false;
        }
    }
    return true;
}

/// @return null when the file ends within name and integers; a class cut after them is kept
/// @param shapesLeft as ReadShapes() takes it
std::unique_ptr<ClassRecord> ReadClass(BinaryReader& reader, int& shapesLeft) {
    auto record = std::make_unique<ClassRecord>();
    if (!reader.Read(record->m_nameField))
        return nullptr;
    for (std::int32_t& value : record->m_values)
        if (!reader.Read(value))
            return nullptr;
    if (!reader.Read(record->m_bandCount))
        return nullptr;
    // Each step ends the class where the file ends; nothing after it can be read then.
    if (ReadBandArrays(reader, *record) && reader.Read(record->m_moreValues[0]) &&
        reader.Read(record->m_moreValues[1]) && ReadRecordMatrix(reader, *record) &&
        reader.Read(record->m_hasSamples) && reader.Read(record->m_sampleShapeCount))
        ReadShapes(reader, *record, shapesLeft);
    return record;
}

void WriteClass(BinaryWriter& writer, const ClassRecord& record) {
    writer.Write(record.m_nameField);
    for (const std::int32_t value : record.m_values)
        writer.Write(value);
    writer.Write(record.m_bandCount);
    for (std::size_t band = 0; band < record.m_firstArray.size(); ++band) {
        writer.Write(record.m_secondArray[band]);
        writer.Write(record.m_firstArray[band]);
        writer.Write(record.m_thirdArray[band]);
    }
    for (const std::int32_t value : record.m_moreValues)
        writer.Write(value);
    for (const double value : record.m_matrix)
        writer.Write(value);
    writer.Write(record.m_hasSamples);
    writer.Write(record.m_sampleShapeCount);
    for (const CDrawShape* shape : record.m_sampleShapes)
        zelto::WriteShapeRecord(writer, shape);
}

/// Whether arrays and matrix have the sizes that the band count promises to a reader.
bool HasItsSizes(const ClassRecord& record) {
    const auto bands = static_cast<std::size_t>(std::max(record.m_bandCount, 0));
    return record.m_firstArray.size() == bands && record.m_secondArray.size() == bands &&
           record.m_thirdArray.size() == bands &&
           record.m_matrix.size() == static_cast<std::uint64_t>(MatrixSize(record));
}

int Fail(const std::string& file, const char* reason) {
    zelto::SetLastError(file + ": " + reason);
    return 0;
}

} // namespace

int CClassifySampleFile::ReadClassifySampleFile(std::wstring path) {
    const std::string name = CommonFun::U2M(path);
    try {
        std::ifstream stream;
        if (!zelto::OpenRegularFile(stream, name))
            return 0;
        m_fileName = std::move(path);
        BinaryReader reader(stream);
        CClassifySampleFile file;
        if (!reader.Read(file.m_header) || file.GetTag() != FILE_TAG)
            return Fail(name, "is no sample file");
        const std::int32_t count = file.GetClassCount();
        int shapesLeft = MOST_SHAPES;
        while (reader.IsGood() &&
               file.m_classes.size() < static_cast<std::size_t>(std::max(count, 0)))
            if (auto record = ReadClass(reader, shapesLeft))
                file.m_classes.push_back(std::move(record));
        if (!reader.IsGood())
            file.UpdateClassCount();
        m_header = file.m_header;
        m_classes.swap(file.m_classes);
        return 1;
    } catch (const std::bad_alloc&) {
        return Fail(name, "too large for the memory");
    } catch (const std::length_error& tooMany) {
        return Fail(name, tooMany.what());
    }
}

int CClassifySampleFile::WriteClassifySampleFile(std::wstring path) {
    const bool sound = std::all_of(m_classes.begin(), m_classes.end(),
                                   [](const auto& record) { return HasItsSizes(*record); });
    if (path.empty() || GetTag() != FILE_TAG)
        return Fail(CommonFun::U2M(path), "not written without a path and the tag");
    if (!sound)
        return Fail(CommonFun::U2M(path), "a class has other sizes than its band count says");
    zelto::ReplacementFile file(path);
    BinaryWriter writer(file.Stream());
    writer.Write(m_header);
    for (const auto& record : m_classes)
        WriteClass(writer, *record);
    return file.Commit() ? 1 : 0;
}

int CClassifySampleFile::SaveSampleAOI(std::fstream& stream, CDrawShape* shape) {
    BinaryWriter writer(stream);
    zelto::WriteShapeRecord(writer, shape);
    return 1;
}

int CClassifySampleFile::ReadSampleAOI(std::fstream& stream, std::vector<CDrawShape*>* shapes) {
    if (shapes == nullptr)
        return 0;
    try {
        BinaryReader reader(stream);
        auto shape = zelto::ReadShapeRecord(reader, zelto::ShapeRecordUse::SAMPLE);
        if (shape)
            Append(*shapes, std::move(shape));
        return reader.IsGood() ? 1 : 0;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}
