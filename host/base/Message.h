#pragma once

#include <string>

namespace zelto::host {

/// Makes the standard streams the program's own, before anything is opened: standard error tells
/// what the program says, in lines that begin with its name, and what libraries print there on
/// their own goes nowhere, unless GDAL's CPL_DEBUG asks for it. A standard stream that is closed
/// stays unusable, rather than being the next file that is opened.
void TakeStandardStreams();

/// Whether CPL_DEBUG asks for all that GDAL says.
bool IsDebugging();

/// Where the program's messages go.
int MessageDescriptor();

/// Gives standard error back, for a program that takes this one's place.
void GiveBackStandardError();

/// Prints one line on standard error behind the program's name, fit for a terminal.
void Tell(const std::string& line);

/// From now on neither remarks, confirmations nor progress are shown; for --quiet.
void BeQuiet();
bool IsQuiet();
/// Tells what a reader of the results should know besides; nothing when quiet.
void Remark(const std::string& line);
/// Prints on standard output, as a line, what has been done; nothing when quiet. Control
/// characters are escaped.
void Confirm(const std::string& line);

/// Prints text on standard error as it is.
void PrintOnTerminal(const std::string& text);

/// Whether standard error is a terminal.
bool IsOnTerminal();

} // namespace zelto::host
