#include "zelto/classify/ClassifiedAssistantFile.h"

#include "zelto/baselib/ClassifyDisplayTable.h"
#include "zelto/classify/internal/HeaderBlock.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

namespace {

constexpr std::int32_t NEW_VERSION = 102;
constexpr std::size_t HEADER_ENTRY_FLAG = 1072;
constexpr std::size_t HEADER_ENTRY_COUNT = 1076;

const std::wstring FILE_TAG = L"ZELTO_ClassAssistFileTag";

} // namespace

std::wstring CClassifiedAssistantFile::ClassRecord::GetName() const {
    return zelto::DecodeUtf16Field(m_nameField);
}

void CClassifiedAssistantFile::ClassRecord::SetName(const std::wstring& name) {
    zelto::EncodeUtf16Field(name, m_nameField);
}

CClassifiedAssistantFile::CClassifiedAssistantFile() {
    SetTag(FILE_TAG);
    SetVersion(NEW_VERSION);
}

CClassifiedAssistantFile::CClassifiedAssistantFile(const CClassifiedAssistantFile&) = default;
CClassifiedAssistantFile&
CClassifiedAssistantFile::operator=(const CClassifiedAssistantFile&) = default;
CClassifiedAssistantFile::~CClassifiedAssistantFile() = default;

CClassifyDisplayTable* CClassifiedAssistantFile::CreateClassifyDisplayTable() {
    try {
        auto table = std::make_unique<CClassifyDisplayTable>(GetClassCount());
        double lower = m_classes.empty() ? 0.0 : m_classes.front().m_value - 0.5;
        double upper = lower;
        for (const ClassRecord& record : m_classes) {
            const CRgbaColor& c = record.m_color;
            const double low = record.m_value - 0.5;
            const double high = record.m_value + 0.5;
            table->AddClassifyItem(
                CClassifyDisplayItem({c.red, c.green, c.blue, 255}, low, high, record.GetName()));
            upper = std::max(upper, low);
            // The upper side of the class, although the first class sets its lower side: the
            // legends of existing hosts are laid out for these ranges.
            if (low < lower)
                lower = high;
        }
        table->SetMinMaxValue(lower - 0.5, upper + 0.5);
        return table.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void CClassifiedAssistantFile::SetChangedMatrix(std::vector<std::vector<std::wstring>>& matrix) {
    m_changedMatrix = matrix;
}

std::wstring CClassifiedAssistantFile::GetTag() const {
    return zelto::GetTag(m_header);
}

void CClassifiedAssistantFile::SetTag(const std::wstring& tag) {
    zelto::SetTag(m_header, tag);
}

std::int32_t CClassifiedAssistantFile::GetVersion() const {
    return zelto::GetInt32(m_header, zelto::HEADER_VERSION);
}

void CClassifiedAssistantFile::SetVersion(std::int32_t version) {
    zelto::SetInt32(m_header, zelto::HEADER_VERSION, version);
}

std::int32_t CClassifiedAssistantFile::GetClassCount() const {
    return zelto::GetInt32(m_header, zelto::HEADER_CLASS_COUNT);
}

std::int32_t CClassifiedAssistantFile::GetEntryTableFlag() const {
    return zelto::GetInt32(m_header, HEADER_ENTRY_FLAG);
}

void CClassifiedAssistantFile::SetEntryTableFlag(std::int32_t flag) {
    zelto::SetInt32(m_header, HEADER_ENTRY_FLAG, flag);
}

std::int32_t CClassifiedAssistantFile::GetEntryCount() const {
    return zelto::GetInt32(m_header, HEADER_ENTRY_COUNT);
}

void CClassifiedAssistantFile::LowerCounts() {
    const auto lower = [&](std::size_t offset, std::size_t held) {
        const auto count = static_cast<std::int32_t>(held);
        if (zelto::GetInt32(m_header, offset) > count)
            zelto::SetInt32(m_header, offset, count);
    };
    lower(zelto::HEADER_CLASS_COUNT, m_classes.size());
    // Without an entry table the number says nothing and is carried.
    if (GetEntryTableFlag() != 0)
        lower(HEADER_ENTRY_COUNT, m_entries.size());
}

void CClassifiedAssistantFile::SetClasses(std::vector<ClassRecord> classes) {
    m_classes = std::move(classes);
    zelto::SetInt32(m_header, zelto::HEADER_CLASS_COUNT,
                    static_cast<std::int32_t>(m_classes.size()));
}

void CClassifiedAssistantFile::AddClass(const ClassRecord& record) {
    m_classes.push_back(record);
    zelto::SetInt32(m_header, zelto::HEADER_CLASS_COUNT,
                    static_cast<std::int32_t>(m_classes.size()));
}

void CClassifiedAssistantFile::SetEntries(std::vector<EntryRecord> entries) {
    m_entries = std::move(entries);
    SetEntryTableFlag(m_entries.empty() ? 0 : 1);
    zelto::SetInt32(m_header, HEADER_ENTRY_COUNT, static_cast<std::int32_t>(m_entries.size()));
}
