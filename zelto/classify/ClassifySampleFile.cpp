#include "zelto/classify/ClassifySampleFile.h"

#include "zelto/aoi/DrawShape.h"
#include "zelto/classify/internal/HeaderBlock.h"

#include <utility>

std::wstring CClassifySampleFile::ClassFields::GetName() const {
    return zelto::DecodeUtf16Field(m_nameField);
}

void CClassifySampleFile::ClassFields::SetName(const std::wstring& name) {
    zelto::EncodeUtf16Field(name, m_nameField);
}

CClassifySampleFile::ClassRecord::ClassRecord(const ClassRecord& other) : ClassFields(other) {
    m_sampleShapes.reserve(other.m_sampleShapes.size());
    for (CDrawShape* shape : other.m_sampleShapes)
        m_sampleShapes.push_back(CDrawShape::CreateCopy(shape));
}

CClassifySampleFile::ClassRecord&
CClassifySampleFile::ClassRecord::operator=(const ClassRecord& other) {
    ClassRecord copy(other);
    // The copy takes the old shapes with it.
    m_sampleShapes.swap(copy.m_sampleShapes);
    ClassFields::operator=(std::move(copy));
    return *this;
}

CClassifySampleFile::ClassRecord::~ClassRecord() {
    for (const CDrawShape* shape : m_sampleShapes)
        delete shape;
}

CClassifySampleFile::CClassifySampleFile(const CClassifySampleFile& other)
    : m_header(other.m_header), m_fileName(other.m_fileName) {
    m_classes.reserve(other.m_classes.size());
    for (const auto& record : other.m_classes)
        m_classes.push_back(std::make_unique<ClassRecord>(*record));
}

CClassifySampleFile& CClassifySampleFile::operator=(const CClassifySampleFile& other) {
    CClassifySampleFile copy(other);
    m_header = copy.m_header;
    m_classes.swap(copy.m_classes);
    m_fileName.swap(copy.m_fileName);
    return *this;
}

CClassifySampleFile::~CClassifySampleFile() = default;

std::wstring CClassifySampleFile::GetTag() const {
    return zelto::GetTag(m_header);
}

void CClassifySampleFile::SetTag(const std::wstring& tag) {
    zelto::SetTag(m_header, tag);
}

std::int32_t CClassifySampleFile::GetClassCount() const {
    return zelto::GetInt32(m_header, zelto::HEADER_CLASS_COUNT);
}

CClassifySampleFile::ClassRecord* CClassifySampleFile::GetClass(int index) const {
    return index >= 0 && static_cast<std::size_t>(index) < m_classes.size()
               ? m_classes[static_cast<std::size_t>(index)].get()
               : nullptr;
}

void CClassifySampleFile::AddClass(const ClassRecord& record) {
    m_classes.push_back(std::make_unique<ClassRecord>(record));
    UpdateClassCount();
}

void CClassifySampleFile::RemoveAllClasses() {
    m_classes.clear();
    UpdateClassCount();
}

void CClassifySampleFile::UpdateClassCount() {
    zelto::SetInt32(m_header, zelto::HEADER_CLASS_COUNT,
                    static_cast<std::int32_t>(m_classes.size()));
}
