#include "zelto/datasource/DataProgress.h"

#include "zelto/baselib/CommonFun.h"
#include "zelto/baselib/internal/Truncate.h"

CDataProgress::~CDataProgress() = default;

void CDataProgress::SetReadOnly(bool readOnly) {
    m_readOnly = readOnly;
}

int GDALProgressFuncEx(double complete, const char* message, void* progressData) {
    if (progressData == nullptr)
        return 1;
    std::wstring text = L"处理中：";
    if (message != nullptr)
        text = CommonFun::M2U(message);
    auto* progress = static_cast<CDataProgress*>(progressData);
    return progress->StepProgress(zelto::TruncateToInt32(complete * 100), text.c_str()) ? 1 : 0;
}

int GDALProgressFuncNone(double /*complete*/, const char* /*message*/, void* /*progressData*/) {
    return 1;
}
