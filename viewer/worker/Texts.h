#pragma once

#include "zelto/baselib/CommonFun.h"
#include "zelto/datasource/GISDataSource.h"

#include <QString>

namespace zelto::view {

/// File names go through the engine's own conversion, which keeps bytes that are no UTF-8.
inline std::wstring Wide(const QString& text) {
    return CommonFun::M2U(text.toStdString());
}

inline QString FromWide(const std::wstring& text) {
    return QString::fromStdString(CommonFun::U2M(text));
}

/// The engine's reason of the last failure on this thread.
inline QString ReasonOr(const QString& otherwise) {
    const std::string reason = CGISDataSource::GetLastErrorText();
    return reason.empty() ? otherwise : QString::fromStdString(reason);
}

} // namespace zelto::view
