#pragma once

#include "host/report/Table.h"

#include <QString>

class QWidget;

namespace zelto::view {

// The reports of the command line as widgets. Names of columns and facts are shown in the language
// of the program, what the file holds as it is.

/// Names and texts, one fact below the other; each can be selected and copied.
QWidget* MakeFactsForm(const host::TableContent& facts);

/// @param id name of the table for those that look for it
QWidget* MakeReportView(const QString& id, const host::TableContent& content);

} // namespace zelto::view
